#include "SizeThread.h"

#include "FolderListing.h"
#include "InstallState.h"

#include <QDir>

#include <cerrno>

#include <sys/stat.h>

namespace {

/// The folder in which a scan began. Missing subfolders mean a lost disk only if it is gone, too.
struct Root {
    explicit Root(const QString &folder)
        : path(folder)
        , exists(identify(first))
    {
    }

    bool isStillThere() const
    {
        struct stat now;
        return exists && identify(now) && now.st_dev == first.st_dev && now.st_ino == first.st_ino;
    }

    const QString path;

private:
    bool identify(struct stat &status) const
    {
        return stat(QFile::encodeName(path).constData(), &status) == 0;
    }

    struct stat first;
    const bool exists;
};

/// A folder on the way down from the root of the scan, and how many of its entries are done.
struct OpenFolder {
    std::vector<FolderEntry> entries;
    size_t next = 0;
};

} // namespace

SizeThread::SizeThread(QObject *parent, QString path)
    : QThread(parent)
    , scanPath(std::move(path))
{
}

void SizeThread::run()
{
    scanTotal = dirSize(scanPath, sResultList);
    if (!isInterruptionRequested())
        emit pathSize(scanPath, scanTotal);
}

// A loop with a stack of its own rather than a recursion: a tree as deep as the longest path would exhaust
// the small stack that some systems give a thread.
quint64 SizeThread::dirSize(const QString &path, QList<QFileInfo> &list)
{
    if (path.isEmpty())
        return 0; // not the current folder
    const Root root(QDir::isAbsolutePath(path) ? path : QDir::current().filePath(path));
    const auto interrupted = [this] { return isInterruptionRequested(); };
    const auto before = list.size();
    const auto failed = [&list, before] {
        list.erase(list.begin() + before, list.end());
        return quint64(0);
    };
    quint64 total = 0;
    std::vector<OpenFolder> stack;
    const auto open = [&](const QString &folder) {
        const QString prefix = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
        FolderListing listing = listFolder(prefix, interrupted);
        const bool isGone = listing.error == ENOENT || listing.error == ENOTDIR;
        stack.push_back({std::move(listing.entries)});
        return listing.error == 0 || (isGone && root.isStillThere());
    };
    if (!open(root.path))
        return failed();
    while (!stack.empty() && !interrupted()) {
        OpenFolder &folder = stack.back();
        if (folder.next == folder.entries.size()) {
            stack.pop_back();
            continue;
        }
        const FolderEntry entry = folder.entries[folder.next++];
        if (!entry.isFolder) {
            total += entry.size;
            list.append(QFileInfo(entry.path));
        } else if (!open(entry.path)) {
            return failed();
        }
    }
    return root.isStillThere() ? total : failed();
}
