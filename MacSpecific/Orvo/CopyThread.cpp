#include "CopyThread.h"

#include "InstallState.h"
#include "PartWrittenFile.h"
#include "UnfinishedMark.h"
#include "computecontrol/ToolStart.h"

#include <QDeadlineTimer>
#include <QProcess>

#include <cstdio>

#include <sys/stat.h>

namespace {

/// Milliseconds until an interruption is noticed.
constexpr int slice = 50;
/// Milliseconds that a running move gets to finish after an interruption. A rename needs none of it, so
/// longer is a hang.
constexpr int moveGrace = 30000;

QString errorSuffix(QProcess::ProcessError error)
{
    switch (error) {
    case QProcess::FailedToStart:
        return QStringLiteral(" failed to start.");
    case QProcess::Crashed:
        return QStringLiteral(" crashed.");
    case QProcess::Timedout:
        return QStringLiteral(" no response.");
    case QProcess::ReadError:
        return QStringLiteral(" read error.");
    case QProcess::WriteError:
        return QStringLiteral(" write error.");
    default:
        return QStringLiteral(" unknown error.");
    }
}

} // namespace

CopyThread::CopyThread(QObject *parent, QString destination)
    : QThread(parent)
    , path(std::move(destination))
{
}

QString CopyThread::getPath()
{
    return path;
}

void CopyThread::run()
{
    unpriviledgedCopy();
}

void CopyThread::unpriviledgedCopy()
{
    QProcess tool;
    const QString program = sCopyFiles ? QStringLiteral("/bin/mv") : QStringLiteral("/bin/cp");
    emit copyResult(installationFailed, QStringLiteral("The source database data files couldn't be found."));
    umask(022);
    int done = 0;
    const QList<QFileInfo> files = sResultList;
    if (!files.isEmpty())
        markUnfinished(path);
    for (const QFileInfo &file : files) {
        if (isInterruptionRequested() || !copyFile(tool, program, file.absoluteFilePath()))
            return;
        emit copyResult(0, QString());
        emit copiedFile(++done);
    }
}

/// Runs the tool for one file. Returns false if it failed, which it reports, or was interrupted.
bool CopyThread::copyFile(QProcess &tool, const QString &program, const QString &file)
{
    const PartWrittenFile destination(file, path);
    if (destination.isInPlace())
        return true;
    const auto interrupted = [this] { return isInterruptionRequested(); };
    QStringList arguments{file, getPath() + QLatin1Char('/')};
    if (!sCopyFiles)
        arguments.prepend(QStringLiteral("-pf"));
    const bool started = startTool(tool, program, arguments);
    if (!started || !waitForTool(tool)) {
        const QString message =
            program + QLatin1Char(':') + errorSuffix(started ? tool.error() : QProcess::FailedToStart);
        if (tool.state() != QProcess::NotRunning) {
            tool.kill();
            tool.waitForFinished(-1);
        }
        if (interrupted())
            destination.removeAfterStop(sCopyFiles);
        else
            destination.removeAfterFailure(sCopyFiles, interrupted);
        if (!interrupted())
            emit copyResult(installationFailed, message);
        return false;
    }
    // The exit code doesn't count: a tool that says nothing has succeeded.
    const QByteArray complaint = tool.readAllStandardError();
    if (complaint.isEmpty())
        return true;
    destination.removeAfterFailure(sCopyFiles, interrupted);
    std::fprintf(stderr, "Lumetra Installer: %s", complaint.constData());
    std::fflush(stderr);
    emit copyResult(
        installationFailed, QStringLiteral("Error message is:\n") + QString::fromUtf8(complaint.constData()));
    return false;
}

/// Waits for the tool without a limit, in slices so that an interruption is noticed. Returns false if the
/// wait failed, or the tool crashed or must be killed.
bool CopyThread::waitForTool(QProcess &tool)
{
    QDeadlineTimer grace(QDeadlineTimer::Forever);
    while (!tool.waitForFinished(slice)) {
        if (tool.error() != QProcess::Timedout || tool.state() == QProcess::NotRunning)
            return false;
        if (!isInterruptionRequested())
            continue;
        if (!sCopyFiles || grace.hasExpired())
            return false;
        if (grace.isForever())
            grace.setRemainingTime(moveGrace);
    }
    return tool.error() != QProcess::Crashed;
}
