#pragma once

class QWizardPage;

/// Makes the page's title and subtitle its name and description and gives it the focus, upon which assistive
/// technology speaks them. From there Tab leads through the page from the top, and Return presses the
/// default button.
void announce(QWizardPage *page);
