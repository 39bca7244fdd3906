#pragma once

#include <QString>

#include <sys/types.h>

/// Keeps one run of the copy or move tool from leaving a part of a file behind as if it were whole. Made
/// before the tool starts, used on the same thread.
class PartWrittenFile {
public:
    /// Notes how `source` and the file of its name in the folder `destination` look before the run.
    PartWrittenFile(const QString &source, const QString &destination);

    /// To be called after a run that failed or was stopped: removes the destination file if that run wrote it
    /// and it isn't whole. What the run never touched stays; so does a file whose source is gone after a
    /// move, unless it is shorter than the source was.
    void remove(bool moved) const;

private:
    struct State {
        explicit State(const QString &path);
        bool exists = false;
        bool isFile = false;
        ino_t inode = 0;
        qint64 size = 0;
        qint64 modified = 0; // milliseconds since 1970
    };

    bool untouched(const State &now) const;
    bool whole(const State &now) const;

    QString sourcePath;
    QString destinationPath;
    State sourceBefore;
    State destinationBefore;
};
