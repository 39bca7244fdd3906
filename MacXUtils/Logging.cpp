#include "Logging.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include <CoreFoundation/CoreFoundation.h>
#include <fcntl.h>
#include <libproc.h>
#include <pwd.h>
#include <unistd.h>

namespace {

FILE *logfp = nullptr;
char sLogBanner[128 + 1] = "";
int32_t sPID = 0;

void setBanner(const char *tag)
{
    std::snprintf(sLogBanner, sizeof sLogBanner, "%s", tag);
}

/// The running executable's file name without blanks and apostrophes, empty when it can't be found.
std::string executableTag()
{
    char path[4096];
    const int length = proc_pidpath(sPID, path, sizeof path);
    if (length <= 0)
        return {};
    std::string name(path, static_cast<size_t>(length));
    const size_t slash = name.rfind('/');
    if (slash == std::string::npos)
        return {};
    name.erase(0, slash + 1);
    const auto unwanted = [](char c) { return c == ' ' || c == '\''; };
    name.erase(std::remove_if(name.begin(), name.end(), unwanted), name.end());
    return name;
}

/// Writes the string that the preferences hold under `key` to `location` in UTF-8: empty when there is none,
/// when it isn't a string or when it doesn't fit.
void copyLogLocation(const std::string &key, char *location, CFIndex size)
{
    location[0] = '\0';
    const CFStringRef keyString =
        CFStringCreateWithCString(kCFAllocatorDefault, key.c_str(), kCFStringEncodingUTF8);
    if (!keyString)
        return;
    const CFPropertyListRef value = CFPreferencesCopyAppValue(keyString, CFSTR("com.brindle.Corvane"));
    CFRelease(keyString);
    if (!value)
        return;
    if (CFGetTypeID(value) != CFStringGetTypeID()
        || !CFStringGetCString(static_cast<CFStringRef>(value), location, size, kCFStringEncodingUTF8))
        location[0] = '\0';
    CFRelease(value);
}

/// Like fopen with "a+", but never blocks: a FIFO without a reader fails to open, and lines are lost while
/// one is full. Write-only, because opening a FIFO for reading too would make this process its reader. On
/// macOS /dev/stderr is standard error itself, and blocks where that does.
FILE *openForAppending(const char *path)
{
    // Standard error may be a file, where the program's messages would overwrite the log's.
    if (std::strcmp(path, "/dev/stderr") == 0)
        fcntl(STDERR_FILENO, F_SETFL, fcntl(STDERR_FILENO, F_GETFL) | O_APPEND);
    const int descriptor = open(path, O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_CLOEXEC, 0666);
    FILE *stream = descriptor >= 0 ? fdopen(descriptor, "a") : nullptr;
    if (descriptor >= 0 && !stream)
        close(descriptor);
    return stream;
}

} // namespace

bool ShouldStartMacLogging()
{
    if (logfp)
        return true;
    sPID = getpid();
    const std::string tag = executableTag();
    if (tag.empty())
        return false;
    setBanner(tag.c_str());

    char location[4096];
    copyLogLocation(tag + "_LogLocation", location, sizeof location);
    if (!location[0])
        return false;
    OpenMacLogWithBanner(location, tag.c_str());
    return true;
}

void OpenMacLogWithBanner(const char *path, const char *tag)
{
    if (!path || !*path || !tag || !*tag || logfp)
        return;
    setBanner(tag);
    logfp = openForAppending(path);
    sPID = getpid();
    const struct passwd *user = getpwuid(geteuid());
    log_msg("---%s[%d] started---\n", sLogBanner, sPID);
    if (user)
        log_msg("Effective UID is %s \"%s\"(%u)\n", user->pw_name, user->pw_gecos, user->pw_uid);
    else
        log_msg("ERROR getting user information\n");
    endpwent();
}

void log_msg(const char *format, ...)
{
    char message[8192];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    char date[64];
    log_datestr(date);
    if (!logfp)
        return;
    std::fprintf(logfp, "[%s %d]%s: %s", sLogBanner, sPID, date, message);
    std::fflush(logfp);
}

void log_datestr(char *buffer)
{
    buffer[0] = '\0';
    const time_t now = std::time(nullptr);
    struct tm local;
    if (localtime_r(&now, &local))
        asctime_r(&local, buffer);
    if (!buffer[0])
        return;
    for (char *end = buffer + std::strlen(buffer); end != buffer; --end) {
        if (*end == '\r' || *end == '\n') {
            *end = '\0';
            return;
        }
    }
}
