#include "ToolStart.h"

// On Linux the toolkit overlooks that making the process failed: the tool seems to run with the process id
// -1, and to kill it, as its destructor does as well, would kill every process of the user.
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
