#include "Fixture.h"
#include "OwnMounts.h"

#include "macos/MacDoAuthorizedCommand.h"
#include "macos/MacWriteGlobalDefaultSetting.h"

#include <QTemporaryFile>

#include <csignal>

#include <unistd.h>

/// The setting as a program of the suite reads it; "(none)" when there is none.
static QByteArray setting()
{
    const CFPropertyListRef value =
        CFPreferencesCopyAppValue(CFSTR("LumetraFullDatabasePath"), CFSTR("com.brindle.CorvaneLumetra"));
    if (!value)
        return "(none)";
    char text[1000] = "(not a string)";
    if (CFGetTypeID(value) == CFStringGetTypeID())
        CFStringGetCString(static_cast<CFStringRef>(value), text, sizeof text, kCFStringEncodingUTF8);
    CFRelease(value);
    return text;
}

/// What the last call wrote to standard error.
static QByteArray told;

static bool write(const QByteArray &domain, const char *value, AuthorizationRef authorization)
{
    const CFStringRef name = CFStringCreateWithCString(kCFAllocatorDefault, domain, kCFStringEncodingUTF8);
    QTemporaryFile report;
    if (!report.open())
        qFatal("no file for the report");
    const int before = dup(STDERR_FILENO);
    dup2(report.handle(), STDERR_FILENO);
    const bool started = MacWriteGlobalDefaultSetting(name, "LumetraFullDatabasePath", value, authorization);
    dup2(before, STDERR_FILENO);
    close(before);
    CFRelease(name);
    told = contentsOf(report.fileName());
    return started;
}

/// Where it would change something, in a root of its own.
class tst_MacWriteGlobalDefaultSetting : public QObject {
    Q_OBJECT

    const QByteArray domain = "com.brindle.CorvaneLumetra";
    AuthorizationRef authorization = nullptr;

private slots:
    void initTestCase()
    {
        if (!enterOwnRoot())
            QSKIP("needs a root of its own, which only root has");
        createAuthority(&authorization);
    }

    void cleanupTestCase() { freeAuthority(&authorization); }

    void valueIsWrittenOrDeleted_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QByteArray>("found");

        const QByteArray text = "  two  '\"$(true)` é";
        QTest::newRow("text") << text << text;
        QTest::newRow("empty") << QByteArray("") << QByteArray("(none)");
        QTest::newRow("null") << QByteArray() << QByteArray("(none)");
    }

    void valueIsWrittenOrDeleted()
    {
        QFETCH(QByteArray, value);
        QVERIFY(write(domain, "before", authorization));
        QVERIFY(write(domain, value.isNull() ? nullptr : value.constData(), authorization));
        QTEST(setting(), "found");
    }

    void domainMustFit_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("asked");

        QTest::newRow("longest") << QByteArray(4074, 'x') << QByteArray(4074, 'x');
        QTest::newRow("too long") << QByteArray(4075, 'x') << QByteArray();
        QTest::newRow("in Mac Roman") << QByteArray("Gr\u00fc\u00dfe") << QByteArray("Gr\x9f\xa7\x65");
        QTest::newRow("outside of it") << QByteArray("\u0436") << QByteArray();
    }

    /// Whatever fits is asked for, and refused, as the domain is none of the installation's.
    void domainMustFit()
    {
        QFETCH(QByteArray, name);
        QVERIFY(!write(name, "value", authorization));
        const QString asked = QString::fromLatin1(told).section(" /Library/Preferences/", 1);
        QTEST(asked.section('\n', 0, 0).toLatin1(), "asked");
    }

    void toolThatCannotStartIsTold()
    {
        QVERIFY(write(domain, "before", authorization));
        const Mount broken(
            "/dev/null", QCoreApplication::applicationDirPath() + "/Contents/Helpers/defaults");
        QVERIFY(!write(domain, "value", authorization));
        QCOMPARE(setting(), QByteArray("before"));
    }

    void settingOfTheUserComesFirst()
    {
        const Tree home;
        qputenv("HOME", QFile::encodeName(home.path()));
        QVERIFY(write(domain, "of the computer", authorization));
        QCOMPARE(setting(), QByteArray("of the computer"));
        home.file("Library/Preferences/" + domain + ".plist",
            "<plist><dict><key>LumetraFullDatabasePath</key><string>of the user</string></dict></plist>");
        QCOMPARE(setting(), QByteArray("of the user"));
    }

    void childThatEndsDoesNotCutTheWait()
    {
        // As Qt's on macOS: without SA_RESTART.
        struct sigaction handler = {};
        handler.sa_handler = [](int) {};
        sigaction(SIGCHLD, &handler, nullptr);
        const Tree tree;
        const Mount slow(tree.program("slow", "sleep 1; : >ended"), "/bin/mkdir");
        if (fork() == 0) {
            usleep(200000);
            _exit(0);
        }
        QVERIFY(runCommandWithAuthority(
            authorization, "/bin/mkdir", {"-m", "755", tree.path("Lumetra").toStdString()}));
        QVERIFY(QFile::exists(tree.path("ended")));
    }
};

QTEST_GUILESS_MAIN(tst_MacWriteGlobalDefaultSetting)
#include "tst_MacWriteGlobalDefaultSetting.moc"
