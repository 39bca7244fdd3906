#include "Fixture.h"

#include "EulaPage.h"

#include <QAccessible>
#include <QCheckBox>
#include <QSignalSpy>

class tst_EulaPage : public QObject {
    Q_OBJECT

private slots:
    void completionIsToldOnce_data()
    {
        QTest::addColumn<bool>("byScreenReader");
        QTest::newRow("by a click") << false;
        QTest::newRow("by a screen reader") << true;
    }

    void completionIsToldOnce()
    {
        QFETCH(bool, byScreenReader);
        EulaPage page;
        const QSignalSpy completions(&page, &EulaPage::completeChanged);
        auto *box = page.findChild<QCheckBox *>();
        if (byScreenReader)
            QAccessible::queryAccessibleInterface(box)->actionInterface()->doAction(
                QAccessibleActionInterface::toggleAction());
        else
            box->click();
        QVERIFY(page.isComplete());
        QCOMPARE(completions.count(), 1);
    }
};

QTEST_MAIN(tst_EulaPage)
#include "tst_EulaPage.moc"
