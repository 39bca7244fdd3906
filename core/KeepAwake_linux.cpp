#include "KeepAwake.h"

#include "computecontrol/ToolStart.h"

// The inhibition holds as long as the process that systemd-inhibit runs: cat, which reads from this one and
// so ends with it, even if it is killed.
KeepAwake::KeepAwake()
{
    tool.setStandardOutputFile(QProcess::nullDevice());
    tool.setStandardErrorFile(QProcess::nullDevice());
    startTool(tool, QStringLiteral("systemd-inhibit"),
        {QStringLiteral("--what=idle:sleep"), QStringLiteral("--who=Lumetra Database Installer"),
            QStringLiteral("--why=The database is being installed."), QStringLiteral("cat")});
}

KeepAwake::~KeepAwake()
{
    tool.closeWriteChannel();
    if (!tool.waitForFinished(500))
        tool.kill();
}
