#include "Fixture.h"

#include "SourcePage.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

/// The program lies in a bundle of its own, beside which the default location is.
class tst_SourcePage : public QObject {
    Q_OBJECT

    Tree tree;
    const QString location = QDir::cleanPath(QCoreApplication::applicationDirPath() + "/../../../Lumetra");

    /// Presses the button as soon as it can be and picks a folder of the tree, or none.
    void pick(const SourcePage &page, const QString &folder) const
    {
        auto *button = page.findChild<QPushButton *>();
        QTRY_VERIFY_WITH_TIMEOUT(!button->isHidden() && button->isEnabled(), patience);
        const FolderPick dialog(folder.isEmpty() ? folder : tree.path(folder));
        button->click();
        QCOMPARE(dialog.caption, QString("Select Database directory"));
        QCOMPARE(page.findChild<QLabel *>()->text(), QString("Scanning..."));
        QCOMPARE(button->isEnabled(), folder.isEmpty());
    }

private slots:
    void initTestCase()
    {
        tree.folder("empty");
        tree.folder("R&D %1");
        QFile::resize(tree.file("Full %2 é/sub/a.zqin"), 5368709120);
    }

    void cleanup() { QFile::remove(location); }

    void tellsTheSize_data()
    {
        QTest::addColumn<QString>("beside");
        QTest::addColumn<QStringList>("picks");
        QTest::addColumn<QString>("said");
        QTest::addColumn<quint64>("size");

        QTest::newRow("nothing there") << "" << QStringList() << "was not found.\n" << quint64(0);
        QTest::newRow("empty default")
            << "empty" << QStringList() << "from the source folders to your hard disk.* 0.00 GB  "
            << quint64(0);
        QTest::newRow("full default")
            << "Full %2 é" << QStringList() << "from the source folders to your hard disk.* 5.37 GB  "
            << quint64(5368709120);
        QTest::newRow("dismissed") << "" << QStringList{""} << "^Scanning...$" << quint64(0);
        QTest::newRow("empty pick") << "" << QStringList{"", "R&D %1"} << "found in R&D %1.\n" << quint64(0);
        QTest::newRow("full pick") << "empty" << QStringList{"R&D %1", "Full %2 é"}
                                   << "from \"Full %2 é\" to your hard disk.* 5.37 GB  "
                                   << quint64(5368709120);
    }

    void tellsTheSize()
    {
        QFETCH(QString, beside);
        QFETCH(QStringList, picks);
        QFETCH(QString, said);
        QFETCH(quint64, size);
        QVERIFY(beside.isEmpty() || QFile::link(tree.path(beside), location));
        SourcePage page;
        const QSignalSpy completions(&page, &SourcePage::completeChanged);
        QVERIFY(!page.isComplete());
        for (const QString &folder : picks)
            pick(page, folder);
        const QRegularExpression form(said, QRegularExpression::DotMatchesEverythingOption);
        const auto *label = page.findChild<QLabel *>();
        QTRY_VERIFY2_WITH_TIMEOUT(form.match(label->text()).hasMatch(), qPrintable(label->text()), patience);
        QCOMPARE(page.dbSize, size);
        QCOMPARE(page.isComplete(), size > 0);
        QCOMPARE(completions.count(), size > 0);
        QCOMPARE(page.findChild<QPushButton *>()->isHidden(), size > 0);
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
