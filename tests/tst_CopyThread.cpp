#include "Fixture.h"

#include "CopyThread.h"
#include "InstallState.h"

class tst_CopyThread : public QObject {
    Q_OBJECT

    QStringList events;

    /// Lets a worker run and keeps what it reports in `events`.
    void run(const QString &destination)
    {
        events.clear();
        CopyThread worker(nullptr, destination);
        connect(&worker, &CopyThread::copyResult, this,
            [this](int code, QString text) { events << QString("%1 %2").arg(QString::number(code), text); });
        connect(
            &worker, &CopyThread::copiedFile, this, [this](int done) { events << QString::number(done); });
        connect(&worker, &CopyThread::finished, this, [this] { events << "finished"; });
        worker.start();
        QTRY_VERIFY_WITH_TIMEOUT(events.contains("finished"), patience);
    }

private slots:
    void filesArrive()
    {
        for (bool move : {false, true}) {
            const Tree tree;
            sCopyFiles = move;
            sResultList.clear();
            for (const QString name : {"a.zqin", "-f \n%1 \"é'.zqin", "same.zqin", "sub/same.zqin"})
                sResultList << tree.file("source/" + name, name.toUtf8());
            run(tree.folder("destination"));
            QCOMPARE(events.join(' '),
                QString(
                    "-100 The source database data files couldn't be found. 0  1 0  2 0  3 0  4 finished"));
            QCOMPARE(QDir(tree.path("destination")).entryList(QDir::Files).size(), 3);
            for (const QFileInfo &file : sResultList) {
                QCOMPARE(QFile::exists(file.filePath()), !move);
                const QByteArray contents = contentsOf(tree.path("destination/" + file.fileName()));
                QVERIFY(contents.endsWith(file.fileName().toUtf8()));
            }
            QCOMPARE(contentsOf(tree.path("destination/same.zqin")), QByteArray("sub/same.zqin"));
        }
    }
};

QTEST_GUILESS_MAIN(tst_CopyThread)
#include "tst_CopyThread.moc"
