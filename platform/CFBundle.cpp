#include "CFString.h"

#include <climits>
#include <libproc.h>
#include <unistd.h>

struct __CFBundle { };

struct __CFURL : CFObject {
    explicit __CFURL(const QString &filePath)
        : CFObject(Url)
        , path(filePath)
    {
    }

    const QString path;
};

namespace {

/// "…/X.app" of "…/X.app/Contents/MacOS/executable"; for a bare executable its folder.
QString bundlePath()
{
    char path[PATH_MAX];
    const QString executable = QString::fromUtf8(path, proc_pidpath(getpid(), path, sizeof path));
    const QString folder = executable.left(executable.lastIndexOf(QLatin1Char('/')));
    const QString inBundle = QStringLiteral("/Contents/MacOS");
    if (folder.endsWith(QLatin1String(".app") + inBundle))
        return folder.chopped(inBundle.size());
    return folder;
}

} // namespace

CFBundleRef CFBundleGetMainBundle(void)
{
    static __CFBundle mainBundle;
    return &mainBundle;
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef)
{
    return new __CFURL(bundlePath());
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle)
{
    return new __CFString(url->path);
}
