#pragma once

#include <QString>

class QWizardPage;

/// Makes the page's title its name and its subtitle, or without one the text on it, its description, and
/// gives it the focus, upon which assistive technology speaks them. From there Tab leads through the page
/// from the top, and Return presses the default button. `whole` is spoken instead of a subtitle that was
/// shortened to fit. The page's tool tip becomes the wizard's too, in which the titles lie. Does nothing
/// while the wizard shows another page.
void announce(QWizardPage *page, const QString &whole = QString());
