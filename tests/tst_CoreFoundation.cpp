#include <CoreFoundation/CoreFoundation.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

class tst_CoreFoundation : public QObject {
    Q_OBJECT

private slots:
    void convertsStrings_data();
    void convertsStrings();
    void preferenceIsReadFromTheUsersFile_data();
    void preferenceIsReadFromTheUsersFile();
    void specialFilesAreNoPreferences();
    void fileNamesAreUtf8InTheCLocale();
};

using Bytes = QByteArray;

void tst_CoreFoundation::convertsStrings_data()
{
    QTest::addColumn<Bytes>("utf8");
    QTest::addColumn<int>("length");
    QTest::addColumn<Bytes>("macRoman");
    QTest::newRow("upper half") << Bytes("aä€\u03a9\u02c7") << 5 << Bytes("a\x8a\xdb\xbd\xff");
    QTest::newRow("outside Mac Roman") << Bytes("aж") << 2 << Bytes();
    QTest::newRow("outside the basic plane") << Bytes("\xf0\x9f\x98\x80") << 2 << Bytes();
    QTest::newRow("not UTF-8") << Bytes("a\xe4") << -1 << Bytes();
}

/// The string in the encoding, from a buffer that fits exactly; null when it can't be had.
static Bytes bytesOf(CFStringRef string, CFStringEncoding encoding)
{
    for (CFIndex size = 1; size <= CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), encoding) + 1;
         ++size) {
        Bytes buffer(int(size) + 1, '#');
        if (CFStringGetCString(string, buffer.data(), size, encoding))
            return buffer.at(int(size)) == '#' ? Bytes(buffer.constData()) : Bytes("overrun");
    }
    return {};
}

void tst_CoreFoundation::convertsStrings()
{
    QFETCH(Bytes, utf8);
    QFETCH(int, length);
    QFETCH(Bytes, macRoman);
    CFStringRef string = CFStringCreateWithCString(kCFAllocatorDefault, utf8, kCFStringEncodingUTF8);
    QCOMPARE(string != nullptr, length >= 0);
    if (!string)
        return;
    QCOMPARE(int(CFStringGetLength(string)), length);
    QCOMPARE(bytesOf(string, kCFStringEncodingUTF8), utf8);
    QCOMPARE(bytesOf(string, kCFStringEncodingMacRoman), macRoman);
    CFRelease(string);
}

static Bytes xmlList(const Bytes &value)
{
    return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Key</key>" + value + "</dict></plist>";
}

static Bytes corpus(const char *name)
{
    QFile file(QFINDTESTDATA("fuzz/corpus/propertylist/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : xmlList("<string>no such file</string>");
}

void tst_CoreFoundation::preferenceIsReadFromTheUsersFile_data()
{
    QTest::addColumn<Bytes>("file");
    QTest::addColumn<Bytes>("value");
    QTest::newRow("string") << xmlList("<string>/tmp/ü &amp; log</string>") << Bytes("/tmp/ü & log");
    QTest::newRow("another type") << xmlList("<integer>4</integer>") << Bytes("(another type)");
    QTest::newRow("another key") << xmlList("").replace("<key>Key</key>", "") << Bytes();
    QTest::newRow("no dictionary") << Bytes("<plist><string>Key</string></plist>") << Bytes();
    QTest::newRow("one bracket") << Bytes("<") << Bytes();
    QTest::newRow("cut off") << xmlList("<string>x</string>").left(70) << Bytes();
    QTest::newRow("not UTF-8") << xmlList("<string>\xe4</string>") << Bytes();
    QTest::newRow("too large") << xmlList("<string>" + Bytes(5 << 20, 'x') + "</string>") << Bytes();
    QTest::newRow("nested deeply") << xmlList(Bytes("<array>").repeated(400000)) << Bytes();
    QTest::newRow("binary, nested deeply") << corpus("deep.bin") << Bytes();
    QTest::newRow("binary that grows without end") << corpus("growing.bin") << Bytes();
}

/// The preference of the fixed domain and key as bytes; null when there is none.
static Bytes preference()
{
    CFPropertyListRef value = CFPreferencesCopyAppValue(CFSTR("Key"), CFSTR("org.example.test"));
    if (!value)
        return {};
    const bool isString = CFGetTypeID(value) == CFStringGetTypeID();
    const Bytes bytes =
        isString ? bytesOf(static_cast<CFStringRef>(value), kCFStringEncodingUTF8) : Bytes("(another type)");
    CFRelease(value);
    return bytes;
}

static QString makeHome(const QTemporaryDir &home)
{
    qputenv("HOME", QFile::encodeName(home.path()));
    QDir(home.path()).mkpath("Library/Preferences");
    return home.filePath("Library/Preferences/org.example.test.plist");
}

void tst_CoreFoundation::preferenceIsReadFromTheUsersFile()
{
    QFETCH(Bytes, file);
    QTemporaryDir home;
    QFile list(makeHome(home));
    QVERIFY(list.open(QIODevice::WriteOnly));
    list.write(file);
    list.close();
    QTEST(preference(), "value");
}

void tst_CoreFoundation::specialFilesAreNoPreferences()
{
    QTemporaryDir home;
    const QString path = makeHome(home);
    QCOMPARE(mkfifo(QFile::encodeName(path), 0600), 0);
    QCOMPARE(preference(), Bytes());
    QVERIFY(QFile::remove(path) && QFile::link("/dev/zero", path));
    QCOMPARE(preference(), Bytes());
}

void tst_CoreFoundation::fileNamesAreUtf8InTheCLocale()
{
    QTemporaryDir folder;
    QVERIFY(QFile(folder.filePath(QString::fromUtf8("fünf"))).open(QIODevice::WriteOnly));
    QCOMPARE(access(folder.path().toLatin1() + "/f\xc3\xbcnf", F_OK), 0);
}

QTEST_GUILESS_MAIN(tst_CoreFoundation)
#include "tst_CoreFoundation.moc"
