#include "CFString.h"

#include "MacRoman.h"

#include <QTextCodec>

#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace {

constexpr int utf8Mib = 106;

std::optional<QString> decoded(const char *text, CFStringEncoding encoding)
{
    if (encoding == kCFStringEncodingMacRoman)
        return fromMacRoman(text);
    if (encoding != kCFStringEncodingUTF8)
        return std::nullopt;
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString characters =
        QTextCodec::codecForMib(utf8Mib)->toUnicode(text, static_cast<int>(std::strlen(text)), &state);
    if (state.invalidChars || state.remainingChars)
        return std::nullopt;
    return characters;
}

std::optional<QByteArray> encoded(const QString &characters, CFStringEncoding encoding)
{
    if (encoding == kCFStringEncodingMacRoman)
        return toMacRoman(characters);
    if (encoding != kCFStringEncodingUTF8)
        return std::nullopt;
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QByteArray bytes =
        QTextCodec::codecForMib(utf8Mib)->fromUnicode(characters.constData(), characters.size(), &state);
    if (state.invalidChars || state.remainingChars)
        return std::nullopt;
    return bytes;
}

} // namespace

CFStringRef __CFStringMakeConstantString(const char *text)
{
    static std::mutex mutex;
    // Never destroyed: constants are in use until the process's last destructor has run.
    static auto &constants = *new std::map<std::string, __CFString>;
    const std::lock_guard lock(mutex);
    return &constants.try_emplace(text, QString::fromUtf8(text), CFObject::Constant).first->second;
}

CFTypeID CFStringGetTypeID(void)
{
    return CFObject::String;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char *text, CFStringEncoding encoding)
{
    const std::optional<QString> characters = decoded(text, encoding);
    return characters ? new __CFString(*characters) : nullptr;
}

CFIndex CFStringGetLength(CFStringRef string)
{
    return string->characters.size();
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding)
{
    constexpr CFIndex utf8BytesPerUnit = 3;
    return encoding == kCFStringEncodingUTF8 ? length * utf8BytesPerUnit : length;
}

Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize, CFStringEncoding encoding)
{
    const std::optional<QByteArray> bytes = encoded(string->characters, encoding);
    if (!bytes || bytes->size() >= bufferSize)
        return false;
    std::memcpy(buffer, bytes->constData(), static_cast<size_t>(bytes->size()) + 1);
    return true;
}
