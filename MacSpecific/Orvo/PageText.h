#pragma once

#include <QString>

class QLabel;
class QWizardPage;

/// Pixels of the window's width that aren't a page's text: the artwork and the margins, 236 in most styles,
/// with some room for others.
constexpr int besidePageText = 250;

/// Shows `text` as the page's subtitle, with `name`, which may be a path or a message, for its %1. Shortens
/// words and folder names wider than the page, and a name that would make the text longer than nine lines, in
/// the middle; the tool tip then has the whole name, or 16 lines of it and a mark. Assistive technology gets
/// the whole text. The page takes the focus so that screen readers speak it; from there Tab goes through the
/// page from the top, and Return presses the default button. A page that isn't current does all that once it
/// is.
void showSubTitle(QWizardPage *page, const QString &text, const QString &name = QString());

/// The same in a label of the page's own.
void showInLabel(QWizardPage *page, QLabel *label, const QString &text, const QString &name = QString());

/// Makes screen readers speak the page's title and text, if it is the wizard's current page.
void announce(QWizardPage *page);

/// Lets the user select and copy the label's text.
void makeSelectable(QLabel *label);
