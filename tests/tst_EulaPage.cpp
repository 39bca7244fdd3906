#include "Fixture.h"

#include "EulaPage.h"

#include <QAccessible>
#include <QCheckBox>
#include <QSignalSpy>

class tst_EulaPage : public QObject {
    Q_OBJECT

private slots:
    void completionIsToldOnce()
    {
        EulaPage page;
        const QSignalSpy completions(&page, &EulaPage::completeChanged);
        auto *box = page.findChild<QCheckBox *>();
        box->click();
        QVERIFY(page.isComplete());
        QCOMPARE(completions.count(), 1);
        const QString byScreenReader = QAccessibleActionInterface::toggleAction();
        QAccessible::queryAccessibleInterface(box)->actionInterface()->doAction(byScreenReader);
        QVERIFY(!page.isComplete());
        QCOMPARE(completions.count(), 2);
    }
};

QTEST_MAIN(tst_EulaPage)
#include "tst_EulaPage.moc"
