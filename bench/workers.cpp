#include "CopyThread.h"
#include "InstallState.h"
#include "SizeThread.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <cstdio>
#include <cstring>

#include <malloc.h>

// Runs one of the installer's two workers as the installer does and prints what it took as JSON.

namespace {

/// Starts the worker and runs the event loop until the worker ends. Returns the seconds from start to end.
double secondsOf(QThread &worker)
{
    QObject::connect(&worker, &QThread::finished, qApp, &QCoreApplication::quit);
    QElapsedTimer timer;
    timer.start();
    worker.start(QThread::InheritPriority);
    QCoreApplication::exec();
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

size_t heapInUse()
{
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

[[noreturn]] void scan(const QString &source)
{
    const size_t before = heapInUse();
    double seconds;
    {
        SizeThread worker(nullptr, source);
        seconds = secondsOf(worker);
    }
    const size_t after = heapInUse();
    QFileInfoList bare;
    bare.reserve(sResultList.size());
    for (const QFileInfo &file : qAsConst(sResultList)) {
        const QString path = file.filePath();
        bare += QFileInfo(QString(path.constData(), path.size()));
    }
    std::printf("{\"seconds\": %.6f, \"files\": %zu, \"heap\": %zu, \"bare\": %zu}\n", seconds,
        static_cast<size_t>(sResultList.size()), after - before, heapInUse() - after);
    std::fflush(stdout);
    // Frees no list: the allocator would open a system file, which would count as one of the scan's calls.
    std::_Exit(0);
}

/// Scans the source, then copies or moves the first `count` files of the list. Returns the exit status.
int install(const QString &source, const QString &destination, int count, bool move)
{
    {
        SizeThread worker(nullptr, source);
        secondsOf(worker);
    }
    if (sResultList.size() < count)
        return 1;
    sCopyFiles = move;
    CopyThread worker(nullptr, destination);
    int done = 0;
    QElapsedTimer sinceFirst;
    double further = 0;
    const auto countFile = [&](int index) {
        done = index;
        if (index == 1)
            sinceFirst.start();
        if (index != count)
            return;
        further = static_cast<double>(sinceFirst.nsecsElapsed()) / 1e9;
        worker.requestInterruption();
    };
    QObject::connect(&worker, &CopyThread::copiedFile, &worker, countFile, Qt::DirectConnection);
    const double seconds = secondsOf(worker);
    std::printf("{\"seconds\": %.6f, \"further\": %.6f}\n", seconds, further);
    return done == count ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "scan") == 0)
        scan(QFile::decodeName(argv[2]));
    if (argc == 5)
        return install(QFile::decodeName(argv[2]), QFile::decodeName(argv[3]), std::atoi(argv[4]),
            std::strcmp(argv[1], "move") == 0);
    std::fprintf(stderr, "usage: %s scan SOURCE | copy|move SOURCE DESTINATION COUNT\n", argv[0]);
    return 2;
}
