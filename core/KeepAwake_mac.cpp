#include "KeepAwake.h"

#include <QProcess>

#include <unistd.h>

KeepAwake::KeepAwake()
    : tool(std::make_unique<QProcess>())
{
    tool->setStandardErrorFile(QProcess::nullDevice());
    tool->start(QStringLiteral("/usr/bin/caffeinate"),
        {QStringLiteral("-i"), QStringLiteral("-w"), QString::number(getpid())});
}

KeepAwake::~KeepAwake()
{
    tool->kill();
    tool->waitForFinished(500);
}
