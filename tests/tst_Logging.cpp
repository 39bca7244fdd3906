#include "Fixture.h"

#include "MacXUtils/Logging.h"

class tst_Logging : public QObject {
    Q_OBJECT

    const Tree tree;
    const QString logFile = tree.file("a \"log\" é", "from before\n");

private slots:
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
        QVERIFY(lines[1].startsWith('[' + tag + ' ') && lines[1].endsWith("] started---"));
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
