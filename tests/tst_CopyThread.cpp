#include "Fixture.h"

#include "CopyThread.h"
#include "InstallState.h"
#include "UnfinishedMark.h"

#include <QSignalSpy>

#include <atomic>

class tst_CopyThread : public QObject {
    Q_OBJECT

    /// Lets the worker run. The flag shows the thread sanitizer what it doesn't see of Qt: that it has ended.
    static void run(CopyThread &worker)
    {
        std::atomic<bool> ended = false;
        connect(
            &worker, &CopyThread::finished, &worker, [&ended] { ended = true; }, Qt::DirectConnection);
        worker.start();
        if (!worker.wait(patience) || !ended)
            qFatal("the worker doesn't end");
    }

private slots:
    void filesArriveAndAreCounted_data()
    {
        QTest::addColumn<bool>("move");
        QTest::newRow("copy") << false;
        QTest::newRow("move") << true;
    }

    void filesArriveAndAreCounted()
    {
        QFETCH(bool, move);
        sCopyFiles = move;
        const Tree tree;
        sResultList.clear();
        for (const QString name : {"a.zqin", "-f \n%1 \"é'.zqin", "same.zqin", "sub/same.zqin"})
            sResultList << QFileInfo(tree.file("source/" + name, name.toUtf8()));
        CopyThread worker(nullptr, tree.folder("destination"));
        QString report;
        connect(&worker, &CopyThread::copyResult, &worker,
            [&](int code, QString text) { report += QString::number(code) + ' ' + text + '\n'; });
        connect(&worker, &CopyThread::copiedFile, &worker,
            [&](int done) { report += QString::number(done) + '\n'; });
        connect(&worker, &CopyThread::finished, &worker, [&] { report += "finished"; });
        worker.start();
        QTRY_COMPARE_WITH_TIMEOUT(report,
            QString("-100 The source database data files couldn't be found.\n0 \n1\n0 \n2\n0 \n3\n0 \n4\n"
                    "finished"),
            patience);
        QCOMPARE(QDir(tree.path("destination")).entryList(QDir::Files).size(), 3);
        QVERIFY(QFile::exists(unfinishedMark(tree.path("destination"))));
        for (const QFileInfo &file : sResultList) {
            QCOMPARE(QFile::exists(file.filePath()), !move);
            const QByteArray contents = contentsOf(tree.path("destination/" + file.fileName()));
            QVERIFY2(contents.endsWith(file.fileName().toUtf8()), qPrintable(file.fileName()));
        }
        QCOMPARE(contentsOf(tree.path("destination/same.zqin")), QByteArray("sub/same.zqin"));
    }

    void linkInTheMarksPlaceIsNotFollowed()
    {
        const Tree tree;
        const QString target = tree.file("target", "precious");
        QVERIFY(QFile::link(target, unfinishedMark(tree.folder("destination"))));
        markUnfinished(tree.path("destination"));
        QCOMPARE(contentsOf(target), QByteArray("precious"));
    }

    void filesInPlaceStayAsTheyAre_data() { filesArriveAndAreCounted_data(); }

    /// An installed database that is only to be recorded.
    void filesInPlaceStayAsTheyAre()
    {
        QFETCH(bool, move);
        const Tree tree;
        sCopyFiles = move;
        sResultList = {
            QFileInfo(tree.file("installed/a.zqin", "1")), QFileInfo(tree.file("installed/b.zqin", "2"))};
        CopyThread worker(nullptr, tree.path("installed"));
        QSignalSpy results(&worker, &CopyThread::copyResult);
        run(worker);
        QTRY_COMPARE(results.size(), 3);
        QCOMPARE(results.last(), (QList<QVariant>{0, QString()}));
        QCOMPARE(contentsOf(tree.path("installed/a.zqin")), QByteArray("1"));
    }
};

QTEST_GUILESS_MAIN(tst_CopyThread)
#include "tst_CopyThread.moc"
