#include "GetPathName.h"

#include <algorithm>
#include <cstring>

#include <CoreFoundation/CoreFoundation.h>

namespace {

void copyPath(CFURLRef url, char *buffer, CFIndex size)
{
    const CFStringRef path = CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle);
    if (!path)
        return;
    const bool nonEmpty =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(path), kCFStringEncodingUTF8) > 0;
    if (nonEmpty && !CFStringGetCString(path, buffer, size, kCFStringEncodingUTF8))
        buffer[0] = '\0';
    CFRelease(path);
}

} // namespace

std::string GetInstallPath()
{
    char buffer[4096] = "";
    const CFBundleRef bundle = CFBundleGetMainBundle();
    const CFURLRef url = bundle ? CFBundleCopyBundleURL(bundle) : nullptr;
    if (url) {
        copyPath(url, buffer, sizeof buffer);
        CFRelease(url);
    }
    return buffer;
}

void GETINSTALLPATH(char *buffer, int32_t bufferSize, int32_t *length)
{
    if (bufferSize < 1) {
        *length = 0;
        return;
    }
    const std::string path = GetInstallPath();
    const size_t copied = std::min(path.size(), static_cast<size_t>(bufferSize) - 1);
    std::memcpy(buffer, path.data(), copied);
    buffer[copied] = '\0';
    *length = static_cast<int32_t>(copied);
}
