#pragma once

#include <QByteArray>
#include <QString>

/// From here on this thread has mounts of its own, which nobody else sees. Only root on Linux can have them.
bool enterOwnMounts();

/// The same, and a root of its own for the whole process, where all folders of the machine are but /mnt and
/// /Library, and where others can be made.
bool enterOwnRoot();

/// Puts a file or folder, or a new file system of a type, over a place until the end of its life. Needs own
/// mounts.
class Mount {
public:
    Mount(const QString &source, const QString &place, const char *type = nullptr,
        const QString &options = QString());
    Mount(const Mount &) = delete;
    ~Mount();

private:
    const QByteArray target;
};
