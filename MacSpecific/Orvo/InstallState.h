#pragma once

#include <QFileInfo>
#include <QList>

/// What the pages and the two workers share. No lock: each variable is written before the thread that reads
/// it starts, or read only after the writer's last signal has arrived.

/// The database's data files with absolute paths, in scan order. Written by the size scanner.
extern QList<QFileInfo> sResultList;

/// The result code of an installation that failed, or that found nothing to do.
constexpr int installationFailed = -100;

/// The shared folder of the suite, and the database's folder in it, which is proposed to the user.
constexpr char productFolder[] = "/Library/Application Support/Brindlewerks";
constexpr char defaultDestination[] = "/Library/Application Support/Brindlewerks/Lumetra";

/// Whether the files are moved instead of copied, in spite of the name. Written by the destination page.
extern bool sCopyFiles;
