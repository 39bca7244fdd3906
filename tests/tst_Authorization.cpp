#include "Fixture.h"
#include "OwnMounts.h"

#include "platform/HelperPlace.h"
#include "platform/helper/HelperProtocol.h"

#include <QProcess>

#include <Security/Authorization.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>

static OSStatus obtainRight(AuthorizationRef &authorization)
{
    AuthorizationItem item{"system.privilege.admin", 0, nullptr, 0};
    const AuthorizationRights rights{1, &item};
    AuthorizationCreate(nullptr, kAuthorizationEmptyEnvironment, kAuthorizationFlagDefaults, &authorization);
    return AuthorizationCopyRights(authorization, &rights, kAuthorizationEmptyEnvironment,
        kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights, nullptr);
}

static QByteArray proc(int process, const QString &name)
{
    return contentsOf(QString("/proc/%1/%2").arg(process).arg(name));
}

static int childOf(int parent)
{
    return proc(parent, QString("task/%1/children").arg(parent)).split(' ').first().toInt();
}

static bool isAlive(int process)
{
    return !proc(process, "cmdline").isEmpty();
}

/// The helper as it is when this process is root and no one has to be asked.
class tst_Authorization : public QObject {
    Q_OBJECT

    std::unique_ptr<Tree> tree;
    QByteArray folder;
    AuthorizationRef authorization = nullptr;

    OSStatus start(const char *tool, QVector<QByteArray> arguments, FILE **pipe)
    {
        QVector<char *> list;
        for (QByteArray &argument : arguments)
            list += argument.data();
        list += nullptr;
        return AuthorizationExecuteWithPrivileges(
            authorization, tool, kAuthorizationFlagDefaults, list.data(), pipe);
    }

    /// Runs a tool to its end.
    OSStatus run(const char *tool, QVector<QByteArray> arguments)
    {
        FILE *pipe = nullptr;
        const OSStatus status = start(tool, arguments, &pipe);
        QFile stream;
        if (pipe && stream.open(pipe, QIODevice::ReadOnly, QFile::AutoCloseHandle))
            stream.readAll();
        return status;
    }

    /// Starts a tool that can't end, as no one reads what it prints; its process id.
    int startHangingTool(FILE **pipe)
    {
        const Mount endless("/usr/bin/yes", "/bin/mkdir");
        start("/bin/mkdir", {"-m", "755", folder}, pipe);
        return childOf(childOf(getpid()));
    }

    QString program(const QByteArray &script)
    {
        const QString file = tree->file("program", "#!/bin/sh\n" + script);
        QFile::setPermissions(file, QFile::Permissions(0x7555));
        return file;
    }

    void giveUpRight()
    {
        if (authorization)
            AuthorizationFree(std::exchange(authorization, nullptr), kAuthorizationFlagDestroyRights);
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
        QCOMPARE(obtainRight(authorization), OSStatus(errAuthorizationSuccess));
    }

    void cleanup()
    {
        giveUpRight();
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
        QCOMPARE(status,
            OSStatus(reached.isEmpty() ? errAuthorizationToolExecuteFailure : errAuthorizationSuccess));
    }

    void nothingIsMadeInTheSystemsFolders()
    {
        const QTemporaryDir system("/var/tmp/tst_Authorization-XXXXXX");
        QVERIFY(QFile::link(system.path(), tree->path("way")));
        for (const QString &parent : {system.path(), tree->path("way")})
            QCOMPARE(run("/bin/mkdir", {"-m", "755", QFile::encodeName(parent + "/Lumetra")}),
                OSStatus(errAuthorizationToolExecuteFailure));
    }

    void onlyAFolderThatWasMadeHereIsGivenAway()
    {
        QCOMPARE(run("/bin/mkdir", {"-m", "755", folder}), OSStatus(errAuthorizationSuccess));
        QCOMPARE(run("/usr/sbin/chown", {"-h", "0", folder}), OSStatus(errAuthorizationSuccess));
        QVERIFY(QFile::rename(folder, folder + "_0") && QDir().mkdir(folder));
        QCOMPARE(run("/usr/sbin/chown", {"-h", "0", folder}), OSStatus(errAuthorizationToolExecuteFailure));
        // An existing one isn't made by a mkdir that fails.
        QCOMPARE(run("/bin/mkdir", {"-m", "755", folder}), OSStatus(errAuthorizationSuccess));
        QCOMPARE(run("/usr/sbin/chown", {"-h", "0", folder}), OSStatus(errAuthorizationToolExecuteFailure));
        QCOMPARE(run("/usr/sbin/chown", {"-h", "0", folder + "_0"}), OSStatus(errAuthorizationSuccess));
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
        {
            const Mount swapped(program(making + "; /bin/mv other $1"), "/bin/mkdir");
            QCOMPARE(run("/bin/mkdir", {"-m", "755", folder}), OSStatus(errAuthorizationSuccess));
        }
        QVERIFY(QFileInfo::exists(folder));
        QCOMPARE(run("/usr/sbin/chown", {"-h", "0", folder}), OSStatus(errAuthorizationToolExecuteFailure));
    }

    void toolFailsOnAMissingFolderByItself()
    {
        for (const QByteArray &missing : {folder, folder + "/Lumetra"})
            QCOMPARE(run("/bin/chmod", {"0775", missing}), OSStatus(errAuthorizationSuccess));
        QCOMPARE(run("/bin/mkdir", {"-m", "755", folder + "/Lumetra"}), OSStatus(errAuthorizationSuccess));
        QVERIFY(!QFileInfo::exists(folder) && !QFileInfo::exists("/Lumetra"));
    }

    void eightFoldersAreMadeAtTheMost()
    {
        const Mount nothingMade("/bin/true", "/bin/mkdir"); // as when each is renamed at once
        for (int i = 0; i < 8; ++i)
            QCOMPARE(run("/bin/mkdir", {"-m", "755", folder}), OSStatus(errAuthorizationSuccess));
        QCOMPARE(run("/bin/mkdir", {"-m", "755", folder}), OSStatus(errAuthorizationToolExecuteFailure));
    }

    void tenRefusalsEndTheHelper()
    {
        for (int i = 0; i < 10; ++i)
            QCOMPARE(run("/bin/sh", {"-c", "id"}), OSStatus(errAuthorizationToolExecuteFailure));
        QCOMPARE(run("/bin/mkdir", {"-m", "755", folder}), OSStatus(errAuthorizationInternal));
        QVERIFY(!QFileInfo::exists(folder));
    }

    void toolSeesNothingAndEndsWithTheRight()
    {
        giveUpRight();
        const mode_t mask = umask(0);
        qputenv("LD_PRELOAD_OF_A_STRANGER", "x");
        std::signal(SIGUSR1, SIG_IGN);
        rlimit core{};
        getrlimit(RLIMIT_CORE, &core);
        core.rlim_cur = core.rlim_max;
        setrlimit(RLIMIT_CORE, &core);
        sigset_t blocked;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGUSR2);
        sigprocmask(SIG_BLOCK, &blocked, nullptr);
        const int inherited = dup(STDIN_FILENO);
        obtainRight(authorization);
        FILE *pipe = nullptr;
        const int tool = startHangingTool(&pipe);
        umask(mask);
        close(inherited);
        std::signal(SIGUSR1, SIG_DFL);
        sigprocmask(SIG_UNBLOCK, &blocked, nullptr);
        QTRY_COMPARE_WITH_TIMEOUT(proc(tool, "environ"),
            QByteArray("PATH=/usr/sbin:/usr/bin:/sbin:/bin|LC_ALL=C|").replace('|', '\0'), patience);
        QCOMPARE(QFileInfo(QString("/proc/%1/cwd").arg(tool)).symLinkTarget(), tree->path());
        QCOMPARE(QFileInfo(QString("/proc/%1/cwd").arg(childOf(getpid()))).symLinkTarget(), "/");
        QVERIFY(proc(tool, "limits").simplified().contains("core file size 0 0"));
        QVERIFY(proc(tool, "status").contains("Umask:\t0022\n"));
        // But the thread library's two, which can't be reset.
        const QRegularExpression signalsAtDefault("SigBlk:\\t0{16}\\nSigIgn:\\t.{8}[08]0{7}\\n");
        QVERIFY(signalsAtDefault.match(proc(tool, "status")).hasMatch());
        // A folder object of its own for each look: it keeps what it has listed.
        const auto descriptors = [tool] { return QDir(QString("/proc/%1/fd").arg(tool)); };
        QTRY_COMPARE_WITH_TIMEOUT(
            descriptors().entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
            QStringList({"0", "1", "2"}), patience);
        QVERIFY(isAlive(tool));
        giveUpRight();
        QTRY_VERIFY_WITH_TIMEOUT(!isAlive(tool), patience);
        fclose(pipe);
    }

    void otherProcessIsRefused()
    {
        const int child = fork();
        if (child == 0)
            _exit(run("/bin/mkdir", {"-m", "755", folder}) == errAuthorizationToolExecuteFailure ? 0 : 1);
        int ending = -1;
        waitpid(child, &ending, 0);
        QCOMPARE(ending, 0);
        QVERIFY(!QDir(folder).exists());
        QCOMPARE(run("/bin/mkdir", {"-m", "755", folder}), OSStatus(errAuthorizationSuccess));
    }

    void descriptorIsRefused()
    {
        int ends[2];
        socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends);
        if (fork() == 0) {
            dup2(ends[1], STDIN_FILENO);
            execl(helperPath().c_str(), "helper", nullptr);
        }
        close(ends[1]);
        QByteArray packet = QByteArray("/bin/mkdir|-m|755|" + folder + "|").replace('|', '\0');
        iovec span{packet.data(), size_t(packet.size())};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
        msghdr message{nullptr, 0, &span, 1, control, sizeof control, 0};
        *CMSG_FIRSTHDR(&message) = {CMSG_LEN(sizeof(int)), SOL_SOCKET, SCM_RIGHTS}; // standard input
        HelperReply reply;
        recv(ends[0], &reply, sizeof reply, 0);
        QVERIFY(sendmsg(ends[0], &message, 0) > 0 && recv(ends[0], &reply, sizeof reply, 0) > 0);
        close(ends[0]);
        wait(nullptr);
        QCOMPARE(reply.status, OSStatus(errAuthorizationToolExecuteFailure));
        QVERIFY(!QFileInfo::exists(folder));
    }

    void helperThatHangsIsNotWaitedFor()
    {
        giveUpRight();
        // Is ready, answers with less than a reply, and stays.
        const QByteArray hanging =
            "trap '' TERM; head -c 512 /dev/zero >&0; head -c 1 <&0; echo >&0; exec sleep 30";
        const Mount helper(program(hanging), QString::fromStdString(helperPath()));
        obtainRight(authorization);
        QCOMPARE(run("/bin/mkdir", {}), OSStatus(errAuthorizationInternal));
        const int left = childOf(getpid());
        giveUpRight();
        QVERIFY(isAlive(left));
        kill(left, SIGKILL);
        waitpid(left, nullptr, 0);
    }

    void helperEndsWithAKilledInstaller()
    {
        const int installer = fork();
        if (installer == 0) {
            setpgid(0, 0);
            obtainRight(authorization);
            FILE *pipe = nullptr;
            startHangingTool(&pipe);
            // A process that holds the installer's descriptors must not keep the helper alive.
            if (fork() == 0)
                pause();
            pause();
        }
        const bool haveBegun = QTest::qWaitFor([&] { return childOf(childOf(installer)) > 0; }, patience);
        const int helper = childOf(installer), tool = childOf(helper);
        kill(installer, SIGKILL);
        waitpid(installer, nullptr, 0);
        const bool haveEnded = QTest::qWaitFor([&] { return !isAlive(helper) && !isAlive(tool); }, patience);
        kill(-installer, SIGKILL);
        QVERIFY(haveBegun && haveEnded);
    }
};

QTEST_GUILESS_MAIN(tst_Authorization)
#include "tst_Authorization.moc"
