#pragma once

#include <QString>

/// A hidden file in a destination whose installation hasn't finished, so that the folder is offered again.

/// The path of the mark in the folder.
QString unfinishedMark(const QString &folder);

/// Marks the folder, if the user can write to it. Any thread; takes as long as the disk.
void markUnfinished(const QString &folder);
