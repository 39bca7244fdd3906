#include "Announcement.h"

#include <QAccessible>
#include <QLabel>
#include <QWizardPage>

namespace {

QString spokenTextOf(QLabel *label)
{
    return label->accessibleName().isEmpty() ? label->text() : label->accessibleName();
}

} // namespace

void announce(QWizardPage *page, const QString &whole)
{
    auto *wizard = qobject_cast<QWizard *>(page->window());
    if (!wizard || wizard->currentPage() != page)
        return;
    wizard->setToolTip(page->toolTip());
    // The label of the subtitles is the wizard's, one for all pages.
    for (QLabel *label : wizard->findChildren<QLabel *>()) {
        if (label->text() == page->subTitle())
            label->setAccessibleName(whole);
    }
    auto *own = page->findChild<QLabel *>();
    page->setAccessibleName(page->title());
    page->setAccessibleDescription(!whole.isEmpty() ? whole
            : page->subTitle().isEmpty() && own     ? spokenTextOf(own)
                                                    : page->subTitle());
    if (!page->hasFocus())
        return page->setFocus();
    QAccessibleEvent event(page, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}
