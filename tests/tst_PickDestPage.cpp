#include "Fixture.h"

#include "InstallState.h"
#include "PickDestPage.h"
#include "SourcePage.h"

#include <QPushButton>

class tst_PickDestPage : public QObject {
    Q_OBJECT

    QWizard wizard;
    SourcePage *sourcePage = new SourcePage;
    PickDestPage *page = new PickDestPage;
    const QString proposal = "/Library/Application Support/Brindlewerks/Lumetra";

private slots:
    void initTestCase()
    {
        wizard.setPage(0, sourcePage);
        wizard.setPage(2, page);
        wizard.setStartId(2);
        wizard.show();
    }

    void picksTheFirstFreeName()
    {
        const Tree tree;
        const QString folder = tree.folder("%1 \n é");
        const auto isOffered = [&](const QString &destination) {
            return wizard.field("path") == destination
                && page->subTitle().contains("\n\n" + destination + "\n\n");
        };
        const auto pick = [&](const QString &picked) {
            const FolderPick dialog(picked);
            page->findChild<QPushButton *>()->click();
        };
        for (const QString name : {"/Lumetra", "/Lumetra_0", "/Lumetra_1"}) {
            pick(folder);
            QVERIFY2(isOffered(folder + name), qPrintable(page->subTitle()));
            tree.file("%1 \n é" + name);
        }
        for (const char *picked : {"/", ""}) {
            pick(picked);
            QVERIFY2(isOffered("//Lumetra"), qPrintable(page->subTitle()));
        }
        page->hide();
        page->show();
        QVERIFY(isOffered(proposal));
    }

    void refusesWhatDoesNotFit()
    {
        const QString folder = "/Library/Application Support";
        struct {
            QString path, probed;
            int megabytes;
            quint64 size;
            QString amount;
        } const rows[] = {{"/a/b c/Lumetra", "/a/b c", 5, 4999999, ""},
            {proposal, folder, 5, 5000000, "0.00 KB"}, {folder + "!/x", folder, 5, 5000999, "0.00 KB"},
            {"//Lumetra", "/", 0, 1000000, "1000.00 KB"}, {"/Lumetra", "/Lumetra", 1, 2999999, "1.00 MB"},
            {"/a/L", "/a", 0, 1000000000, "1000.00 MB"}, {"Lumetra", "Lumetra", 7, 2607000000, "2.00 GB"},
            {"/a/L", "/a", 0, ~quint64(0), "9223372036.00 GB"}};
        sResultList = {QFileInfo("/proc/version")};
        const QByteArray searchPath = qgetenv("PATH");
        for (const auto &[path, probed, megabytes, size, amount] : rows) {
            const Tree tree;
            // What it answers counts, whatever its exit code.
            const QByteArray line = "d 9 9 " + QByteArray::number(megabytes * 1024);
            QFile df(tree.file(
                "df", "#!/bin/sh\nprintf %s \"$*\" >${0%df}probed; echo h; echo " + line + "; exit 1"));
            df.setPermissions(QFile::Permissions(0x7755));
            qputenv("PATH", tree.path().toUtf8());
            sCopyFiles = true;
            sourcePage->dbSize = size;
            wizard.setField("path", path);
            page->setSubTitle("before");
            QCOMPARE(page->validatePage(), amount.isEmpty());
            QVERIFY2(page->subTitle().contains(amount.isEmpty() ? "before" : " (" + amount + " additional"),
                qPrintable(page->subTitle()));
            QCOMPARE(QString::fromUtf8(contentsOf(tree.path("probed"))), "-k " + probed);
            QVERIFY(!sCopyFiles);
        }
        qputenv("PATH", searchPath);
    }

    void movesOnOneDevice()
    {
        const Tree tree;
        tree.file("a.zqin");
        tree.folder("b");
        sourcePage->dbSize = ~quint64(0);
        const QList<QFileInfo> present{tree.path("a.zqin")}, gone{tree.path("gone")};
        for (const auto &list : {present, gone, {}}) {
            for (const char *parent : {"b", "gone"}) {
                const bool same = list == present && *parent == 'b';
                sResultList = list;
                wizard.setField("path", tree.path(parent) + "/Lumetra");
                QCOMPARE(page->validatePage(), same);
                QCOMPARE(sCopyFiles, same);
                QCOMPARE(page->subTitle() == "The files will be moved to the selected location.", same);
            }
        }
    }
};

QTEST_MAIN(tst_PickDestPage)
#include "tst_PickDestPage.moc"
