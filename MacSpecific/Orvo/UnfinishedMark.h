#pragma once

#include <QString>

/// A hidden file in a destination whose installation hasn't come to its end, so that it is offered again.

/// The path of the mark in the folder.
QString unfinishedMark(const QString &folder);

/// Marks the folder, if it can be written. Any thread; takes as long as the disk.
void markUnfinished(const QString &folder);

/// Takes the mark away. Any thread; takes as long as the disk.
void removeUnfinishedMark(const QString &folder);
