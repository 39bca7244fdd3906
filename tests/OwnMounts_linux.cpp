#include "OwnMounts.h"

#include <QDir>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

static bool mountOn(const QString &place, const QString &source, unsigned long flags,
    const char *type = nullptr, const QString &options = QString())
{
    return mount(QFile::encodeName(source).constData(), QFile::encodeName(place).constData(), type, flags,
               options.toUtf8().constData())
        == 0;
}

bool enterOwnMounts()
{
    return unshare(CLONE_NEWNS) == 0 && mountOn("/", "none", MS_REC | MS_PRIVATE);
}

bool enterOwnRoot()
{
    if (!enterOwnMounts() || !mountOn("/mnt", "none", 0, "tmpfs", "mode=755"))
        return false;
    const QDir machine("/"), root("/mnt");
    for (const QString &name : machine.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString folder = machine.filePath(name), place = root.filePath(name);
        if (QFileInfo(folder).isSymLink())
            QFile::link(QFile::symLinkTarget(folder), place);
        else if (name != "mnt" && name != "Library" && root.mkdir(name))
            mountOn(place, folder, MS_BIND | MS_REC);
    }
    return chroot("/mnt") == 0 && chdir("/") == 0;
}

Mount::Mount(const QString &source, const QString &place, const char *type, const QString &options)
    : target(QFile::encodeName(place))
{
    if (!mountOn(place, source, type ? 0 : MS_BIND, type, options))
        qFatal("no mount on %s", target.constData());
}

Mount::~Mount()
{
    umount2(target.constData(), MNT_DETACH);
}
