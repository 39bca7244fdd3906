#pragma once

#include <QProcess>

/// Starts `tool` as QProcess::start does, on the caller's thread. Returns false if the system has no process
/// left; then destroy the tool at once, or the event loop sets it running again, with the process id -1.
bool startTool(QProcess &tool, const QString &program, const QStringList &arguments);
