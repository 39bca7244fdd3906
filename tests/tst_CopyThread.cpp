#include "Fixture.h"

#include "CopyThread.h"
#include "InstallState.h"

class tst_CopyThread : public QObject {
    Q_OBJECT

    std::unique_ptr<Tree> tree;

    static void byCopyOrMove()
    {
        QTest::addColumn<bool>("move");
        QTest::newRow("copy") << false;
        QTest::newRow("move") << true;
    }

    /// Installs four files, two of one name, and gives back what the worker reported.
    QString reportOfInstallation()
    {
        QFETCH(bool, move);
        sCopyFiles = move;
        tree = std::make_unique<Tree>();
        sResultList.clear();
        for (const QString name : {"a.zqin", "-f \n%1 \"é'.zqin", "same.zqin", "sub/same.zqin"})
            sResultList << tree->file("source/" + name, name.toUtf8());
        CopyThread worker(nullptr, tree->folder("destination"));
        QString report;
        connect(&worker, &CopyThread::copyResult, &worker,
            [&](int code, QString text) { report += QString::number(code) + ' ' + text + '\n'; });
        connect(&worker, &CopyThread::copiedFile, &worker,
            [&](int done) { report += QString::number(done) + '\n'; });
        connect(&worker, &CopyThread::finished, &worker, [&] { report += "finished"; });
        worker.start();
        if (!QTest::qWaitFor([&] { return report.endsWith("finished"); }, patience))
            qFatal("the worker doesn't end");
        return report;
    }

private slots:
    void everyFileIsReported_data() { byCopyOrMove(); }

    void everyFileIsReported()
    {
        QCOMPARE(reportOfInstallation(),
            QString("-100 The source database data files couldn't be found.\n0 \n1\n0 \n2\n0 \n3\n0 \n4\n"
                    "finished"));
    }

    void filesArrive_data() { byCopyOrMove(); }

    void filesArrive()
    {
        reportOfInstallation();
        QFETCH(bool, move);
        for (const QFileInfo &file : sResultList) {
            QCOMPARE(QFile::exists(file.filePath()), !move);
            const QByteArray contents = contentsOf(tree->path("destination/" + file.fileName()));
            QVERIFY2(contents.endsWith(file.fileName().toUtf8()), qPrintable(file.fileName()));
        }
        QCOMPARE(QDir(tree->path("destination")).entryList(QDir::Files).size(), 3);
        QCOMPARE(contentsOf(tree->path("destination/same.zqin")), QByteArray("sub/same.zqin"));
    }
};

QTEST_GUILESS_MAIN(tst_CopyThread)
#include "tst_CopyThread.moc"
