#include "Fixture.h"

#include "MacXUtils/Logging.h"

/// The preference that switches the log on, in a home of its own.
class tst_LogSwitch : public QObject {
    Q_OBJECT

    Tree tree;
    const QString logFile = tree.path("a \"log\" é");

private slots:
    /// The log opens once a process and never closes: the row that opens it is the last.
    void opensWhereThePreferenceSays_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("tried");
        QTest::addColumn<bool>("opened");

        const QString string = "<string>%1</string>", path = logFile.toHtmlEscaped();
        QTest::newRow("empty") << string.arg("") << false << false;
        QTest::newRow("too long") << string.arg(QString(4096, '/') + path) << false << false;
        QTest::newRow("not a string") << "<array>" + string.arg(path) + "</array>" << false << false;
        QTest::newRow("no such folder") << string.arg(path + "/x") << true << false;
        QTest::newRow("file") << string.arg(path) << true << true;
        QTest::newRow("open already") << string.arg("") << true << true;
    }

    void opensWhereThePreferenceSays()
    {
        QFETCH(QString, value);
        qputenv("HOME", tree.path().toUtf8());
        const QString list =
            "<plist version=\"1.0\"><dict><key>tst_LogSwitch_LogLocation</key>%1</dict></plist>";
        tree.file("Library/Preferences/com.brindle.Corvane.plist", list.arg(value).toUtf8());
        QTEST(ShouldStartMacLogging(), "tried");
        QTEST(contentsOf(logFile).startsWith("[tst_LogSwitch "), "opened");
    }
};

QTEST_GUILESS_MAIN(tst_LogSwitch)
#include "tst_LogSwitch.moc"
