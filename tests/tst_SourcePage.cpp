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
        const QString search =
            "\nPlease press \"Find data files\" to locate the \"Lumetra\" database source files folder.";
        const auto found = [](const char *source, const char *gigabytes) {
            return QByteArray("This Installer will copy or move the Corvane Lumetra Database from ") + source
                + " to your hard disk.\n\nThe databases will occupy approximately " + gigabytes
                + " GB  of additional disk space.";
        };
        struct {
            const char *beside;
            QStringList picks;
            QString text;
            quint64 size;
        } const rows[] = {{nullptr, {}, "The Lumetra database source folder was not found." + search, 0},
            {"empty", {}, found("the source folders", "0.00"), 0}, {nullptr, {""}, "Scanning...", 0},
            {nullptr, {"", "R&D %1"}, "No Lumetra database files were found in R&D %1." + search, 0},
            {"empty", {"R&D %1", "Full %2 é"}, found("\"Full %2 é\"", "5.37"), 5368709120}};
        const Tree tree;
        tree.folder("empty");
        tree.folder("R&D %1");
        QFile::resize(tree.file("Full %2 é/sub/a.zqin"), 5368709120);
        const QString location =
            QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../../../Lumetra");
        for (const auto &[beside, picks, text, size] : rows) {
            QFile::remove(location);
            QVERIFY(!beside || QFile::link(tree.path(beside), location));
            SourcePage page;
            const auto *label = page.findChild<QLabel *>();
            auto *button = page.findChild<QPushButton *>();
            const QSignalSpy completions(&page, &SourcePage::completeChanged);
            QVERIFY(!page.isComplete());
            for (const QString &pick : picks) {
                QTRY_VERIFY_WITH_TIMEOUT(!button->isHidden() && button->isEnabled(), patience);
                const FolderPick dialog(pick.isEmpty() ? pick : tree.path(pick));
                button->click();
                QCOMPARE(dialog.caption, QString("Select Database directory"));
                QCOMPARE(label->text(), QString("Scanning..."));
                QCOMPARE(button->isEnabled(), pick.isEmpty());
            }
            QTRY_COMPARE_WITH_TIMEOUT(label->text(), text, patience);
            QCOMPARE(page.dbSize, size);
            QCOMPARE(page.isComplete(), size > 0);
            QCOMPARE(completions.count(), size > 0);
            QCOMPARE(button->isHidden(), size > 0);
        }
        QFile::remove(location);
    }

    void takesAResultWithoutAScanner()
    {
        SourcePage page;
        for (const char *slot : {"updateDBSize", "customDBSourceLocation"})
            QMetaObject::invokeMethod(&page, slot, Q_ARG(QString, "/a"), Q_ARG(quint64, 7));
        QCOMPARE(page.dbSize, quint64(7));
    }
};

QTEST_MAIN(tst_SourcePage)
#include "tst_SourcePage.moc"
