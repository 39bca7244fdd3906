#include "Fixture.h"

#include "computecontrol/AccountQueries.h"

class tst_AccountQueries : public QObject {
    Q_OBJECT

private slots:
    void findsGroupsOfAnySize()
    {
        if (!enterOwnMounts())
            QSKIP("needs mounts of its own, which only root has");
        // The last is larger than the tenth buffer.
        for (int count : {1, 30000, 300000}) {
            const Tree tree;
            const QByteArray members = QByteArray("member,").repeated(count);
            const Mount groups(tree.file("group", "admin:x:4242:" + members + "last\n"), "/etc/group");
            QCOMPARE(getGroupId("admin"), count < 300000 ? gid_t(4242) : gid_t(-1));
            QCOMPARE(getGroupId("adm"), gid_t(-1));
        }
    }
};

QTEST_GUILESS_MAIN(tst_AccountQueries)
#include "tst_AccountQueries.moc"
