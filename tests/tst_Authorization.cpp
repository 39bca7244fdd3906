#include "Fixture.h"
#include "OwnMounts.h"

#include "macos/MacDoAuthorizedCommand.h"
#include "platform/HelperPlace.h"
#include "platform/helper/HelperProtocol.h"

#include <QProcess>

#include <csignal>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>

constexpr OSStatus done = errAuthorizationSuccess;
constexpr OSStatus refused = errAuthorizationToolExecuteFailure;

static QByteArray proc(int process, const QString &name)
{
    return contentsOf(QString("/proc/%1/%2").arg(process).arg(name));
}

static int childOf(int parent)
{
    return proc(parent, QString("task/%1/children").arg(parent)).split(' ').first().toInt();
}

/// This process's end of the connection to the helper: it has no other socket of that kind.
static int helperSocket()
{
    int number = 0, type = 0;
    for (socklen_t size = sizeof type; number < 1024 && type != SOCK_SEQPACKET; ++number)
        getsockopt(number, SOL_SOCKET, SO_TYPE, &type, &size);
    return number - 1;
}

/// The helper as it is when this process is root and no one has to be asked.
class tst_Authorization : public QObject {
    Q_OBJECT

    std::unique_ptr<Tree> tree;
    QByteArray folder;
    AuthorizationRef authorization = nullptr;
    /// Of startInstaller, in a process group of its own.
    int installer = 0;
    int helper = 0;
    int tool = 0;

    /// Runs a tool to its end.
    OSStatus run(const char *path, QVector<QByteArray> arguments)
    {
        QVector<char *> list;
        for (QByteArray &argument : arguments)
            list += argument.data();
        list += nullptr;
        FILE *pipe = nullptr;
        const OSStatus status = AuthorizationExecuteWithPrivileges(
            authorization, path, kAuthorizationFlagDefaults, list.data(), &pipe);
        QFile stream;
        if (pipe && stream.open(pipe, QIODevice::ReadOnly, QFile::AutoCloseHandle))
            stream.readAll();
        return status;
    }

    OSStatus make(const QByteArray &path) { return run("/bin/mkdir", {"-m", "755", path}); }
    OSStatus giveAway(const QByteArray &path) { return run("/usr/sbin/chown", {"-h", "0", path}); }

    /// What a helper must not keep of its installer.
    static void makeSurroundingsStrange()
    {
        umask(0);
        qputenv("LD_PRELOAD_OF_A_STRANGER", "x");
        std::signal(SIGUSR1, SIG_IGN);
        sigset_t blocked;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGUSR2);
        sigprocmask(SIG_BLOCK, &blocked, nullptr);
        const rlimit core{1, 1};
        setrlimit(RLIMIT_CORE, &core);
        [[maybe_unused]] const int inherited = dup(STDIN_FILENO);
    }

    /// Forks an installer with a tool that can't end, as it reads from a FIFO that nobody writes to.
    void startInstaller()
    {
        QCOMPARE(mkfifo(folder, 0600), 0);
        const Mount endless("/bin/cat", "/bin/mkdir");
        installer = fork();
        if (installer == 0) {
            setpgid(0, 0);
            makeSurroundingsStrange();
            createAuthority(&authorization);
            // A process that holds the installer's descriptors must not keep the helper alive.
            if (fork() == 0)
                pause();
            _exit(make(folder));
        }
        QTRY_COMPARE_WITH_TIMEOUT(
            proc(tool = childOf(helper = childOf(installer)), "environ").replace('\0', '|'),
            QByteArray("PATH=/usr/sbin:/usr/bin:/sbin:/bin|LC_ALL=C|"), patience);
    }

private slots:
    void initTestCase()
    {
        if (!enterOwnMounts())
            QSKIP("only root gets the helper without being asked");
    }

    void init()
    {
        tree = std::make_unique<Tree>();
        folder = QFile::encodeName(tree->path("Lumetra"));
        QVERIFY(createAuthority(&authorization));
    }

    void cleanup()
    {
        freeAuthority(&authorization);
        if (installer > 0) {
            kill(-installer, SIGKILL);
            waitpid(std::exchange(installer, 0), nullptr, 0);
        }
        QCOMPARE(childOf(getpid()), 0);
    }

    void onlyTheFolderThatIsNamedIsReached_data()
    {
        QTest::addColumn<QString>("making");
        QTest::addColumn<QByteArray>("reached");
        QTest::newRow("own folder") << "mkdir Lumetra" << QByteArray("./Lumetra\n");
        QTest::newRow("another's folder") << "mkdir Lumetra; chown 1 Lumetra" << QByteArray();
        QTest::newRow("file") << "touch Lumetra" << QByteArray();
        QTest::newRow("link in its place") << "mkdir a; ln -s a Lumetra" << QByteArray();
        const auto onTheWay = [](const char *name, const QString &making, const QByteArray &reached) {
            QTest::newRow(name) << "mkdir -p a/Lumetra b; ln -s ../a b/way;" + making + "; echo /b/way"
                                << reached;
        };
        onTheWay("root's link", ":", "./a/Lumetra\n");
        onTheWay("root's link from the top", "ln -sfn $PWD/a b/way", "./a/Lumetra\n");
        onTheWay("another's link", "chown -h 1 b/way", {});
        onTheWay("root's link to another's", "ln -sfn c b/way; ln -s ../a b/c; chown -h 1 b/c", {});
        onTheWay("root's link in another's folder", "chown 1 b", {});
        onTheWay("root's link where a group can write", "chmod 770 b", {});
        onTheWay("root's link where all can write", "chmod 1777 b", {});
        onTheWay("link to itself", "ln -sfn way b/way", {});
        onTheWay("link to a file", "ln -sfn /etc/passwd b/way", {});
    }

    void onlyTheFolderThatIsNamedIsReached()
    {
        QFETCH(const QString, making);
        const auto shell = [this](const QString &script) {
            QProcess process;
            process.setWorkingDirectory(tree->path());
            process.start("/bin/sh", {"-c", "umask 022;" + script});
            process.waitForFinished(patience);
            return process.readAllStandardOutput();
        };
        const QByteArray way = tree->path().toUtf8() + shell(making).trimmed();
        const OSStatus status = run("/bin/chmod", {"0775", way + "/Lumetra"});
        const QByteArray reached = shell("find . -perm 0775");
        QTEST(reached, "reached");
        QCOMPARE(status, reached.isEmpty() ? refused : done);
    }

    void nothingIsMadeInTheSystemsFolders()
    {
        const QTemporaryDir system("/var/tmp/tst_Authorization-XXXXXX");
        QVERIFY(QFile::link(system.path(), tree->path("way")));
        for (const QString &parent : {system.path(), tree->path("way")})
            QCOMPARE(make(QFile::encodeName(parent + "/Lumetra")), refused);
    }

    void onlyAFolderThatWasMadeHereIsGivenAway()
    {
        QCOMPARE(make(folder), done);
        QCOMPARE(giveAway(folder), done);
        QVERIFY(QFile::rename(folder, folder + "_0") && QDir().mkdir(folder));
        QCOMPARE(giveAway(folder), refused);
        // An existing one isn't made by a mkdir that fails.
        QCOMPARE(make(folder), done);
        QCOMPARE(giveAway(folder), refused);
        QCOMPARE(giveAway(folder + "_0"), done);
    }

    void whatTookTheNewFoldersPlaceIsNotGivenAway_data()
    {
        QTest::addColumn<QByteArray>("making");
        QTest::newRow("full") << QByteArray("/bin/touch other/file");
        QTest::newRow("another's") << QByteArray("/bin/chown 1 other");
        QTest::newRow("another group's") << QByteArray("/bin/chgrp 1 other");
        QTest::newRow("link") << QByteArray("/bin/rmdir other; ln -s /etc other");
    }

    void whatTookTheNewFoldersPlaceIsNotGivenAway()
    {
        QFETCH(const QByteArray, making);
        tree->folder("other");
        const Mount swapped(tree->program("swap", making + "; /bin/mv other $1"), "/bin/mkdir");
        QCOMPARE(make(folder), done);
        QVERIFY(QFileInfo::exists(folder));
        QCOMPARE(giveAway(folder), refused);
    }

    void toolFailsOnAMissingFolderByItself()
    {
        for (const QByteArray &missing : {folder, folder + "/Lumetra"})
            QCOMPARE(run("/bin/chmod", {"0775", missing}), done);
        QCOMPARE(make(folder + "/Lumetra"), done);
        QVERIFY(!QFileInfo::exists(folder) && !QFileInfo::exists("/Lumetra"));
    }

    void eightFoldersAreMadeAtTheMost()
    {
        const Mount nothingMade("/bin/true", "/bin/mkdir"); // as when each is renamed at once
        for (int i = 0; i < 8; ++i)
            QCOMPARE(make(folder), done);
        QCOMPARE(make(folder), refused);
    }

    void tenRefusalsEndTheHelper()
    {
        for (int i = 0; i < 10; ++i)
            QCOMPARE(run("/bin/sh", {"-c", "id"}), refused);
        QCOMPARE(make(folder), OSStatus(errAuthorizationInternal));
        QVERIFY(!QFileInfo::exists(folder));
    }

    void toolSeesNothingOfTheInstaller()
    {
        startInstaller();
        QCOMPARE(QFileInfo(QString("/proc/%1/cwd").arg(tool)).symLinkTarget(), tree->path());
        QCOMPARE(QFileInfo(QString("/proc/%1/cwd").arg(helper)).symLinkTarget(), "/");
        QVERIFY(proc(tool, "limits").simplified().contains("core file size 0 0"));
        QVERIFY(proc(tool, "status").contains("Umask:\t0022\n"));
        // But the thread library's two, which can't be reset.
        const QRegularExpression signalsAtDefault("SigBlk:\\t0{16}\\nSigIgn:\\t.{8}[08]0{7}\\n");
        QVERIFY(signalsAtDefault.match(proc(tool, "status")).hasMatch());
        QTRY_COMPARE_WITH_TIMEOUT(QDir(QString("/proc/%1/fd").arg(tool))
                                      .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
            QStringList({"0", "1", "2"}), patience);
    }

    void helperAndToolEndWithAKilledInstaller()
    {
        startInstaller();
        kill(installer, SIGKILL);
        QTRY_VERIFY_WITH_TIMEOUT(
            proc(helper, "cmdline").isEmpty() && proc(tool, "cmdline").isEmpty(), patience);
    }

    void otherProcessIsRefused()
    {
        const int child = fork();
        if (child == 0)
            _exit(make(folder) == refused ? 0 : 1);
        int ending = -1;
        waitpid(child, &ending, 0);
        QCOMPARE(ending, 0);
        QVERIFY(!QDir(folder).exists());
        QCOMPARE(make(folder), done);
    }

    void descriptorIsRefused()
    {
        QByteArray packet = QByteArray("/bin/mkdir|-m|755|" + folder + "|").replace('|', '\0');
        iovec span{packet.data(), size_t(packet.size())};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
        msghdr message{nullptr, 0, &span, 1, control, sizeof control, 0};
        *CMSG_FIRSTHDR(&message) = {CMSG_LEN(sizeof(int)), SOL_SOCKET, SCM_RIGHTS}; // standard input
        HelperReply reply;
        QVERIFY(sendmsg(helperSocket(), &message, 0) > 0);
        QVERIFY(recv(helperSocket(), &reply, sizeof reply, 0) > 0);
        QCOMPARE(reply.status, refused);
        QVERIFY(!QFileInfo::exists(folder));
    }

    void helperThatHangsIsNotWaitedFor()
    {
        freeAuthority(&authorization);
        // Is ready, answers with less than a reply, and stays.
        const QByteArray hanging =
            "trap '' TERM; head -c 512 /dev/zero >&0; head -c 1 <&0; echo >&0; exec sleep 30";
        const Mount mount(tree->program("helper", hanging), QString::fromStdString(helperPath()));
        createAuthority(&authorization);
        QCOMPARE(run("/bin/mkdir", {}), OSStatus(errAuthorizationInternal));
        const int left = childOf(getpid());
        freeAuthority(&authorization);
        QVERIFY(!proc(left, "cmdline").isEmpty());
        kill(left, SIGKILL);
        waitpid(left, nullptr, 0);
    }
};

QTEST_GUILESS_MAIN(tst_Authorization)
#include "tst_Authorization.moc"
