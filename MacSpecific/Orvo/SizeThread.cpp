#include "SizeThread.h"

#include "FolderListing.h"
#include "InstallState.h"

#include <QDir>

namespace {

/// A folder on the way down from the root of the scan, and how far its entries are done.
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
    const auto interrupted = [this] { return isInterruptionRequested(); };
    const auto open = [&](const QString &folder) {
        const QString prefix = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
        return OpenFolder{listFolder(prefix, interrupted)};
    };
    quint64 total = 0;
    if (path.isEmpty())
        return total; // not the current folder
    std::vector<OpenFolder> way;
    way.push_back(open(QDir::isAbsolutePath(path) ? path : QDir::current().filePath(path)));
    while (!way.empty() && !interrupted()) {
        OpenFolder &folder = way.back();
        if (folder.next == folder.entries.size()) {
            way.pop_back();
            continue;
        }
        const FolderEntry &entry = folder.entries[folder.next++];
        if (entry.isFolder) {
            way.push_back(open(entry.path));
            continue;
        }
        total += entry.size;
        list.append(QFileInfo(entry.path));
    }
    return total;
}
