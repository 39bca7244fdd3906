#include "Fixture.h"

#include "SourcePage.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

/// The program lies in a bundle of its own, beside which the default location is.
class tst_SourcePage : public QObject {
    Q_OBJECT

private slots:
    void tellsTheSize()
    {
        struct {
            const char *beside;
            QStringList picks;
            QString part;
            quint64 size;
        } const rows[] = {{nullptr, {}, "not found", 0}, {"b/a.zqimage", {}, "approximately 0.00 GB", 0},
            {nullptr, {""}, "Scanning...", 0},
            {nullptr, {"", "Empty %1", "Full %2 é"}, "5.37 GB", 5368709120},
            {"b/a.zqimage", {"Full %2 é"}, "\"Full %2 é\"", 5368709120}};
        const Tree tree;
        tree.folder("Empty %1");
        QFile::resize(tree.file("Full %2 é/sub/a.zqin"), 5368709120);
        tree.file("b/a.zqimage");
        const QString location =
            QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../../../Lumetra");
        for (const auto &[beside, picks, part, size] : rows) {
            QFile::remove(location);
            QVERIFY(!beside || QFile::link(tree.path(beside), location));
            SourcePage page;
            const auto *label = page.findChild<QLabel *>();
            auto *button = page.findChild<QPushButton *>();
            const QSignalSpy completions(&page, &SourcePage::completeChanged);
            QVERIFY(!page.isComplete());
            for (const QString &pick : picks) {
                QTRY_VERIFY_WITH_TIMEOUT(!button->isHidden() && button->isEnabled(), patience);
                const ModalAnswers answers({pick.isEmpty() ? pick : tree.path(pick)});
                button->click();
                QCOMPARE(label->text(), QString("Scanning..."));
                QCOMPARE(button->isEnabled(), pick.isEmpty());
            }
            QTRY_VERIFY_WITH_TIMEOUT(label->text().contains(part), patience);
            QCOMPARE(page.dbSize, size);
            QCOMPARE(page.isComplete(), size > 0);
            QCOMPARE(completions.count(), size > 0);
            QCOMPARE(button->isHidden(), size > 0);
        }
        QFile::remove(location);
    }

    void goesAwayDuringAScan()
    {
        SourcePage page;
        const ModalAnswers answers({"/usr"});
        page.findChild<QPushButton *>()->click();
    }
};

QTEST_MAIN(tst_SourcePage)
#include "tst_SourcePage.moc"
