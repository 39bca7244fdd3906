#include "KeepAwake.h"

#include "computecontrol/ToolStart.h"

// systemd-inhibit holds for as long as the command that it runs. cat reads from this process, so it ends with
// it, even if it is killed.
KeepAwake::KeepAwake()
    : tool(std::make_unique<QProcess>())
{
    tool->setStandardOutputFile(QProcess::nullDevice());
    tool->setStandardErrorFile(QProcess::nullDevice());
    const QStringList arguments{QStringLiteral("--what=idle:sleep"),
        QStringLiteral("--who=Lumetra Database Installer"),
        QStringLiteral("--why=The database is being installed."), QStringLiteral("cat")};
    if (!startTool(*tool, QStringLiteral("systemd-inhibit"), arguments))
        tool.reset();
}

KeepAwake::~KeepAwake()
{
    if (!tool)
        return;
    tool->closeWriteChannel();
    tool->kill();
    tool->waitForFinished(500);
}
