#pragma once

#include <QString>

class QWidget;

/// `text`, a path or a message with paths in it, as it fits on a page: a word or folder name wider than the
/// text column and a text of more than four lines lose their middle. The page's window then carries the whole
/// text as its tool tip, and none otherwise.
QString fittedText(const QString &text, QWidget *page);
