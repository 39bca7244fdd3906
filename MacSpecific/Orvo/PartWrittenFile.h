#pragma once

#include <QString>

#include <functional>

#include <sys/types.h>

/// Keeps one run of the copy or move tool from leaving part of a file behind as if it were whole. Made before
/// the tool starts and used on the same thread; blocks for as long as the disks take.
class PartWrittenFile {
public:
    /// Notes how `source` and the file of its name in the folder `destination` look before the run.
    PartWrittenFile(const QString &source, const QString &destination);

    /// Whether the source itself already lies at the destination.
    bool isInPlace() const;

    /// Call this after a run that was stopped. Removes the destination file if the run wrote it and its size
    /// or time differ from the source's. A file that the run didn't touch stays, and so does a moved file
    /// whose source is gone, unless it is shorter than the source was.
    void removeAfterStop(bool moved) const;

    /// The same after a run that failed, but compares the bytes, as far as they reached the disk, and not the
    /// time. Treats the run as stopped once `interrupted` returns true.
    void removeAfterFailure(bool moved, const std::function<bool()> &interrupted) const;

private:
    struct State {
        explicit State(const QString &path);
        bool exists = false;
        bool isFile = false;
        dev_t device = 0;
        ino_t inode = 0;
        qint64 size = 0;
        qint64 modified = 0; // milliseconds since 1970, as is the next
        qint64 changed = 0;
    };

    bool mayGo(const State &now, bool moved) const;
    bool untouched(const State &now) const;
    bool whole(const State &now) const;

    QString sourcePath;
    QString destinationPath;
    State sourceBefore;
    State destinationBefore;
};
