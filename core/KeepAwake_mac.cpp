#include "KeepAwake.h"

#include <unistd.h>

KeepAwake::KeepAwake()
{
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start(QStringLiteral("/usr/bin/caffeinate"),
        {QStringLiteral("-i"), QStringLiteral("-w"), QString::number(getpid())});
}

KeepAwake::~KeepAwake()
{
    tool.kill();
    tool.waitForFinished(1000);
}
