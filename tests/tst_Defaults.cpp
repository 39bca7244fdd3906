#include "Fixture.h"

#include <QProcess>

#include <sys/stat.h>

static QByteArray xmlList(const QByteArray &value)
{
    return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Key</key>" + value + "</dict></plist>";
}

class tst_Defaults : public QObject {
    Q_OBJECT

    const QString tool = QCoreApplication::applicationDirPath() + "/Contents/Helpers/defaults";
    std::unique_ptr<Tree> tree;
    QString list;

    /// Runs the tool on the list in the folder; its output, or null after a failure that says why.
    QByteArray defaults(const QString &verb, const QString &key, const QStringList &rest = {})
    {
        QProcess process;
        process.start(tool, QStringList{verb, list.chopped(6), key} + rest);
        if (!process.waitForFinished(patience))
            return "doesn't end";
        if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
            return process.readAllStandardOutput() + "";
        return process.readAllStandardError().startsWith("defaults: ") ? QByteArray()
                                                                       : "failed without a word";
    }

    QStringList files() const { return QFileInfo(list).dir().entryList(QDir::Files | QDir::Hidden); }

private slots:
    void init()
    {
        tree = std::make_unique<Tree>();
        list = tree->path("new/folder/org.example.plist");
    }

    void onlyAStringInASmallListIsRead_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("value");

        row("string", xmlList("<string>/tmp/ü &amp; log</string>"), QByteArray("/tmp/ü & log\n"));
        row("another type", xmlList("<integer>4</integer>"), QByteArray());
        row("no such key", xmlList("").replace("<key>Key</key>", ""), QByteArray());
        row("no dictionary", QByteArray("<plist><string>Key</string></plist>"), QByteArray());
        row("no list", QByteArray("<"), QByteArray());
        row("cut off", xmlList("<string>cut off</string>").left(75), QByteArray());
        row("not UTF-8", xmlList("<string>\xe4</string>"), QByteArray());
        row("largest", xmlList("<string>fits</string>").leftJustified(65536), QByteArray("fits\n"));
        row("too large", xmlList("<string>fits</string>").leftJustified(65537), QByteArray());
    }

    void onlyAStringInASmallListIsRead()
    {
        QFETCH(QByteArray, bytes);
        tree->file("new/folder/org.example.plist", bytes);
        QTEST(defaults("read", "Key"), "value");
    }

    void specialFilesAreNotRead()
    {
        const QString path = tree->folder("new/folder") + "/org.example.plist";
        QCOMPARE(mkfifo(QFile::encodeName(path), 0600), 0);
        QVERIFY(defaults("read", "Key").isNull());
        QVERIFY(QFile::remove(path) && QFile::link("/dev/zero", path));
        QVERIFY(defaults("read", "Key").isNull());
    }

    void writtenValueIsReadBack()
    {
        for (const QString value :
            {"  two  '\"$(true)` ", "a<b>&amp;]]>", "Grüße 日本 😀", "-dict", "a\x01\r\n\tb"}) {
            QCOMPARE(defaults("write", "a key", {value}), QByteArray(""));
            QCOMPARE(defaults("read", "a key"), value.toUtf8() + "\n");
            QCOMPARE(QFileInfo(list).permissions(), QFile::Permissions(0x6644));
            QCOMPARE(defaults("delete", "a key"), QByteArray(""));
            QVERIFY(defaults("read", "a key").isNull());
            QCOMPARE(files(), QStringList("org.example.plist"));
        }
    }

    void otherKeysStayInABinaryList()
    {
        tree->file("new/folder/org.example.plist", xmlList("<string>ü &amp; &#13;&lt;x&gt;</string>"));
        for (const char *key : {"to the XML list", "to the binary one"}) {
            QCOMPARE(defaults("write", key, {"value"}), QByteArray(""));
            QVERIFY(contentsOf(list).startsWith("bplist00"));
        }
        QCOMPARE(defaults("delete", "to the XML list"), QByteArray(""));
        QCOMPARE(defaults("read", "Key"), QByteArray("ü & \r<x>\n"));
        QCOMPARE(defaults("read", "to the binary one"), QByteArray("value\n"));
    }

    void emptyFileIsFilled()
    {
        tree->file("new/folder/org.example.plist", "");
        QVERIFY(defaults("read", "a").isNull());
        QCOMPARE(defaults("write", "a", {"b"}), QByteArray(""));
        QCOMPARE(defaults("read", "a"), QByteArray("b\n"));
    }

    void symbolicLinkIsNeitherFollowedNorReplaced()
    {
        const QString target = tree->path("target");
        QCOMPARE(defaults("write", "a", {"b"}), QByteArray(""));
        QVERIFY(QFile::rename(list, target) && QFile::link(target, list));
        QVERIFY(defaults("write", "a", {"b"}).isNull());
        QCOMPARE(QFile::symLinkTarget(list), target);
    }

    void argumentsThatAreNotUtf8AreRefused()
    {
        const QString cutOff = "exec \"$0\" write \"$1\" a \"$(printf '\\342\\202')\"";
        QCOMPARE(QProcess::execute("/bin/sh", {"-c", cutOff, tool, list.chopped(6)}), 1);
        QCOMPARE(files(), QStringList());
    }

    void failedWriteLeavesNothingBehind()
    {
        const QString limited = "ulimit -f 0; exec \"$0\" write \"$1\" a b";
        QVERIFY(QProcess::execute("/bin/sh", {"-c", limited, tool, list.chopped(6)}) != 0);
        QCOMPARE(files(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_Defaults)
#include "tst_Defaults.moc"
