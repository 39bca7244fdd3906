#include <Security/Authorization.h>

#include "platform/HelperPlace.h"
#include "platform/helper/HelperProtocol.h"
#include "platform/helper/HelperRequest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

/// The helper as it is when this process is root and no one has to be asked.
class tst_Authorization : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void onlyWellFormedRequestsAreAccepted_data();
    void onlyWellFormedRequestsAreAccepted();
    void onlyTheInstallersToolsAreStarted();
    void toolSeesNothingOfTheInstaller();
    void hangingToolEndsWithTheRight();
    void otherProcessIsRefused();
    void helperEndsWithAKilledInstaller();
    void replaceableFileIsSeen();

private:
    /// Runs a tool to its end.
    OSStatus run(const char *tool, QVector<QByteArray> arguments);
    /// Starts a `defaults` that can't end, as no one reads the long value that it prints; its process id.
    int startHangingTool(FILE **pipe);

    QTemporaryDir folder;
    AuthorizationRef authorization = nullptr;
};

static OSStatus obtainRight(AuthorizationRef &authorization)
{
    AuthorizationItem item{"system.privilege.admin", 0, nullptr, 0};
    const AuthorizationRights rights{1, &item};
    AuthorizationCreate(nullptr, kAuthorizationEmptyEnvironment, kAuthorizationFlagDefaults, &authorization);
    return AuthorizationCopyRights(authorization, &rights, kAuthorizationEmptyEnvironment,
        kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights, nullptr);
}

static QByteArray proc(int process, const char *name)
{
    QFile file(QString("/proc/%1/%2").arg(process).arg(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

static int childOf(int parent)
{
    return proc(parent, QString("task/%1/children").arg(parent).toLatin1()).split(' ').first().toInt();
}

static bool isAlive(int process)
{
    return !proc(process, "cmdline").isEmpty();
}

OSStatus tst_Authorization::run(const char *tool, QVector<QByteArray> arguments)
{
    QVector<char *> list;
    for (QByteArray &argument : arguments)
        list += argument.data();
    list += nullptr;
    FILE *pipe = nullptr;
    const OSStatus status = AuthorizationExecuteWithPrivileges(
        authorization, tool, kAuthorizationFlagDefaults, list.data(), &pipe);
    QFile stream;
    if (pipe && stream.open(pipe, QIODevice::ReadOnly, QFile::AutoCloseHandle))
        stream.readAll();
    return status;
}

int tst_Authorization::startHangingTool(FILE **pipe)
{
    QByteArray path = QFile::encodeName(folder.filePath("long"));
    QFile list(path + ".plist");
    list.open(QIODevice::WriteOnly);
    list.write("<plist><dict><key>key</key><string>" + QByteArray(3000000, 'x') + "</string></dict></plist>");
    list.close();
    char verb[] = "read", key[] = "key";
    char *arguments[] = {verb, path.data(), key, nullptr};
    AuthorizationExecuteWithPrivileges(authorization, "/usr/bin/defaults", 0, arguments, pipe);
    return childOf(childOf(getpid()));
}

void tst_Authorization::init()
{
    if (geteuid() != 0)
        QSKIP("only root gets the helper without being asked");
    QCOMPARE(obtainRight(authorization), OSStatus(errAuthorizationSuccess));
}

void tst_Authorization::cleanup()
{
    if (authorization)
        AuthorizationFree(authorization, kAuthorizationFlagDestroyRights);
    authorization = nullptr;
    QCOMPARE(childOf(getpid()), 0);
}

void tst_Authorization::onlyWellFormedRequestsAreAccepted_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<bool>("accepted");
    const QByteArray nul(1, '\0');
    const QByteArray mkdir = "/bin/mkdir" + nul;
    QTest::newRow("one argument") << mkdir + "/x" + nul << true;
    QTest::newRow("most arguments") << mkdir + ("a" + nul).repeated(mostArguments) << true;
    QTest::newRow("largest") << mkdir + QByteArray(int(largestRequest) - mkdir.size() - 1, 'x') + nul << true;
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("no tool") << nul + "/x" + nul << false;
    QTest::newRow("no arguments") << mkdir << false;
    QTest::newRow("relative") << "bin/mkdir" + nul + "/x" + nul << false;
    QTest::newRow("cut off") << mkdir + "/x" << false;
    QTest::newRow("too many arguments") << mkdir + ("a" + nul).repeated(mostArguments + 1) << false;
    QTest::newRow("too large") << mkdir + QByteArray(int(largestRequest), 'x') + nul << false;
}

void tst_Authorization::onlyWellFormedRequestsAreAccepted()
{
    QFETCH(QByteArray, packet);
    // In memory of its exact size, where a sanitizer sees what is read past it.
    const std::vector<char> bytes(packet.begin(), packet.end());
    QTEST(parseRequest(bytes.data(), bytes.size()).refusal.empty(), "accepted");
}

void tst_Authorization::onlyTheInstallersToolsAreStarted()
{
    const QByteArray made = QFile::encodeName(folder.filePath("made"));
    for (const char *tool : {"/bin/sh", "mkdir", "/bin/../bin/mkdir", "/bin/mkdir ", "", "defaults"})
        QCOMPARE(run(tool, {made}), OSStatus(errAuthorizationToolExecuteFailure));
    QCOMPARE(run("/bin/mkdir", {made, QByteArray(int(largestRequest), 'x')}),
        OSStatus(errAuthorizationToolExecuteFailure));
    QVERIFY(!QDir(made).exists());
    QCOMPARE(run("/bin/mkdir", {made}), OSStatus(errAuthorizationSuccess));
    QVERIFY(QDir(made).exists());
}

void tst_Authorization::toolSeesNothingOfTheInstaller()
{
    AuthorizationFree(authorization, kAuthorizationFlagDestroyRights);
    const mode_t mask = umask(0);
    qputenv("LD_PRELOAD_OF_A_STRANGER", "x");
    const int inherited = dup(STDIN_FILENO);
    obtainRight(authorization);
    FILE *pipe = nullptr;
    const int tool = startHangingTool(&pipe);
    umask(mask);
    close(inherited);
    const auto variable = [](const char *text) { return QByteArray(text) + '\0'; };
    QTRY_COMPARE(
        proc(tool, "environ"), variable("PATH=/usr/sbin:/usr/bin:/sbin:/bin") + variable("LC_ALL=C"));
    QCOMPARE(QFileInfo(QString("/proc/%1/cwd").arg(tool)).symLinkTarget(), QString("/"));
    QVERIFY(proc(tool, "status").contains("Umask:\t0022\n"));
    // But SIGXFSZ, which the tool itself ignores; the thread library's two can't be reset.
    const QRegularExpression nothingIgnored("SigIgn:\\t.{8}[08][01]000000\\n");
    QVERIFY(nothingIgnored.match(proc(tool, "status")).hasMatch());
    QTRY_COMPARE(QDir(QString("/proc/%1/fd").arg(tool))
                     .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
        QStringList({"0", "1", "2"}));
    fclose(pipe);
}

void tst_Authorization::hangingToolEndsWithTheRight()
{
    FILE *pipe = nullptr;
    const int tool = startHangingTool(&pipe);
    QVERIFY(isAlive(tool));
    AuthorizationFree(authorization, kAuthorizationFlagDestroyRights);
    authorization = nullptr;
    QTRY_VERIFY_WITH_TIMEOUT(!isAlive(tool), 1000);
    fclose(pipe);
}

void tst_Authorization::otherProcessIsRefused()
{
    const QByteArray made = QFile::encodeName(folder.filePath("made by another"));
    const int child = fork();
    if (child == 0)
        _exit(run("/bin/mkdir", {made}) == errAuthorizationToolExecuteFailure ? 0 : 1);
    int ending = -1;
    waitpid(child, &ending, 0);
    QCOMPARE(ending, 0);
    QVERIFY(!QDir(made).exists());
    QCOMPARE(
        run("/bin/chmod", {"0755", QFile::encodeName(folder.path())}), OSStatus(errAuthorizationSuccess));
}

void tst_Authorization::helperEndsWithAKilledInstaller()
{
    const int installer = fork();
    if (installer == 0) {
        setpgid(0, 0);
        obtainRight(authorization);
        // A process that holds the installer's descriptors must not keep the helper alive.
        if (fork() == 0)
            pause();
        FILE *pipe = nullptr;
        startHangingTool(&pipe);
        pause();
    }
    QTRY_VERIFY(childOf(childOf(installer)));
    const int helper = childOf(installer), tool = childOf(helper);
    kill(installer, SIGKILL);
    waitpid(installer, nullptr, 0);
    const bool haveEnded = QTest::qWaitFor([&] { return !isAlive(helper) && !isAlive(tool); }, 1000);
    kill(-installer, SIGKILL);
    QVERIFY(haveEnded);
}

void tst_Authorization::replaceableFileIsSeen()
{
    const QByteArray outer = QFile::encodeName(folder.filePath("a"));
    const QByteArray file = outer + "/b/file";
    QVERIFY(QDir(folder.path()).mkpath("a/b") && QFile::copy("/etc/hostname", file));
    const auto isReplaceable = [&](mode_t folderMode, mode_t fileMode) {
        return chmod(outer, folderMode) == 0 && chmod(file, fileMode) == 0
            && isReplaceableByAnyone((outer + "/b/../b/file").toStdString());
    };
    QVERIFY(!isReplaceable(0775, 0775));
    QVERIFY(isReplaceable(0755, 0757));
    QVERIFY(isReplaceable(0777, 0755));
    QVERIFY(!isReplaceable(01777, 0755));
}

QTEST_GUILESS_MAIN(tst_Authorization)
#include "tst_Authorization.moc"
