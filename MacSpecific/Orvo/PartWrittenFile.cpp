#include "PartWrittenFile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Whether both files hold the same bytes, and the second's have reached the disk: what a tool failed to
/// write may stay in the system's cache for a while.
bool haveSameBytes(const QString &first, const QString &second, const std::function<bool()> &interrupted)
{
    constexpr qint64 block = 1 << 20;
    QFile one(first);
    QFile other(second);
    if (!one.open(QIODevice::ReadOnly | QIODevice::Unbuffered)
        || !other.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || one.size() != other.size()
        || fsync(other.handle()) != 0)
        return false;
    for (qint64 left = one.size(); left > 0; left -= block) {
        const QByteArray bytes = one.read(block);
        if (interrupted() || bytes.size() != std::min(left, block) || bytes != other.read(block))
            return false;
    }
    return true;
}

} // namespace

PartWrittenFile::State::State(const QString &path)
{
    struct stat status;
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return;
    exists = true;
    isFile = S_ISREG(status.st_mode);
    device = status.st_dev;
    inode = status.st_ino;
    size = status.st_size;
    // QFileInfo, because the fields of struct stat have different names on each system.
    const QFileInfo file(path);
    modified = file.lastModified().toMSecsSinceEpoch();
    changed = file.metadataChangeTime().toMSecsSinceEpoch();
}

PartWrittenFile::PartWrittenFile(const QString &source, const QString &destination)
    : sourcePath(source)
    , destinationPath(destination + QLatin1Char('/') + QFileInfo(source).fileName())
    , sourceBefore(sourcePath)
    , destinationBefore(destinationPath)
{
}

bool PartWrittenFile::untouched(const State &now) const
{
    return destinationBefore.exists && now.inode == destinationBefore.inode
        && now.size == destinationBefore.size && now.modified == destinationBefore.modified
        && now.changed == destinationBefore.changed;
}

bool PartWrittenFile::whole(const State &now) const
{
    // The tools set the time last. Some file systems keep times only to one or two seconds.
    const qint64 difference = sourceBefore.modified - now.modified;
    const bool sameTime =
        difference == 0 || (now.modified % 1000 == 0 && difference > 0 && difference < 2000);
    return now.size == sourceBefore.size && sameTime;
}

bool PartWrittenFile::isInPlace() const
{
    return sourceBefore.isFile && destinationBefore.isFile && sourceBefore.device == destinationBefore.device
        && sourceBefore.inode == destinationBefore.inode && !QFileInfo(destinationPath).isSymLink();
}

/// Whether the run has written the file, and a move hasn't finished it.
bool PartWrittenFile::mayGo(const State &now, bool moved) const
{
    // A move removes its source only when it has copied all of it.
    return now.isFile && !untouched(now)
        && !(moved && !State(sourcePath).exists && now.size >= sourceBefore.size);
}

void PartWrittenFile::removeAfterStop(bool moved) const
{
    const State now(destinationPath);
    if (mayGo(now, moved) && !whole(now))
        QFile::remove(destinationPath);
}

void PartWrittenFile::removeAfterFailure(bool moved, const std::function<bool()> &interrupted) const
{
    if (!mayGo(State(destinationPath), moved) || haveSameBytes(sourcePath, destinationPath, interrupted))
        return;
    if (interrupted())
        removeAfterStop(moved);
    else
        QFile::remove(destinationPath);
}
