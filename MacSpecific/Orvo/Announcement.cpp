#include "Announcement.h"

#include <QAccessible>
#include <QLabel>
#include <QWizardPage>

void announce(QWizardPage *page)
{
    const QWizard *wizard = qobject_cast<QWizard *>(page->window());
    if (!wizard || wizard->currentPage() != page)
        return;
    const auto *label = page->findChild<QLabel *>();
    page->setAccessibleName(page->title());
    page->setAccessibleDescription(page->subTitle().isEmpty() && label ? label->text() : page->subTitle());
    if (!page->hasFocus())
        return page->setFocus();
    QAccessibleEvent event(page, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}
