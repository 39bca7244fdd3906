#include "KeepAwake.h"

#include "computecontrol/ToolStart.h"

// systemd-inhibit holds for as long as the command that it runs. cat reads from this process, so it ends with
// it, even if it is killed.
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
