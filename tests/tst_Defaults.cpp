#include "Fixture.h"

#include <QProcess>

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
        process.waitForFinished(-1);
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

    /// The samples are as the tool itself writes them.
    void otherKeysAndTheFormatStay()
    {
        for (const char *sample : {"every-type.xml", "every-type.bin"}) {
            const QByteArray before = contentsOf(QFINDTESTDATA("fuzz/corpus/propertylist/") + sample);
            tree->file("new/folder/org.example.plist", before);
            QCOMPARE(defaults("write", "new", {"value"}), QByteArray(""));
            QVERIFY(contentsOf(list) != before);
            QCOMPARE(defaults("delete", "new"), QByteArray(""));
            QCOMPARE(contentsOf(list), before);
        }
    }

    void carriageReturnOfAnotherKeyStays()
    {
        tree->file("new/folder/org.example.plist",
            "<plist><dict><key>a</key><string>b&#13;c</string></dict></plist>");
        QCOMPARE(defaults("write", "new", {"value"}), QByteArray(""));
        QCOMPARE(defaults("read", "a"), QByteArray("b\rc\n"));
        // In XML a reader would take it for a line feed.
        QVERIFY(contentsOf(list).startsWith("bplist00"));
    }

    void symbolicLinkIsNeitherFollowedNorReplaced()
    {
        const QString target = tree->path("target");
        QCOMPARE(defaults("write", "a", {"b"}), QByteArray(""));
        QVERIFY(QFile::rename(list, target) && QFile::link(target, list));
        QVERIFY(defaults("write", "a", {"b"}).isNull());
        QCOMPARE(QFile::symLinkTarget(list), target);
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
