#include "Fixture.h"

#include "platform/HelperPlace.h"
#include "platform/HelperProcess.h"
#include "platform/helper/HelperProtocol.h"
#include "platform/helper/HelperRequest.h"

#include <Security/Authorization.h>

#include <csignal>
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

    Tree tree;
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

    /// Starts a tool that can't end, as its complaint doesn't fit into the connection; its process id.
    static int startHangingTool(HelperProcess &helper)
    {
        int ends[2];
        socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends);
        while (send(ends[1], "x", 1, MSG_DONTWAIT) == 1) { }
        QByteArray existing = "/";
        char *const arguments[] = {existing.data(), nullptr};
        helper.start({});
        helper.runTool("/bin/mkdir", arguments, ends[1]);
        close(ends[1]);
        return childOf(childOf(getpid()));
    }

    void giveUpRight()
    {
        if (authorization)
            AuthorizationFree(std::exchange(authorization, nullptr), kAuthorizationFlagDestroyRights);
    }

private slots:
    void init()
    {
        if (geteuid() != 0)
            QSKIP("only root gets the helper without being asked");
        QCOMPARE(obtainRight(authorization), OSStatus(errAuthorizationSuccess));
    }

    void cleanup()
    {
        giveUpRight();
        QCOMPARE(childOf(getpid()), 0);
    }

    void onlyWellFormedRequestsAreAccepted()
    {
        const QByteArray nul(1, '\0'), mkdir = "/bin/mkdir" + nul, argument = "a" + nul;
        const QByteArray longest(int(largestRequest) - mkdir.size() - 1, 'x');
        const QByteArrayList good{
            mkdir + argument, mkdir + argument.repeated(mostArguments), mkdir + longest + nul};
        const QByteArrayList bad{"", nul + argument, mkdir, "bin/mkdir" + nul + argument, mkdir + "cut off",
            mkdir + argument.repeated(mostArguments + 1), mkdir + longest + "x" + nul};
        for (QByteArray packet : good + bad) {
            // In memory of its exact size, where a sanitizer sees what is read past it.
            const std::vector<char> bytes(packet.begin(), packet.end());
            const bool accepted = parseRequest(bytes.data(), bytes.size()).refusal.empty();
            QVERIFY2(accepted == good.contains(packet), packet.left(50).replace('\0', ' '));
        }
    }

    void onlyTheInstallersToolsAreStarted()
    {
        const QByteArray made = QFile::encodeName(tree.path("made"));
        for (const char *tool : {"/bin/sh", "mkdir", "/bin/../bin/mkdir", "/bin/mkdir ", "", "defaults"})
            QCOMPARE(run(tool, {made}), OSStatus(errAuthorizationToolExecuteFailure));
        QCOMPARE(run("/bin/mkdir", {made, QByteArray(int(largestRequest), 'x')}),
            OSStatus(errAuthorizationToolExecuteFailure));
        QVERIFY(!QDir(made).exists());
        QCOMPARE(run("/bin/mkdir", {made}), OSStatus(errAuthorizationSuccess));
        QVERIFY(QDir(made).exists());
    }

    void toolSeesNothingAndEndsWithTheRight()
    {
        giveUpRight();
        const mode_t mask = umask(0);
        qputenv("LD_PRELOAD_OF_A_STRANGER", "x");
        const int inherited = dup(STDIN_FILENO);
        HelperProcess helper;
        const int tool = startHangingTool(helper);
        umask(mask);
        close(inherited);
        const auto variable = [](const char *text) { return QByteArray(text) + '\0'; };
        QTRY_COMPARE_WITH_TIMEOUT(proc(tool, "environ"),
            variable("PATH=/usr/sbin:/usr/bin:/sbin:/bin") + variable("LC_ALL=C"), patience);
        QCOMPARE(QFileInfo(QString("/proc/%1/cwd").arg(tool)).symLinkTarget(), QString("/"));
        QVERIFY(proc(tool, "status").contains("Umask:\t0022\n"));
        // But the thread library's two, which can't be reset.
        const QRegularExpression nothingIgnored("SigIgn:\\t.{8}[08]0000000\\n");
        QVERIFY(nothingIgnored.match(proc(tool, "status")).hasMatch());
        // A folder object of its own for each look: it keeps what it has listed.
        const auto descriptors = [tool] { return QDir(QString("/proc/%1/fd").arg(tool)); };
        QTRY_COMPARE_WITH_TIMEOUT(
            descriptors().entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
            QStringList({"0", "1", "2"}), patience);
        QVERIFY(isAlive(tool));
        helper.stop();
        QTRY_VERIFY_WITH_TIMEOUT(!isAlive(tool), patience);
    }

    void otherProcessIsRefused()
    {
        const QByteArray made = QFile::encodeName(tree.path("made by another"));
        const int child = fork();
        if (child == 0)
            _exit(run("/bin/mkdir", {made}) == errAuthorizationToolExecuteFailure ? 0 : 1);
        int ending = -1;
        waitpid(child, &ending, 0);
        QCOMPARE(ending, 0);
        QVERIFY(!QDir(made).exists());
        QCOMPARE(
            run("/bin/chmod", {"0755", QFile::encodeName(tree.path())}), OSStatus(errAuthorizationSuccess));
    }

    void helperEndsWithAKilledInstaller()
    {
        const int installer = fork();
        if (installer == 0) {
            setpgid(0, 0);
            HelperProcess rights;
            startHangingTool(rights);
            // A process that holds the installer's descriptors must not keep the helper alive.
            if (fork() == 0)
                pause();
            pause();
        }
        QTRY_VERIFY_WITH_TIMEOUT(childOf(childOf(installer)), patience);
        const int helper = childOf(installer), tool = childOf(helper);
        kill(installer, SIGKILL);
        waitpid(installer, nullptr, 0);
        const bool haveEnded = QTest::qWaitFor([&] { return !isAlive(helper) && !isAlive(tool); }, patience);
        kill(-installer, SIGKILL);
        QVERIFY(haveEnded);
    }

    void replaceableFileIsSeen()
    {
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

QTEST_GUILESS_MAIN(tst_Authorization)
#include "tst_Authorization.moc"
