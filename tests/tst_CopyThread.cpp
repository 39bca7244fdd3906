#include "Fixture.h"

#include "CopyThread.h"
#include "InstallState.h"

class tst_CopyThread : public QObject {
    Q_OBJECT

private slots:
    void filesArrive()
    {
        for (bool move : {false, true}) {
            const Tree tree;
            sCopyFiles = move;
            sResultList.clear();
            for (const QString name : {"a.zqin", "-f \n%1 \"é'.zqin", "same.zqin", "sub/same.zqin"})
                sResultList << tree.file("source/" + name, name.toUtf8());
            CopyThread worker(nullptr, tree.folder("destination"));
            QString events;
            connect(&worker, &CopyThread::copyResult, &worker,
                [&](int code, QString text) { events += QString::number(code) + ' ' + text + '\n'; });
            connect(&worker, &CopyThread::copiedFile, &worker,
                [&](int done) { events += QString::number(done) + '\n'; });
            connect(&worker, &CopyThread::finished, &worker, [&] { events += "finished"; });
            worker.start();
            QTRY_COMPARE_WITH_TIMEOUT(events,
                QString("-100 The source database data files couldn't be found.\n0 \n1\n0 \n2\n0 \n3\n0 "
                        "\n4\nfinished"),
                patience);
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
