#include "Fixture.h"

#include "InstallState.h"
#include "PickDestPage.h"
#include "SourcePage.h"
#include "UnfinishedMark.h"

class tst_PickDestPage : public QObject {
    Q_OBJECT

    /// On a file system that nothing else is on.
    static constexpr char onItsOwn[] = "/dev/null";

    Tree tools;
    QWizard wizard;
    SourcePage *sourcePage = new SourcePage;
    PickDestPage *page = new PickDestPage;

    /// What a scan reports at its end, here without one.
    void foundBytes(quint64 size)
    {
        const QSignalSpy completions(sourcePage, &SourcePage::completeChanged);
        QMetaObject::invokeMethod(sourcePage, "updateDBSize", Q_ARG(QString, ""), Q_ARG(quint64, size));
        QCOMPARE(completions.count(), 1);
    }

    /// What df answers from now on, which counts whatever its exit code.
    void setRoom(int megabytes) const
    {
        QFile::remove(tools.path("asked"));
        const QByteArray line = "d 9 9 " + QByteArray::number(megabytes * 1024);
        tools.program("df", "printf %s \"$*\" >${0%df}asked; echo h; echo " + line + "; exit 1");
    }

    bool goesOn(const QList<QFileInfo> &files, const QString &path)
    {
        sResultList = files;
        wizard.setField("path", path);
        return page->validatePage();
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
        qputenv("PATH", QFile::encodeName(tools.path()));
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
        pickFolder(page, folder);
        QCOMPARE(offered(), folder + '/' + name);
    }

    void othersUnfinishedFolderIsLeftAlone()
    {
        const Tree tree;
        tree.file(unfinishedMark("Lumetra"));
        if (chown(QFile::encodeName(tree.path("Lumetra")), 65534, 65534) != 0)
            QSKIP("only root can make another user's folder");
        pickFolder(page, tree.path());
        QCOMPARE(offered(), tree.path("Lumetra_0"));
    }

    void proposalComesBackWithThePage()
    {
        pickFolder(page, "/");
        page->hide();
        page->show();
        QCOMPARE(offered(), "/Library/Application Support/Brindlewerks/Lumetra");
    }

    void looksAtTheDiskOfTheDestination_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("probed");

        const QString shared = "/Library/Application Support";
        row("parent", "/a/b c/Lumetra", "/a/b c");
        row("shared folder", shared + "/Brindlewerks/Lumetra", shared);
        row("begins like the shared folder", shared + "!/x", shared);
        row("picked root", "//Lumetra", "/");
        row("single entry of the root", "/Lumetra", "/Lumetra");
    }

    void looksAtTheDiskOfTheDestination()
    {
        QFETCH(QString, path);
        QFETCH(QString, probed);
        setRoom(0);
        goesOn({QFileInfo(onItsOwn)}, path);
        QCOMPARE(contentsOf(tools.path("asked")), "-k " + probed.toUtf8());
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
        setRoom(megabytes);
        sCopyFiles = true;
        foundBytes(size);
        page->setSubTitle("before");
        QCOMPARE(goesOn({QFileInfo(onItsOwn)}, "/Lumetra"), missing.isEmpty());
        QVERIFY(!sCopyFiles);
        QVERIFY2(page->subTitle().contains(missing.isEmpty() ? "before" : " (" + missing + " additional"),
            qPrintable(page->subTitle()));
    }

    void filesOnTheDestinationsDiskAreMoved()
    {
        const Tree tree;
        foundBytes(~quint64(0));
        QVERIFY(goesOn({QFileInfo(tree.file("a.zqin"))}, tree.path("Lumetra")));
        QVERIFY(sCopyFiles);
        QCOMPARE(page->subTitle(), "The files will be moved to the selected location.");
    }

    void filesThatAreGoneAreNotMoved()
    {
        const Tree tree;
        foundBytes(~quint64(0));
        QVERIFY(!goesOn({QFileInfo(tree.path("gone.zqin"))}, tree.path("gone/Lumetra")));
        QVERIFY(!sCopyFiles);
        QVERIFY(!goesOn({}, tree.path("Lumetra")));
        QVERIFY(!sCopyFiles);
    }
};

QTEST_MAIN(tst_PickDestPage)
#include "tst_PickDestPage.moc"
