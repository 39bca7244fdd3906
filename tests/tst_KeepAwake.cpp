#include "Fixture.h"

#include "core/KeepAwake.h"

#include <csignal>
#include <sys/wait.h>

class tst_KeepAwake : public QObject {
    Q_OBJECT

    Tree tree;

    QByteArray started() const { return contentsOf(tree.path("started")); }
    /// Whether the process that holds the inhibition lives, and doesn't only wait to be reaped.
    bool isAwake() const
    {
        const QByteArray state = contentsOf("/proc/" + started().split(' ').first() + "/stat");
        return !state.isEmpty() && !state.contains(") Z ");
    }

private slots:
    void initTestCase()
    {
        // A stand-in for the system's tool, the same but for the inhibition: it runs what follows its
        // options.
        tree.program("systemd-inhibit",
            "echo $$ \"$*\" >${0%/*}/started; while test \"${1#--}\" != \"$1\"; do shift; done; exec \"$@\"");
        qputenv("PATH", QFile::encodeName(tree.path()) + ':' + qgetenv("PATH"));
    }

    void init() { QFile::remove(tree.path("started")); }

    void endsWithTheObject()
    {
        {
            const KeepAwake awake;
            QTRY_VERIFY_WITH_TIMEOUT(started().endsWith("cat\n"), patience);
            QVERIFY(started().contains("--what=idle:sleep"));
            QVERIFY(isAwake());
        }
        QTRY_VERIFY_WITH_TIMEOUT(!isAwake(), patience);
    }

    void endsWithAKilledInstaller()
    {
        const int installer = fork();
        if (installer == 0) {
            const KeepAwake awake;
            pause();
        }
        const bool hasBegun =
            QTest::qWaitFor([this] { return started().endsWith("cat\n"); }, patience) && isAwake();
        kill(installer, SIGKILL);
        waitpid(installer, nullptr, 0);
        QVERIFY(hasBegun);
        QTRY_VERIFY_WITH_TIMEOUT(!isAwake(), 1000);
    }
};

QTEST_GUILESS_MAIN(tst_KeepAwake)
#include "tst_KeepAwake.moc"
