#include "CFString.h"

#include <QByteArray>

#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace {

/// The characters 0x80 to 0xFF.
constexpr std::u16string_view upperMacRoman =
    u"ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø"
    u"¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";
static_assert(upperMacRoman.size() == 0x80);

std::optional<QByteArray> toMacRoman(const QString &characters)
{
    QByteArray bytes;
    for (const QChar character : characters) {
        const size_t place = upperMacRoman.find(character.unicode());
        if (character.unicode() < 0x80)
            bytes += character.toLatin1();
        else if (place != upperMacRoman.npos)
            bytes += static_cast<char>(0x80 + place);
        else
            return std::nullopt;
    }
    return bytes;
}

std::optional<QByteArray> encoded(const QString &characters, CFStringEncoding encoding)
{
    if (encoding == kCFStringEncodingMacRoman)
        return toMacRoman(characters);
    return encoding == kCFStringEncodingUTF8 ? std::optional(characters.toUtf8()) : std::nullopt;
}

} // namespace

CFStringRef __CFStringMakeConstantString(const char *text)
{
    static std::mutex mutex;
    // Never destroyed: constants are in use until the process's last destructor has run.
    static auto &constants = *new std::map<std::string, __CFString>;
    const std::lock_guard lock(mutex);
    return &constants.try_emplace(text, QString::fromUtf8(text)).first->second;
}

CFTypeID CFStringGetTypeID(void)
{
    return CFObject::String;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char *text, CFStringEncoding encoding)
{
    const QString characters = QString::fromUtf8(text);
    // Bytes that aren't UTF-8 have become replacement characters.
    const bool isWhole = encoding == kCFStringEncodingUTF8 && characters.toUtf8() == text;
    return isWhole ? new __CFString(characters) : nullptr;
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
