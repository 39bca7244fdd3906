#include "Fixture.h"

#include "MacXUtils/Logging.h"

class tst_Logging : public QObject {
    Q_OBJECT

private slots:
    /// The log opens once a process and never closes: the row that opens it is the last.
    void opensWhereThePreferenceSays()
    {
        const Tree tree;
        qputenv("HOME", tree.path().toUtf8());
        const QString logFile = tree.file("a \"log\" é", "from before\n");
        const QByteArray path = logFile.toHtmlEscaped().toUtf8();
        const std::pair<QByteArray, bool> preferences[] = {{"<string>" + path + "/x</string>", true},
            {"<string></string>", false}, {"<string>" + QByteArray(4096, '/') + path + "</string>", false},
            {"<array><string>" + path + "</string></array>", false}, {"<string>" + path + "</string>", true}};
        for (const auto &[value, tried] : preferences) {
            QCOMPARE(contentsOf(logFile), QByteArray("from before\n"));
            tree.file("Library/Preferences/com.brindle.Corvane.plist",
                "<plist version=\"1.0\"><dict><key>tst_Logging_LogLocation</key>" + value
                    + "</dict></plist>");
            QVERIFY2(ShouldStartMacLogging() == tried, value);
            log_msg("%s", "no end");
        }
        QVERIFY(ShouldStartMacLogging());
        log_msg("%s", QByteArray(10000, 'x').constData());
        const QList<QByteArray> lines = contentsOf(logFile).split('\n');
        QCOMPARE(lines.size(), 4);
        QVERIFY(lines[1].startsWith("[tst_Logging ") && lines[1].endsWith("] started---"));
        QVERIFY(lines[3].contains(": no end[tst_Logging "));
        QVERIFY(lines[3].endsWith(": " + QByteArray(8191, 'x')));
    }
};

QTEST_GUILESS_MAIN(tst_Logging)
#include "tst_Logging.moc"
