#include "Fixture.h"

#include "InstallState.h"
#include "PickDestPage.h"
#include "SourcePage.h"
#include "UnfinishedMark.h"

#include <QPushButton>

/// Takes the place of the system's df for the time of its life.
class FakeDf {
public:
    explicit FakeDf(int megabytes)
    {
        // What it answers counts, whatever its exit code.
        const QByteArray line = "d 9 9 " + QByteArray::number(megabytes * 1024);
        QFile df(
            tree.file("df", "#!/bin/sh\nprintf %s \"$*\" >${0%df}asked; echo h; echo " + line + "; exit 1"));
        df.setPermissions(QFile::Permissions(0x7755));
        qputenv("PATH", QFile::encodeName(tree.path()));
    }
    FakeDf(const FakeDf &) = delete;
    ~FakeDf() { qputenv("PATH", searchPath); }

    QString arguments() const { return QString::fromUtf8(contentsOf(tree.path("asked"))); }

private:
    Tree tree;
    const QByteArray searchPath = qgetenv("PATH");
};

class tst_PickDestPage : public QObject {
    Q_OBJECT

    QWizard wizard;
    SourcePage *sourcePage = new SourcePage;
    PickDestPage *page = new PickDestPage;

    void pick(const QString &folder)
    {
        const FolderPick dialog(folder);
        page->findChild<QPushButton *>()->click();
    }

    /// The destination that is offered, both to the user and to the next page.
    QString offered() const
    {
        const QString path = wizard.field("path").toString();
        return page->subTitle().contains("\n\n" + path + "\n\n") ? path : page->subTitle();
    }

private slots:
    void initTestCase()
    {
        wizard.setPage(0, sourcePage);
        wizard.setPage(2, page);
        wizard.setStartId(2);
        wizard.show();
    }

    void picksTheFirstFreeName_data()
    {
        QTest::addColumn<QStringList>("taken");
        QTest::addColumn<QString>("name");

        QTest::newRow("nothing there") << QStringList() << "Lumetra";
        QTest::newRow("first taken") << QStringList{"Lumetra"} << "Lumetra_0";
        QTest::newRow("two taken") << QStringList{"Lumetra", "Lumetra_0"} << "Lumetra_1";
        QTest::newRow("only the second taken") << QStringList{"Lumetra_0"} << "Lumetra";
        const QString unfinished = unfinishedMark("Lumetra_0");
        QTest::newRow("second unfinished") << QStringList{"Lumetra", unfinished} << "Lumetra_0";
    }

    void picksTheFirstFreeName()
    {
        QFETCH(QStringList, taken);
        QFETCH(QString, name);
        const Tree tree;
        const QString folder = tree.folder("%1 \n é");
        for (const QString &each : taken)
            tree.file("%1 \n é/" + each);
        pick(folder);
        QCOMPARE(offered(), folder + '/' + name);
    }

    void dismissedDialogChangesNothing()
    {
        pick("/");
        QCOMPARE(offered(), "//Lumetra");
        pick({});
        QCOMPARE(offered(), "//Lumetra");
    }

    void proposalComesBackWithThePage()
    {
        pick("/");
        page->hide();
        page->show();
        QCOMPARE(offered(), "/Library/Application Support/Brindlewerks/Lumetra");
    }

    void looksAtTheDiskOfTheDestination_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("probed");

        const QString shared = "/Library/Application Support";
        QTest::newRow("parent") << "/a/b c/Lumetra"
                                << "/a/b c";
        QTest::newRow("shared folder") << shared + "/Brindlewerks/Lumetra" << shared;
        QTest::newRow("begins like the shared folder") << shared + "!/x" << shared;
        QTest::newRow("picked root") << "//Lumetra"
                                     << "/";
        QTest::newRow("single entry of the root") << "/Lumetra"
                                                  << "/Lumetra";
        QTest::newRow("no slash") << "Lumetra"
                                  << "Lumetra";
    }

    void looksAtTheDiskOfTheDestination()
    {
        QFETCH(QString, path);
        QFETCH(QString, probed);
        const FakeDf df(0);
        // On a file system that nothing else is on.
        sResultList = {QFileInfo("/dev/null")};
        wizard.setField("path", path);
        page->validatePage();
        QCOMPARE(df.arguments(), "-k " + probed);
    }

    void copyMustFit_data()
    {
        QTest::addColumn<int>("megabytes");
        QTest::addColumn<quint64>("size");
        QTest::addColumn<QString>("missing");

        QTest::newRow("a byte to spare") << 5 << quint64(4999999) << "";
        QTest::newRow("just full") << 5 << quint64(5000000) << "0.00 KB";
        QTest::newRow("below a kilobyte") << 5 << quint64(5000999) << "0.00 KB";
        QTest::newRow("a megabyte") << 0 << quint64(1000000) << "1000.00 KB";
        QTest::newRow("almost two megabytes") << 1 << quint64(2999999) << "1.00 MB";
        QTest::newRow("a gigabyte") << 0 << quint64(1000000000) << "1000.00 MB";
        QTest::newRow("more than two gigabytes") << 7 << quint64(2607000000) << "2.00 GB";
        QTest::newRow("more than a disk can hold") << 0 << ~quint64(0) << "9223372036.00 GB";
    }

    void copyMustFit()
    {
        QFETCH(int, megabytes);
        QFETCH(quint64, size);
        QFETCH(QString, missing);
        const FakeDf df(megabytes);
        sCopyFiles = true;
        sResultList = {QFileInfo("/dev/null")};
        sourcePage->dbSize = size;
        page->setSubTitle("before");
        QCOMPARE(page->validatePage(), missing.isEmpty());
        QVERIFY(!sCopyFiles);
        QVERIFY2(page->subTitle().contains(missing.isEmpty() ? "before" : " (" + missing + " additional"),
            qPrintable(page->subTitle()));
    }

    void movesOnOneDiskOnly_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<bool>("moves");

        QTest::newRow("one disk") << "a.zqin"
                                  << "b" << true;
        QTest::newRow("file is gone") << "gone.zqin"
                                      << "b" << false;
        QTest::newRow("folder is gone") << "a.zqin"
                                        << "gone" << false;
        QTest::newRow("both are gone") << "gone.zqin"
                                       << "gone" << false;
        QTest::newRow("no file") << ""
                                 << "b" << false;
    }

    void movesOnOneDiskOnly()
    {
        QFETCH(QString, file);
        QFETCH(QString, folder);
        QFETCH(bool, moves);
        const Tree tree;
        tree.file("a.zqin");
        tree.folder("b");
        sResultList.clear();
        if (!file.isEmpty())
            sResultList << QFileInfo(tree.path(file));
        sourcePage->dbSize = ~quint64(0);
        wizard.setField("path", tree.path(folder) + "/Lumetra");
        QCOMPARE(page->validatePage(), moves);
        QCOMPARE(sCopyFiles, moves);
        QCOMPARE(page->subTitle() == "The files will be moved to the selected location.", moves);
    }
};

QTEST_MAIN(tst_PickDestPage)
#include "tst_PickDestPage.moc"
