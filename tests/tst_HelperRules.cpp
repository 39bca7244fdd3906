#include "Fixture.h"

#include "platform/HelperPlace.h"
#include "platform/helper/HelperProtocol.h"
#include "platform/helper/HelperRules.h"

#include <sys/stat.h>

class tst_HelperRules : public QObject {
    Q_OBJECT

private slots:
    void onlyWellFormedRequestsAreAccepted()
    {
        const QByteArray nul(1, '\0'), mkdir = "/bin/mkdir" + nul;
        const QByteArray longest(int(largestRequest) - mkdir.size() - 1, 'x');
        const QByteArrayList good{nul, mkdir + "a" + nul, mkdir + longest + nul};
        const QByteArrayList bad{"", "cut off", mkdir + "cut off", mkdir + longest + "x" + nul};
        for (QByteArray packet : good + bad) {
            // In memory of its exact size, where a sanitizer sees what is read past it.
            const std::vector<char> bytes(packet.begin(), packet.end());
            const bool accepted = !parseRequest({bytes.data(), bytes.size()}).empty();
            QVERIFY2(accepted == good.contains(packet), packet.left(50).replace('\0', ' '));
        }
    }

    void onlyWhatAnInstallationNeedsIsAllowed_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<bool>("isAllowed");
        const QString longest = "/" + QString(4086, 'x') + "/Lumetra";
        const QString list = "/Library/Preferences/com.brindle.CorvaneLumetra|LumetraFullDatabasePath";
        const QString product = "/Library/Application Support/Brindlewerks";
        const QStringList allowed{"/bin/mkdir|-m|775|" + product, "/bin/mkdir|-m|755|" + longest,
            "/usr/bin/chgrp|27|" + product, "/usr/sbin/chown|1000:27|/a b/Lumetra",
            "/usr/sbin/chown|-h|1000|/a/Lumetra_0", "/usr/sbin/chown|-h|1000:27|/a/Lumetra_120",
            "/bin/chmod|0775|/Lumetra", "/usr/bin/defaults|delete|" + list,
            "/usr/bin/defaults|write|" + list + "|" + longest};
        for (const QString &words : allowed)
            QTest::newRow(words.left(80).toUtf8()) << words << true;
        const QStringList refused{"/bin/sh|-c|id", "/bin/../bin/mkdir|-m|755|/a/Lumetra",
            "/bin/mkdir|/a/Lumetra", "/bin/mkdir|-m|777|/a/Lumetra", "/bin/mkdir|-m|755|/a/Lumetra|/etc",
            "/bin/mkdir|-m|755|/a/x" + longest, "/bin/mkdir|-m|755|a/Lumetra", "/bin/mkdir|-m|755|",
            "/bin/mkdir|-m|755|/a//Lumetra", "/bin/mkdir|-m|755|/a/./Lumetra",
            "/bin/mkdir|-m|755|/a/../Lumetra", "/bin/mkdir|-m|755|/a/Lumetra_",
            "/bin/mkdir|-m|755|/a/Lumetra_1x", "/bin/mkdir|-m|755|/a/xLumetra",
            "/bin/mkdir|-m|755|/a/Brindlewerks", "/bin/mkdir|-m|755|" + product + "/x",
            "/usr/bin/chgrp|0|/a/Lumetra", "/usr/bin/chgrp|27|/etc", "/usr/sbin/chown|0|/a/Lumetra",
            "/usr/sbin/chown|1000|" + product, "/usr/sbin/chown|-h|1000:27|" + product,
            "/usr/sbin/chown|1000:0|/a/Lumetra", "/usr/sbin/chown|-R|1000|/a/Lumetra",
            "/bin/chmod|4755|/a/Lumetra", "/bin/chmod|0775|/etc", "/usr/bin/defaults|write|/etc/cron.d/x|a|b",
            "/usr/bin/defaults|write|" + list, "/usr/bin/defaults|write|" + list + "|",
            "/usr/bin/defaults|write|" + list + "|a|b", "/usr/bin/defaults|write|" + list + "x|a",
            "/usr/bin/defaults|read|" + list, "/usr/bin/defaults|delete|" + list + "|a",
            "/usr/bin/defaults|write|" + list + "|" + QString(4096, 'x')};
        for (const QString &words : refused)
            QTest::newRow(words.left(100).toUtf8()) << words << false;
    }

    void onlyWhatAnInstallationNeedsIsAllowed()
    {
        QFETCH(const QString, words);
        HelperRequest request;
        for (const QString &word : words.split('|'))
            request.push_back(word.toStdString());
        const HelperRule *rule = ruleFor(request, {1000, 27});
        const bool isAllowed = rule && (!rule->folders || pathRefusal(request.back()).empty());
        QTEST(isAllowed, "isAllowed");
    }

    void nothingIsMadeInTheSystemsFolders()
    {
        for (const char *parent : {"/usr", "/usr/share/vim/vim90/pack", "/etc", "/bin", "/sbin", "/lib",
                 "/lib64/x", "/boot", "/dev/shm", "/proc/1", "/sys", "/run", "/run/mediax", "/var/tmp",
                 "/root", "", "(unreachable)/mnt"})
            QVERIFY2(!parentRefusal(parent).empty(), parent);
        for (const char *parent : {"/", "/opt", "/home/a/usr", "/mnt", "/media/a/b", "/Volumes/Disc",
                 "/Library", "/Users", "/srv", "/usrx", "/run/media", "/run/media/a/b"})
            QVERIFY2(parentRefusal(parent).empty(), parent);
    }

    void withoutTheGroupNoneIsGiven()
    {
        QVERIFY(!ruleFor({"/usr/bin/chgrp", "-1", "/Lumetra"}, {1000, {}}));
        QVERIFY(!ruleFor({"/usr/sbin/chown", "1000:-1", "/Lumetra"}, {1000, {}}));
        QVERIFY(ruleFor({"/usr/sbin/chown", "1000", "/Lumetra"}, {1000, {}}));
    }

    void replaceableFileIsSeen()
    {
        const Tree tree;
        const QByteArray file = tree.file("a/b/file").toUtf8();
        const auto isReplaceable = [&](mode_t folderMode, mode_t fileMode) {
            return chmod(tree.path("a").toUtf8(), folderMode) == 0 && chmod(file, fileMode) == 0
                && isReplaceableByAnyone(tree.path("a/b/../b/file").toStdString());
        };
        QVERIFY(!isReplaceable(0775, 0775));
        QVERIFY(isReplaceable(0755, 0757));
        QVERIFY(isReplaceable(0777, 0755));
        QVERIFY(!isReplaceable(01777, 0755));
    }
};

QTEST_GUILESS_MAIN(tst_HelperRules)
#include "tst_HelperRules.moc"
