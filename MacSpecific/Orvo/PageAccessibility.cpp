#include "PageAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWizardPage>

namespace {

class PageGroup : public QAccessibleWidget {
public:
    explicit PageGroup(QWizardPage *wizardPage)
        : QAccessibleWidget(wizardPage, QAccessible::Grouping)
        , page(wizardPage)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? page->title() : QAccessibleWidget::text(kind);
    }

private:
    const QWizardPage *page;
};

QAccessibleInterface *groupOf(const QString &, QObject *object)
{
    auto *page = qobject_cast<QWizardPage *>(object);
    return page ? new PageGroup(page) : nullptr;
}

} // namespace

void installPageAccessibility()
{
    QAccessible::installFactory(groupOf);
}
