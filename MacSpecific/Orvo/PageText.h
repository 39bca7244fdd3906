#pragma once

#include <QString>

class QLabel;
class QWizardPage;

/// What is as wide as it is in every window beside a page's text: the artwork's drawing and the margins, 236
/// pixels in most styles, and a little more in others.
constexpr int besidePageText = 250;

/// Shows `text` as the page's subtitle, with `name` in the place of its %1. A name, which may be a path or a
/// message with paths in it, loses the middle of every word or folder that is wider than the page, and of all
/// that takes more than four lines; it then stands whole in the tool tip. Assistive technology is always told
/// the whole text, by means of the focus, which goes to the page: from there Tab leads through the page from
/// the top, and Return presses the default button. A page that isn't shown speaks when it is. The page's
/// title is set before.
void showSubTitle(QWizardPage *page, const QString &text, const QString &name = QString());

/// The same in a label of the page's own.
void showInLabel(QWizardPage *page, QLabel *label, const QString &text, const QString &name = QString());

/// Has the page that the wizard shows speak its title and its text. Does nothing while it shows another page.
void announce(QWizardPage *page);

/// Lets the label's text be marked and copied.
void makeSelectable(QLabel *label);
