#include "PartWrittenFile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

PartWrittenFile::State::State(const QString &path)
{
    struct stat status;
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return;
    exists = true;
    isFile = S_ISREG(status.st_mode);
    inode = status.st_ino;
    size = status.st_size;
    // By way of QFileInfo, since the field of struct stat has another name on every system.
    modified = QFileInfo(path).lastModified().toMSecsSinceEpoch();
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
        && now.size == destinationBefore.size && now.modified == destinationBefore.modified;
}

bool PartWrittenFile::whole(const State &now) const
{
    // The tools set the time last of all. Some file systems keep only every whole or second second.
    const qint64 difference = sourceBefore.modified - now.modified;
    const bool sameTime =
        difference == 0 || (now.modified % 1000 == 0 && difference > 0 && difference < 2000);
    return now.size == sourceBefore.size && sameTime;
}

void PartWrittenFile::remove(bool moved) const
{
    const State now(destinationPath);
    if (!now.isFile || untouched(now) || whole(now))
        return;
    // A move removes its source only when it has copied all of it.
    if (moved && !State(sourcePath).exists && now.size >= sourceBefore.size)
        return;
    QFile::remove(destinationPath);
}
