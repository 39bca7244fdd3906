#include "Fixture.h"

#include <QProcess>

#include <plist/plist.h>

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

    void otherKeysStayInABinaryList()
    {
        const QByteArray before =
            "<plist><dict><key>array</key><array><dict><key>a</key><array/></dict><string>b</string></array>"
            "<key>data</key><data>AAE=</data><key>date</key><date>0814-01-02T03:04:05Z</date>"
            "<key>integer</key><integer>-7</integer><key>real</key><real>1.5</real><key>true</key><true/>"
            "<key>string</key><string>ü &amp; &#13;&lt;x&gt;</string></dict></plist>";
        plist_t parsed = nullptr;
        char *bytes = nullptr;
        uint32_t length = 0;
        plist_from_xml(before, uint32_t(before.size()), &parsed);
        plist_to_bin(parsed, &bytes, &length);
        const QByteArray binary(bytes, int(length));
        plist_to_bin_free(bytes);
        plist_free(parsed);
        for (const QByteArray &sample : {before, binary}) {
            tree->file("new/folder/org.example.plist", sample);
            QCOMPARE(defaults("write", "new", {"value"}), QByteArray(""));
            QVERIFY(contentsOf(list) != sample);
            QCOMPARE(defaults("delete", "new"), QByteArray(""));
            QCOMPARE(contentsOf(list), binary);
        }
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
        // An overlong form, half a surrogate pair, past the last character, cut off.
        for (const char *value : {"\\300\\200", "\\355\\240\\200", "\\364\\220\\200\\200", "\\342\\202"}) {
            const QString write = QStringLiteral("exec \"$0\" write \"$1\" a \"$(printf '%1')\"").arg(value);
            QCOMPARE(QProcess::execute("/bin/sh", {"-c", write, tool, list.chopped(6)}), 1);
        }
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
