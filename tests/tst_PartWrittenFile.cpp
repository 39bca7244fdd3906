#include "Fixture.h"

#include "PartWrittenFile.h"

#include <QProcess>

class tst_PartWrittenFile : public QObject {
    Q_OBJECT

private slots:
    void onlyAPartIsRemoved_data()
    {
        QTest::addColumn<QString>("run");
        QTest::addColumn<bool>("moved");
        QTest::addColumn<bool>("stays");

        QTest::newRow("untouched older file") << "true" << false << true;
        QTest::newRow("part over the older file") << "printf half >f" << false << false;
        QTest::newRow("part in its place") << "rm f; printf half >f" << false << false;
        QTest::newRow("whole copy") << "cp -pf ../source/f ." << false << true;
        QTest::newRow("copy without its time") << "cp ../source/f ." << false << false;
        QTest::newRow("whole move") << "mv ../source/f ." << true << true;
        QTest::newRow("move across disks, no time") << "cp ../source/f .; rm ../source/f" << true << true;
        QTest::newRow("part of a move") << "printf half >f" << true << false;
        QTest::newRow("part of a lost source") << "printf half >f; rm ../source/f" << true << false;
        QTest::newRow("a folder in its place") << "rm f; mkdir f" << false << true;
    }

    void onlyAPartIsRemoved()
    {
        QFETCH(QString, run);
        QFETCH(bool, moved);
        const Tree tree;
        QFile source(tree.file("source/f", "whole file"));
        QVERIFY(source.open(QIODevice::ReadWrite)
            && source.setFileTime(QDateTime::fromMSecsSinceEpoch(981173106789), QFile::FileModificationTime));
        source.close();
        tree.file("destination/f", "older file");
        const PartWrittenFile file(source.fileName(), tree.path("destination"));
        QProcess::execute("sh", {"-c", "cd '" + tree.path("destination") + "' && " + run});
        file.remove(moved);
        QTEST(QFile::exists(tree.path("destination/f")), "stays");
    }
};

QTEST_GUILESS_MAIN(tst_PartWrittenFile)
#include "tst_PartWrittenFile.moc"
