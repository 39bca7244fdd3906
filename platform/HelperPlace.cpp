#include "HelperPlace.h"

#include "helper/HelperProtocol.h"

#include <climits>
#include <cstdlib>
#include <sys/stat.h>

std::string helperPath()
{
    CFURLRef url = CFBundleCopyBundleURL(CFBundleGetMainBundle());
    CFStringRef path = CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle);
    char bundle[PATH_MAX] = "";
    CFStringGetCString(path, bundle, sizeof bundle, kCFStringEncodingUTF8);
    CFRelease(path);
    CFRelease(url);
    return std::string(bundle) + "/Contents/Helpers/" + helperName;
}

bool isReplaceableByAnyone(const std::string &path)
{
    char resolved[PATH_MAX];
    if (!realpath(path.c_str(), resolved))
        return false;
    for (std::string place = resolved; !place.empty(); place.erase(place.rfind('/'))) {
        struct stat status { };
        const bool isKnown = stat(place.c_str(), &status) == 0;
        if (isKnown && status.st_mode & S_IWOTH && !(status.st_mode & S_ISVTX))
            return true;
    }
    return false;
}
