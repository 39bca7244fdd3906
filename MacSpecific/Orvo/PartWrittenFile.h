#pragma once

#include <QString>

#include <functional>

#include <sys/types.h>

/// Keeps one run of the copy or move tool from leaving a part of a file behind as if it were whole. Made
/// before the tool starts, used on the same thread; takes as long as the disks.
class PartWrittenFile {
public:
    /// Notes how `source` and the file of its name in the folder `destination` look before the run.
    PartWrittenFile(const QString &source, const QString &destination);

    /// Whether the source itself already lies at the destination.
    bool isInPlace() const;

    /// To be called after a run that was stopped: removes the destination file if that run wrote it and it
    /// isn't whole, by its size and time. What the run never touched stays; so does a file whose source is
    /// gone after a move, unless it is shorter than the source was.
    void removeAfterStop(bool moved) const;

    /// The same after a run that failed, but the file's bytes decide, as far as they could be written to the
    /// disk, and not its time. Once `interrupted` says true as after a stop.
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
