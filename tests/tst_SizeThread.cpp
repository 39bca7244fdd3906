#include "Fixture.h"

#include "InstallState.h"
#include "SizeThread.h"

#include <QProcess>
#include <QSignalSpy>

#include <climits>
#include <sys/stat.h>

class tst_SizeThread : public QObject {
    Q_OBJECT

private slots:
    void init() { sResultList.clear(); }

    void entriesComeInTheOrderOfQDir()
    {
        const Tree tree;
        const QStringList pieces{"a", "A", "z", "Z", "é", "É", "ß", "İ", "ǅ", "Ω", "ω", "～", "😀", " ", "-",
            "_", "%1", "\n", "\"", "'", "\\", "*", "[", "1", "10", "9"};
        for (const QString &first : pieces)
            for (const QString &second : pieces)
                tree.file(first + second + (second < "a" ? ".zqin" : ".zqimage"), "1");
        QStringList expected = QDir(tree.path()).entryList(QDir::Files, QDir::Name | QDir::IgnoreCase);
        QVERIFY(expected.size() > 400);
        QList<QFileInfo> found;
        QCOMPARE(SizeThread(nullptr, "").dirSize(tree.path(), found), quint64(expected.size()));
        QStringList names;
        for (const QFileInfo &file : found)
            names << file.fileName();
        // Names that differ in case only may stand in any order.
        QCOMPARE(names.join('/').toLower(), expected.join('/').toLower());
        names.sort();
        expected.sort();
        QCOMPARE(names, expected);
    }

    void onlyDataFilesAreListed()
    {
        const Tree tree, elsewhere;
        const QStringList dataFiles{"d/.hidden/.zqin", "d/z.zqimage", "e.zqin/E.zqin", "x.zqin"};
        for (const QString &name : dataFiles)
            tree.file(name, QByteArray(100 + name.size(), 'x'));
        for (const char *name : {"y.txt", "zqin", "a.b.zqin", "..zqin", "a.ZQIN", "a.zqin.bak", "zqin."})
            tree.file(name);
        QVERIFY(QFile::link(elsewhere.file("other.zqin"), tree.path("link.zqin")));
        QVERIFY(QFile::link(elsewhere.path(), tree.path("linked folder")));
        QVERIFY(QFile::link(tree.path(), tree.path("d/circle")));
        QVERIFY(QFile::link(tree.path(), elsewhere.path("root")));
        QCOMPARE(mkfifo(QFile::encodeName(tree.path("pipe.zqin")).constData(), 0600), 0);
        QList<QFileInfo> found{QFileInfo(elsewhere.path("root/found before"))};
        QCOMPARE(SizeThread(nullptr, "").dirSize(elsewhere.path("root"), found), quint64(445));
        QStringList names;
        for (const QFileInfo &file : found)
            names << QDir(elsewhere.path("root")).relativeFilePath(file.absoluteFilePath());
        QCOMPARE(names, QStringList("found before") + dataFiles);
    }

    void deepestPathFitsASmallStack()
    {
        const Tree tree;
        const QString before = QDir::currentPath();
        QDir::setCurrent(tree.path());
        // One step at a time, since no call takes a path of this length.
        for (auto level = (PATH_MAX - 1 - tree.path("a.zqin").size()) / 2; level > 0; --level)
            QVERIFY(mkdir("d", 0755) == 0 && chdir("d") == 0);
        QVERIFY(QFile("a.zqin").open(QIODevice::WriteOnly));
        QDir::setCurrent(before);
        SizeThread scanner(nullptr, tree.path());
        scanner.setStackSize(512 * 1024);
        scanner.start();
        const bool hasEnded = scanner.wait(patience);
        // The temporary folder's own end can't do it with as many folders open at once.
        QProcess::execute("rm", {"-rf", tree.path("d")});
        QVERIFY(hasEnded);
        QCOMPARE(sResultList.size(), 1);
    }

    void reportsOnce_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<quint64>("size");

        QTest::newRow("folder") << "full" << quint64(3);
        QTest::newRow("empty data file") << "empty" << quint64(0);
        QTest::newRow("no folder") << "missing" << quint64(0);
        QTest::newRow("file") << "full/a.zqin" << quint64(0);
    }

    void reportsOnce()
    {
        QFETCH(QString, name);
        QFETCH(quint64, size);
        const Tree tree;
        tree.file("full/a.zqin", "123");
        tree.file("empty/b.zqin", "");
        SizeThread scanner(nullptr, tree.path(name));
        const QSignalSpy results(&scanner, &SizeThread::pathSize);
        scanner.start();
        QVERIFY(scanner.wait(patience));
        QCoreApplication::processEvents();
        QCOMPARE(results.size(), 1);
        QCOMPARE(results[0], (QList<QVariant>{tree.path(name), size}));
    }

    /// Its files can't be installed, and the rest isn't the whole.
    void folderWithAnUnreadableNameIsNotLeftOut()
    {
        const Tree tree;
        tree.file("a/a.zqin");
        const QByteArray odd = QFile::encodeName(tree.path()) + "/odd\xff\xfe";
        if (mkdir(odd, 0755) != 0)
            QSKIP("this file system takes no such name");
        QList<QFileInfo> found;
        QCOMPARE(SizeThread(nullptr, "").dirSize(tree.path(), found), quint64(0));
        QVERIFY(found.isEmpty());
        rmdir(odd);
    }
};

QTEST_GUILESS_MAIN(tst_SizeThread)
#include "tst_SizeThread.moc"
