#include "Fixture.h"

#include "PartWrittenFile.h"

#include <QProcess>

class tst_PartWrittenFile : public QObject {
    Q_OBJECT

private slots:
    void onlyAPartIsRemoved()
    {
        struct {
            const char *run;
            bool moved, stays;
        } const rows[] = {{"true", false, true}, {"printf half >f", false, false},
            {"rm f; printf half >f", false, false}, {"cp -pf ../source/f .", false, true},
            {"cp ../source/f .", false, false}, {"mv ../source/f .", true, true},
            {"cp ../source/f .; rm ../source/f", true, true}, {"printf half >f", true, false},
            {"printf half >f; rm ../source/f", true, false}, {"rm f; mkdir f", false, true}};
        for (const auto &[run, moved, stays] : rows) {
            const Tree tree;
            const QString source = tree.file("source/f", "whole file");
            QCOMPARE(QProcess::execute("touch", {"-d", "2001-02-03 04:05:06.789", source}), 0);
            tree.file("destination/f", "older file");
            const PartWrittenFile file(source, tree.path("destination"));
            QProcess::execute("sh", {"-c", "cd '" + tree.path("destination") + "' && " + run});
            file.remove(moved);
            QVERIFY2(QFile::exists(tree.path("destination/f")) == stays, run);
        }
    }
};

QTEST_GUILESS_MAIN(tst_PartWrittenFile)
#include "tst_PartWrittenFile.moc"
