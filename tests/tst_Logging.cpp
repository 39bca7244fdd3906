#include "Fixture.h"

#include "MacXUtils/Logging.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

class tst_Logging : public QObject {
    Q_OBJECT

    Tree tree;
    const QString logFile = tree.file("a \"log\" é", "from before\n");

    /// Has a process of its own write a log of more than a FIFO holds. False when that takes too long.
    static bool logIn(const QByteArray &path, bool byStandardError)
    {
        const int child = fork();
        if (child == 0) {
            alarm(10);
            if (byStandardError)
                dup2(open(path, O_WRONLY), STDERR_FILENO);
            OpenMacLogWithBanner(byStandardError ? "/dev/stderr" : path.constData(), "tag");
            for (int line = 0; line < 3000; ++line)
                log_msg("line %d of a log that nobody reads in time\n", line);
            _exit(0);
        }
        int ending = -1;
        waitpid(child, &ending, 0);
        return ending == 0;
    }

private slots:
    void fifoIsWrittenWithoutWaiting_data()
    {
        QTest::addColumn<bool>("isRead");
        QTest::addColumn<bool>("byStandardError");
        QTest::newRow("that is read") << true << false;
        QTest::newRow("that nobody reads") << false << false;
        QTest::newRow("as standard error") << true << true;
    }

    void fifoIsWrittenWithoutWaiting()
    {
        QFETCH(bool, isRead);
        QFETCH(bool, byStandardError);
        if (byStandardError && !QFile::exists("/proc/self"))
            QSKIP("here /dev/stderr waits as standard error does");
        const QByteArray path = QFile::encodeName(tree.path("fifo"));
        QFile::remove(path);
        QCOMPARE(mkfifo(path, 0600), 0);
        const int reader = isRead ? open(path, O_RDONLY | O_NONBLOCK) : -1;
        QVERIFY(logIn(path, byStandardError));
        char line[512] = "";
        QCOMPARE(read(reader, line, sizeof line - 1) > 0, isRead);
        QCOMPARE(QByteArray(line).startsWith("[tag "), isRead);
        close(reader);
    }

    void incompleteCallOpensNothing()
    {
        const QByteArray path = QFile::encodeName(logFile);
        for (const auto &[name, tag] : {std::pair<const char *, const char *>(nullptr, "tag"), {"", "tag"},
                 {path.constData(), nullptr}, {path.constData(), ""}})
            OpenMacLogWithBanner(name, tag);
        log_msg("lost\n");
        QCOMPARE(contentsOf(logFile), QByteArray("from before\n"));
    }

    /// The log opens once a process and never closes.
    void linesAreAppended()
    {
        OpenMacLogWithBanner(QFile::encodeName(logFile).constData(), QByteArray(200, 't').constData());
        log_msg("%s", "no end");
        log_msg("%s", QByteArray(10000, 'x').constData());
        const QList<QByteArray> lines = contentsOf(logFile).split('\n');
        QCOMPARE(lines.size(), 4);
        QCOMPARE(lines[0], QByteArray("from before"));
        const QByteArray tag(128, 't');
        const QRegularExpression form(
            "^\\[t{128} (\\d+)\\]\\w{3} \\w{3} [ \\d]\\d \\d\\d:\\d\\d:\\d\\d \\d{4}: ---t{128}\\[\\1\\] started---$");
        QVERIFY2(form.match(lines[1]).hasMatch(), lines[1]);
        QVERIFY(lines[3].contains(": no end[" + tag + ' '));
        QVERIFY(lines[3].endsWith(": " + QByteArray(8191, 'x')));
    }

    void secondLogIsNotOpened()
    {
        OpenMacLogWithBanner(QFile::encodeName(tree.path("second")).constData(), "tag");
        QVERIFY(!QFile::exists(tree.path("second")));
    }
};

QTEST_GUILESS_MAIN(tst_Logging)
#include "tst_Logging.moc"
