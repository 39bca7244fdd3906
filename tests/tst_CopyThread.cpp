#include "Fixture.h"

#include "CopyThread.h"
#include "InstallState.h"

static const QString nothingDone = "-100 The source database data files couldn't be found.";

class tst_CopyThread : public QObject {
    Q_OBJECT

    QStringList events;

    /// Lets a worker run and keeps what it reports in `events`; `meanwhile` is called when it has started.
    void run(const QString &destination, const std::function<void(QThread &)> &meanwhile = {})
    {
        events.clear();
        CopyThread worker(nullptr, destination);
        connect(&worker, &CopyThread::copyResult, this,
            [this](int code, QString text) { events << QString("%1 %2").arg(QString::number(code), text); });
        connect(
            &worker, &CopyThread::copiedFile, this, [this](int done) { events << QString::number(done); });
        connect(&worker, &CopyThread::finished, this, [this] { events << "finished"; });
        worker.start();
        if (meanwhile)
            meanwhile(worker);
        QTRY_VERIFY_WITH_TIMEOUT(events.contains("finished"), patience);
    }

private slots:
    void init() { qputenv("LC_ALL", "C"); }

    void filesArrive()
    {
        for (bool move : {false, true}) {
            const Tree tree;
            sCopyFiles = move;
            sResultList.clear();
            for (const QString name : {"a.zqin", "-f \n%1 \"é'.zqin", "same.zqin", "sub/same.zqin"})
                sResultList << tree.file("source/" + name, name.toUtf8());
            run(tree.folder("destination"));
            QCOMPARE(
                events, (QStringList{nothingDone, "0 ", "1", "0 ", "2", "0 ", "3", "0 ", "4", "finished"}));
            QCOMPARE(QDir(tree.path("destination")).entryList(QDir::Files).size(), 3);
            for (const QFileInfo &file : sResultList) {
                QCOMPARE(QFile::exists(file.filePath()), !move);
                const QByteArray contents = contentsOf(tree.path("destination/" + file.fileName()));
                QVERIFY(contents.endsWith(file.fileName().toUtf8()));
            }
            QCOMPARE(contentsOf(tree.path("destination/same.zqin")), QByteArray("sub/same.zqin"));
        }
    }

    void firstFailureEndsTheRun()
    {
        SKIP_OUTSIDE_OWN_WORLD();
        const Tree tree;
        const Mount cp(tree.script("cp", "printf 'é 100%% \\n' >&2"), "/bin/cp");
        sCopyFiles = false;
        sResultList = {tree.file("a.zqin"), tree.file("b.zqin")};
        run(tree.path());
        QCOMPARE(events, (QStringList{nothingDone, "-100 Error message is:\né 100% \n", "finished"}));
    }

    void stopLeavesEveryFileWhole()
    {
        SKIP_OUTSIDE_OWN_WORLD();
        for (bool move : {false, true}) {
            const Tree tree;
            tree.folder("disk");
            // Has written a part when it is stopped, and goes on only when the test lets it.
            const QByteArray commands = "cd " + tree.path().toUtf8()
                + "; printf da >disk/a.zqin; mkfifo go; >begun; "
                  "read x <go; printf data >disk/a.zqin; rm a.zqin\n";
            const Mount tool(tree.script("tool", commands), move ? "/bin/mv" : "/bin/cp");
            sCopyFiles = move;
            sResultList = {tree.file("a.zqin"), tree.file("b.zqin")};
            run(tree.path("disk"), [&](QThread &worker) {
                QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(tree.path("begun")), patience);
                worker.requestInterruption();
                if (move)
                    tree.file("go", "\n");
            });
            QCOMPARE(events.mid(events.size() - 2), (QStringList{"-60006 ", "finished"}));
            QCOMPARE(contentsOf(tree.path("disk/a.zqin")), move ? QByteArray("data") : QByteArray());
            QCOMPARE(QFile::exists(tree.path("disk/a.zqin")), move);
            QCOMPARE(QFile::exists(tree.path("a.zqin")), !move);
            QCOMPARE(contentsOf(tree.path("b.zqin")), QByteArray("data"));
        }
    }
};

TEST_IN_OWN_WORLD(tst_CopyThread)
#include "tst_CopyThread.moc"
