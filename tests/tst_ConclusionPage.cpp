#include "Fixture.h"

#include "ConclusionPage.h"
#include "InstallState.h"
#include "PickDestPage.h"
#include "macos/MacDoAuthorizedCommand.h"

class tst_ConclusionPage : public QObject {
    Q_OBJECT

private slots:
    void showsEveryOutcome()
    {
        SKIP_OUTSIDE_OWN_WORLD();
        const QString preference = "/Library/Preferences/com.brindle.CorvaneLumetra.plist";
        const QStringList accept{"Continue", "OK"}, decline{"Cancel Installation"};
        struct {
            QString destination, title, subTitle;
            QStringList answers;
            bool recorded;
        } const rows[] = {{"/Volumes/there", "Database Installed",
                              "The Corvane Lumetra Database is now ready for use.", accept, true},
            {"/Volumes/there", "Database was installed, but is not available",
                "System-wide preferences could not be set", decline, false},
            {"/proc/new", "Database was not installed",
                "Lumetra Database Installer was not able to write the database to the selected location.",
                decline, false},
            {"/Volumes/empty", "Database was not installed",
                "The source database data files couldn't be found.", {}, false}};
        const Tree tree;
        // Without a group "admin" the notice with two buttons comes first.
        const Mount groups(tree.file("group", "root:x:0:\n"), "/etc/group");
        QDir().mkpath("/Library/Preferences");
        QDir().mkpath("/Volumes/there");
        QFile::setPermissions("/Volumes/there", QFile::Permissions(0x7700));
        for (const auto &[destination, title, subTitle, answers, recorded] : rows) {
            QFile::remove(preference);
            sCopyFiles = false;
            sResultList.clear();
            if (destination != "/Volumes/empty")
                sResultList << tree.file("a.zqin");
            QWizard wizard;
            wizard.setPage(2, new PickDestPage);
            auto *page = new ConclusionPage;
            wizard.setPage(3, page);
            wizard.setStartId(3);
            wizard.setField("path", destination);
            const ModalAnswers boxes(answers);
            wizard.show();
            QTRY_VERIFY_WITH_TIMEOUT(wizard.button(QWizard::FinishButton)->isEnabled(), patience);
            QCOMPARE(page->title(), title);
            QCOMPARE(page->subTitle(), subTitle);
            QCOMPARE(boxes.seen.size(), answers.size());
            QCOMPARE(wizard.field("path").toString(), destination);
            QCOMPARE(contentsOf(preference).contains(destination.toUtf8()), recorded);
            QCOMPARE(contentsOf(destination + "/a.zqin").isEmpty(), !destination.endsWith("there"));
            if (gMacAuthorizationRef)
                freeAuthority(&gMacAuthorizationRef);
        }
        QCOMPARE(QFileInfo("/Volumes/there").permissions() & 0x777, QFile::Permissions(0x700));
        QCOMPARE(QFileInfo("/Volumes/empty").permissions() & 0x777, QFile::Permissions(0x755));
    }
};

TEST_IN_OWN_WORLD(tst_ConclusionPage)
#include "tst_ConclusionPage.moc"
