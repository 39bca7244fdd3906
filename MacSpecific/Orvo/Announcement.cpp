#include "Announcement.h"

#include <QAccessible>
#include <QWizardPage>

void announce(QWizardPage *page)
{
    page->setAccessibleName(page->title());
    page->setAccessibleDescription(page->subTitle());
    if (!page->hasFocus())
        return page->setFocus();
    QAccessibleEvent event(page, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}
