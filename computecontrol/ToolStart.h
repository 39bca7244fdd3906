#pragma once

#include <QProcess>

/// Starts `tool` as QProcess::start does, on the caller's thread. False when the system has no process left;
/// the tool isn't running then and must be destroyed.
bool startTool(QProcess &tool, const QString &program, const QStringList &arguments);
