#pragma once

#include <QString>

class QWidget;

/// `whole`, a path or a message with paths in it, as it fits on a page: a word or folder name wider than the
/// text column and a text of more than four lines lose their middle, and one that never ends all but its
/// beginning. The page then carries the text as its tool tip, and none otherwise.
QString fittedText(const QString &whole, QWidget *page);
