#pragma once

#include <QDir>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

inline bool mountOn(const QString &place, const QString &source, unsigned long flags,
    const char *type = nullptr, const QString &options = QString())
{
    return mount(QFile::encodeName(source).constData(), QFile::encodeName(place).constData(), type, flags,
               options.toUtf8().constData())
        == 0;
}

/// From here on this thread has mounts of its own, which nobody else sees. Only root can have them.
inline bool enterOwnMounts()
{
    return unshare(CLONE_NEWNS) == 0 && mountOn("/", "none", MS_REC | MS_PRIVATE);
}

/// The same, and a root of its own for the whole process, where all folders of the machine are but /mnt and
/// /Library, and where others can be made.
inline bool enterOwnRoot()
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

/// Puts a file or folder, or a new file system of a type, over a place until the end of its life. Needs own
/// mounts.
class Mount {
public:
    Mount(const QString &source, const QString &place, const char *type = nullptr,
        const QString &options = QString())
        : target(QFile::encodeName(place))
    {
        if (!mountOn(place, source, type ? 0 : MS_BIND, type, options))
            qFatal("no mount on %s", target.constData());
    }
    Mount(const Mount &) = delete;
    ~Mount() { umount2(target.constData(), MNT_DETACH); }

private:
    const QByteArray target;
};
