#include "PageAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWizardPage>

namespace {

QAccessibleInterface *groupOf(const QString &, QObject *object)
{
    auto *page = qobject_cast<QWizardPage *>(object);
    return page ? new QAccessibleWidget(page, QAccessible::Grouping) : nullptr;
}

} // namespace

void installPageAccessibility()
{
    QAccessible::installFactory(groupOf);
}
