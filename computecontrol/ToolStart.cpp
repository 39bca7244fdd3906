#include "ToolStart.h"

// Works around Qt 5.15 on Linux: if fork fails, QProcess stays running with the process id -1, and kill(),
// which its destructor calls, would signal every process of the user.
bool startTool(QProcess &tool, const QString &program, const QStringList &arguments)
{
    tool.start(program, arguments);
    if (tool.state() == QProcess::NotRunning || tool.processId() > 0)
        return true;
    struct Access : QProcess {
        using QProcess::setProcessState;
    };
    (tool.*&Access::setProcessState)(QProcess::NotRunning);
    return false;
}
