#include "Fixture.h"

#include "PartWrittenFile.h"

#include <QProcess>

class tst_PartWrittenFile : public QObject {
    Q_OBJECT

    /// The file "destination/f", an older one before, after the run of these shell commands beside it.
    static PartWrittenFile fileAfter(const QString &run, const Tree &tree)
    {
        QFile source(tree.file("source/f", "whole file"));
        if (!source.open(QIODevice::ReadWrite)
            || !source.setFileTime(QDateTime::fromMSecsSinceEpoch(981173106789), QFile::FileModificationTime))
            qFatal("no time for the source");
        source.close();
        tree.file("destination/f", "older file");
        const PartWrittenFile file(source.fileName(), tree.path("destination"));
        QTest::qSleep(5); // the time of a change is told in milliseconds
        QProcess::execute("sh", {"-c", "cd '" + tree.path("destination") + "' && " + run});
        return file;
    }

private slots:
    void onlyAPartIsRemoved_data()
    {
        QTest::addColumn<QString>("run");
        QTest::addColumn<bool>("moved");
        QTest::addColumn<bool>("staysAfterStop");
        QTest::addColumn<bool>("staysAfterFailure");

        row("untouched older file", "true", false, true, true);
        row("part over the older file", "printf half >f", false, false, false);
        row("part in its place", "rm f; printf half >f", false, false, false);
        row("whole copy", "cp -pf ../source/f .", false, true, true);
        row("copy without its time", "cp ../source/f .", false, false, true);
        row("damaged, with size and time", "printf 'whole f!le' >f; touch -r ../source/f f", false, true,
            false);
        row("older file's size and time over it", "touch -r f t; printf 'oldex file' >f; touch -r t f", false,
            false, false);
        row("whole move", "mv ../source/f .", true, true, true);
        row("move across disks, no time", "cp ../source/f .; rm ../source/f", true, true, true);
        row("part of a move", "printf half >f", true, false, false);
        row("part of a lost source", "printf half >f; rm ../source/f", true, false, false);
        row("copy of a lost source", "cp ../source/f .; rm ../source/f", false, false, false);
        row("a folder in its place", "rm f; mkdir f", false, true, true);
    }

    void onlyAPartIsRemoved()
    {
        QFETCH(QString, run);
        QFETCH(bool, moved);
        for (const bool stopped : {true, false}) {
            const Tree tree;
            const PartWrittenFile file = fileAfter(run, tree);
            if (stopped)
                file.removeAfterStop(moved);
            else
                file.removeAfterFailure(moved, [] { return false; });
            const bool stays = QFile::exists(tree.path("destination/f"));
            QTEST(stays, stopped ? "staysAfterStop" : "staysAfterFailure");
        }
    }

    void sourceInPlaceIsSeen()
    {
        const Tree tree;
        const QString file = tree.file("a/f");
        QVERIFY(QFile::link(file, tree.folder("linked") + "/f"));
        tree.file("copied/f");
        QVERIFY(PartWrittenFile(file, tree.path("a")).isInPlace());
        for (const char *elsewhere : {"linked", "copied", "nowhere"})
            QVERIFY2(!PartWrittenFile(file, tree.path(elsewhere)).isInPlace(), elsewhere);
    }
};

QTEST_GUILESS_MAIN(tst_PartWrittenFile)
#include "tst_PartWrittenFile.moc"
