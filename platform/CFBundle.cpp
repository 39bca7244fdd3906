#include "CFString.h"

#include <QByteArray>

#include <climits>
#include <libproc.h>
#include <unistd.h>

struct __CFBundle : CFObject {
    __CFBundle()
        : CFObject(Bundle, Constant)
    {
    }
};

struct __CFURL : CFObject {
    explicit __CFURL(const QString &filePath)
        : CFObject(Url)
        , path(filePath)
    {
    }

    const QString path;
};

namespace {

QString folderOf(const QString &path)
{
    return path.left(path.lastIndexOf(QLatin1Char('/')));
}

QString runningExecutable()
{
    char path[PATH_MAX];
    const int length = proc_pidpath(getpid(), path, sizeof path);
    return QString::fromUtf8(path, length);
}

/// "…/X.app" of "…/X.app/Contents/MacOS/executable"; for a bare executable its folder.
QString bundlePath()
{
    const QString folder = folderOf(runningExecutable());
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
