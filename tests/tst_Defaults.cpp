#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <plist/plist.h>

class tst_Defaults : public QObject {
    Q_OBJECT

private slots:
    void init();
    void writtenValueIsReadBack_data();
    void writtenValueIsReadBack();
    void otherKeysAndTheFormatStay_data();
    void otherKeysAndTheFormatStay();
    void carriageReturnOfAnotherKeyStays();
    void symbolicLinkIsNeitherFollowedNorReplaced();
    void failedWriteLeavesNothingBehind();

private:
    /// Runs the tool on the list in the folder; its output, or null after a failure that says why.
    QByteArray defaults(const QString &verb, const QByteArray &key, const QStringList &rest = {});
    QStringList files() const;
    QByteArray contents() const;

    QTemporaryDir folder;
    QString list;
};

static QString tool()
{
    return QCoreApplication::applicationDirPath() + "/Contents/Helpers/defaults";
}

void tst_Defaults::init()
{
    QVERIFY(QDir(folder.filePath("a folder")).removeRecursively());
    QVERIFY(QDir(folder.path()).mkdir("a folder"));
    list = folder.filePath("a folder/org.example.plist");
}

QByteArray tst_Defaults::defaults(const QString &verb, const QByteArray &key, const QStringList &rest)
{
    QProcess process;
    process.start(tool(), QStringList{verb, list.chopped(6), QString::fromUtf8(key)} + rest);
    process.waitForFinished(-1);
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return process.readAllStandardOutput() + "";
    return process.readAllStandardError().startsWith("defaults: ") ? QByteArray() : "failed without a word";
}

QStringList tst_Defaults::files() const
{
    return QDir(folder.filePath("a folder")).entryList(QDir::Files | QDir::Hidden);
}

QByteArray tst_Defaults::contents() const
{
    QFile file(list);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_Defaults::writtenValueIsReadBack_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("blanks and quotes") << "  two  '\"$(true)` ";
    QTest::newRow("markup") << "a<b>&amp;]]>";
    QTest::newRow("not ASCII") << QString::fromUtf8("Grüße 日本 😀");
    QTest::newRow("looks like an option") << "-dict";
    QTest::newRow("control characters") << "a\x01\r\n\tb";
}

void tst_Defaults::writtenValueIsReadBack()
{
    QFETCH(QString, value);
    QCOMPARE(defaults("write", "a key", {value}), QByteArray(""));
    QCOMPARE(defaults("read", "a key"), value.toUtf8() + "\n");
    QCOMPARE(QFileInfo(list).permissions(), QFile::Permissions(0x6644));
    QCOMPARE(defaults("delete", "a key"), QByteArray(""));
    QVERIFY(defaults("read", "a key").isNull());
    QCOMPARE(files().size(), 1);
}

void tst_Defaults::otherKeysAndTheFormatStay_data()
{
    QTest::addColumn<QString>("sample");
    QTest::newRow("XML") << "every-type.xml";
    QTest::newRow("binary") << "every-type.bin";
}

static QByteArray asXml(const QByteArray &bytes)
{
    plist_t list = nullptr;
    plist_from_memory(bytes, uint32_t(bytes.size()), &list);
    char *xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(list, &xml, &length);
    const QByteArray text(xml, int(length));
    free(xml);
    plist_free(list);
    return text;
}

void tst_Defaults::otherKeysAndTheFormatStay()
{
    QFETCH(QString, sample);
    QVERIFY(QFile::copy(QFINDTESTDATA("fuzz/corpus/propertylist/" + sample), list));
    const QByteArray before = contents();
    QCOMPARE(defaults("write", "new", {"value"}), QByteArray(""));
    QCOMPARE(defaults("delete", "new"), QByteArray(""));
    QCOMPARE(asXml(contents()), asXml(before));
    QCOMPARE(contents().left(8), before.left(8));
}

void tst_Defaults::carriageReturnOfAnotherKeyStays()
{
    QFile file(list);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<plist><dict><key>a</key><string>b&#13;c</string></dict></plist>");
    file.close();
    QCOMPARE(defaults("write", "new", {"value"}), QByteArray(""));
    QCOMPARE(defaults("read", "a"), QByteArray("b\rc\n"));
    // In XML a reader would take it for a line feed.
    QVERIFY(contents().startsWith("bplist00"));
}

void tst_Defaults::symbolicLinkIsNeitherFollowedNorReplaced()
{
    const QString target = folder.filePath("target");
    QCOMPARE(defaults("write", "a", {"b"}), QByteArray(""));
    QVERIFY(QFile::rename(list, target) && QFile::link(target, list));
    QVERIFY(defaults("write", "a", {"b"}).isNull());
    QCOMPARE(QFile::symLinkTarget(list), target);
}

void tst_Defaults::failedWriteLeavesNothingBehind()
{
    const QString limited = "ulimit -f 0; exec \"$0\" write \"$1\" a b";
    QVERIFY(QProcess::execute("/bin/sh", {"-c", limited, tool(), list.chopped(6)}) != 0);
    QCOMPARE(files(), QStringList());
}

QTEST_GUILESS_MAIN(tst_Defaults)
#include "tst_Defaults.moc"
