#pragma once

#include <QProcess>

/// Starts `tool` as QProcess::start does, on the caller's thread. Returns false if the system has no process
/// left. Destroy the tool at once then: the event loop would make it running again, with the process id -1.
bool startTool(QProcess &tool, const QString &program, const QStringList &arguments);
