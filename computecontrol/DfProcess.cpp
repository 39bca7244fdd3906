#include "DfProcess.h"

#include "MacXUtils/TerminationSignals.h"
#include "ToolStart.h"

#include <QDeadlineTimer>
#include <QStringList>

namespace {

/// Milliseconds until a request to end is noticed.
constexpr int pollInterval = 50;

} // namespace

CDfProcess::CDfProcess(QObject *parent)
    : QProcess(parent)
{
}

CDfProcess::~CDfProcess()
{
    if (state() == NotRunning)
        return;
    kill();
    // QProcess's destructor would wait another 30 seconds for a df that is stuck on a disk.
    if (!waitForFinished(pollInterval))
        setProcessState(NotRunning);
}

void CDfProcess::Run(const QString &folder)
{
    startTool(*this, QStringLiteral("df"), {QStringLiteral("-k"), folder});
}

qint64 CDfProcess::TotalAvailable()
{
    const QDeadlineTimer limit(50000);
    while (!waitForFinished(pollInterval)) {
        const bool waits = error() == QProcess::Timedout && state() != QProcess::NotRunning;
        if (waits && !limit.hasExpired() && !TerminationSignals::received())
            continue;
        if (state() == QProcess::Running)
            kill();
        return 0;
    }
    return availableMegabytes(readAllStandardOutput());
}

qint64 CDfProcess::availableMegabytes(const QByteArray &output)
{
    const QList<QByteArray> lines = output.split('\n');
    if (lines.size() < 2)
        return 0;
    // constData() ends the text at the first NUL byte.
    const QStringList fields =
        QString::fromUtf8(lines.at(1).constData()).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (fields.size() < 4)
        return 0;
    return fields.at(3).toLongLong() / 1024;
}
