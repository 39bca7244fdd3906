#include "Fixture.h"
#include "OwnMounts.h"

#include "computecontrol/AccountQueries.h"

class tst_AccountQueries : public QObject {
    Q_OBJECT

private slots:
    void userHasTheSystemsName() { QCOMPARE(getUserName(0), QString("root")); }

    void findsGroupsOfAnySize_data()
    {
        QTest::addColumn<int>("members");
        QTest::addColumn<gid_t>("found");

        QTest::newRow("one member") << 1 << gid_t(4242);
        QTest::newRow("several buffers' worth") << 30000 << gid_t(4242);
        QTest::newRow("more than the tenth buffer's worth") << 300000 << gid_t(-1);
    }

    void findsGroupsOfAnySize()
    {
        QFETCH(int, members);
        QFETCH(gid_t, found);
        if (!enterOwnMounts())
            QSKIP("needs mounts of its own, which only root has");
        const Tree tree;
        const QByteArray group = "admin:x:4242:" + QByteArray("member,").repeated(members) + "last\n";
        const Mount groups(tree.file("group", group), "/etc/group");
        QCOMPARE(getGroupId("admin"), found);
        QCOMPARE(getGroupId("adm"), gid_t(-1));
    }
};

QTEST_GUILESS_MAIN(tst_AccountQueries)
#include "tst_AccountQueries.moc"
