#include "Fixture.h"

#include "ConclusionPage.h"
#include "CopyThread.h"
#include "InstallState.h"
#include "MacXUtils/TerminationSignals.h"
#include "PickDestPage.h"
#include "UnfinishedMark.h"

#include <QProgressBar>

#include <csignal>

class tst_ConclusionPage : public QObject {
    Q_OBJECT

    std::unique_ptr<QWizard> wizard;
    ConclusionPage *page = nullptr;

    void show(const QString &path)
    {
        wizard = std::make_unique<QWizard>();
        page = new ConclusionPage;
        wizard->setPage(2, new PickDestPage);
        wizard->setPage(3, page);
        wizard->setStartId(3);
        wizard->setField("path", path);
        wizard->show();
    }

private slots:
    void cleanup() { wizard.reset(); }

    void failureHasItsText_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("shown");

        const QString text = "Error message is:\n50%1 full";
        row("rights refused", -60005, "", "The username entered does not have admin privileges.");
        row("text of a tool", -100, text, text);
        row("code of the system", -61, "", "A MacOS error occured (-61)");
        row("positive code", 7, "", "A MacOS error occured (7)");
    }

    void failureHasItsText()
    {
        QFETCH(int, code);
        QFETCH(QString, message);
        show("/Volumes/50%1");
        QVERIFY(!wizard->button(QWizard::FinishButton)->isEnabled());
        QMetaObject::invokeMethod(page, "resultSet", Q_ARG(int, code), Q_ARG(QString, message));
        QMetaObject::invokeMethod(page, "handleResult");
        QTEST(page->subTitle(), "shown");
        QVERIFY(wizard->button(QWizard::FinishButton)->isEnabled());
        QVERIFY(page->findChild<QProgressBar *>()->isHidden());
        QCOMPARE(wizard->field("path").toString(), "/Volumes/50%1");
    }

    void unusableDestinationIsRefusedAtOnce_data()
    {
        const QString start = "Lumetra Database Installer was not able to ";
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("shown");
        row("parent is gone", "gone/L", start + "write the database to the selected location.");
        row("name is too long", QString(300, 'x'), start + "write the database to the selected location.");
        row("a file is in its place", "file", start + "access the selected location.");
        if (geteuid() == 0)
            row("stranger's", "stranger's", start + "write the database to the selected location.");
    }

    /// No rights would help, so none are asked for, and no tool is run.
    void unusableDestinationIsRefusedAtOnce()
    {
        QFETCH(QString, name);
        const Tree tree;
        tree.file("file");
        [[maybe_unused]] const int status = chown(tree.folder("stranger's").toUtf8(), 65534, 65534);
        sResultList = {QFileInfo(tree.file("source/a.zqin"))};
        show(tree.path(name));
        bool asked = false;
        QTimer timer;
        connect(&timer, &QTimer::timeout, page, [&asked] { asked = acceptBox() || asked; });
        timer.start(20);
        QMetaObject::invokeMethod(page, "doCopy");
        QCOMPARE(page->title(), "Database was not installed");
        QTEST(page->subTitle(), "shown");
        QVERIFY(!asked);
    }

    /// The worker is done, but the page hasn't heard of it yet.
    void stopAfterTheLastFileLeavesTheFolderMarked()
    {
        const Tree tree;
        sCopyFiles = false;
        sResultList = {QFileInfo(tree.file("source/a.zqin"))};
        show(tree.folder("destination"));
        QMetaObject::invokeMethod(page, "doCopy");
        QVERIFY(page->findChild<CopyThread *>()->wait(patience));
        QVERIFY(page->stopInstallation());
        QTRY_COMPARE_WITH_TIMEOUT(page->subTitle(), "Cancel was pressed.", patience);
        QVERIFY(QFile::exists(tree.path("destination/a.zqin")));
        QVERIFY(QFile::exists(unfinishedMark(tree.path("destination"))));
    }

    /// The event loop hasn't run since. Last, because the request can't be taken back.
    void requestToEndWhileTheFolderIsPreparedStartsNoCopy()
    {
        const Tree tree;
        const TerminationSignals handlers;
        show(tree.folder("destination"));
        raise(SIGTERM);
        QMetaObject::invokeMethod(page, "doCopy");
        QCOMPARE(page->subTitle(), "Cancel was pressed.");
        QVERIFY(!page->findChild<CopyThread *>());
    }
};

QTEST_MAIN(tst_ConclusionPage)
#include "tst_ConclusionPage.moc"
