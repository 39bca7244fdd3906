#include "Announcement.h"

#include <QAccessible>
#include <QWizardPage>

void announce(QWizardPage *page)
{
    page->setAccessibleName(page->title());
    page->setAccessibleDescription(page->subTitle());
    QAccessibleEvent event(page, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}
