#include "Fixture.h"

#include "core/KeepAwake.h"

#include <QProcess>

#include <unistd.h>

/// A stand-in for the system's tool, the same but for the inhibition: it runs what follows its options.
constexpr char inhibit[] = "#!/bin/sh\n"
                           "echo $$ \"$*\" >${0%/*}/started\n"
                           "while test \"${1#--}\" != \"$1\"; do shift; done\n"
                           "exec \"$@\"\n";

class tst_KeepAwake : public QObject {
    Q_OBJECT

    Tree tree;

    QByteArray started() const { return contentsOf(tree.path("started")); }
    /// Whether the process that holds the inhibition lives: one that only waits to be reaped has no command.
    bool isAwake() const
    {
        return !contentsOf("/proc/" + started().split(' ').first() + "/cmdline").isEmpty();
    }

private slots:
    void initTestCase()
    {
        QFile tool(tree.file("systemd-inhibit", inhibit));
        QVERIFY(tool.setPermissions(QFile::Permissions(0x7755)));
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
        QProcess installer;
        installer.start(QCoreApplication::applicationFilePath(), {"hold"});
        QTRY_VERIFY_WITH_TIMEOUT(started().endsWith("cat\n"), patience);
        QVERIFY(isAwake());
        installer.kill();
        QVERIFY(installer.waitForFinished(patience));
        QTRY_VERIFY_WITH_TIMEOUT(!isAwake(), 1000);
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (application.arguments().value(1) == "hold") {
        const KeepAwake awake;
        pause();
    }
    tst_KeepAwake test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_KeepAwake.moc"
