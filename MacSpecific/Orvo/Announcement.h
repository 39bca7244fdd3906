#pragma once

class QWizardPage;

/// Makes the page's title and subtitle its name and description, and tells assistive technology that they
/// changed.
void announce(QWizardPage *page);
