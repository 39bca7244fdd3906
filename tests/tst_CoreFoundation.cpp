#include "Fixture.h"

#include <CoreFoundation/CoreFoundation.h>

#include <sys/stat.h>

using Bytes = QByteArray;

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

static Bytes xmlList(const Bytes &value)
{
    return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Key</key>" + value + "</dict></plist>";
}

class tst_CoreFoundation : public QObject {
    Q_OBJECT

private slots:
    void convertsStrings()
    {
        struct {
            Bytes utf8, macRoman;
            int length;
        } const rows[] = {{"aä€\u03a9\u2206\uf8ff\u02c7", "a\x8a\xdb\xbd\xc6\xf0\xff", 7}, {"aж", {}, 2},
            {"😀", {}, 2}, {"not UTF-8: \xe4", {}, -1}};
        for (const auto &[utf8, macRoman, length] : rows) {
            CFStringRef string = CFStringCreateWithCString(kCFAllocatorDefault, utf8, kCFStringEncodingUTF8);
            QCOMPARE(string != nullptr, length >= 0);
            if (!string)
                continue;
            QCOMPARE(int(CFStringGetLength(string)), length);
            QCOMPARE(bytesOf(string, kCFStringEncodingUTF8), utf8);
            QCOMPARE(bytesOf(string, kCFStringEncodingMacRoman), macRoman);
            CFRelease(string);
        }
    }

    void preferenceIsReadFromTheUsersFile()
    {
        const std::pair<Bytes, Bytes> rows[] = {
            {xmlList("<string>/tmp/ü &amp; log</string>"), "/tmp/ü & log"},
            {xmlList("<integer>4</integer>"), "(another type)"},
            {xmlList("").replace("<key>Key</key>", ""), {}}, {"<plist><string>Key</string></plist>", {}},
            {"<", {}}, {xmlList("<string>cut off</string>").left(75), {}},
            {xmlList("<string>\xe4</string>"), {}},
            {xmlList("<string>fits</string>").leftJustified(65536), "fits"},
            {xmlList("<string>too large</string>").leftJustified(65537), {}}};
        for (const auto &[file, value] : rows) {
            const Tree home;
            qputenv("HOME", home.path().toUtf8());
            home.file("Library/Preferences/org.example.test.plist", file);
            QVERIFY2(preference() == value, file.left(100));
        }
    }

    void specialFilesAreNoPreferences()
    {
        const Tree home;
        qputenv("HOME", home.path().toUtf8());
        const QString path = home.folder("Library/Preferences") + "/org.example.test.plist";
        QCOMPARE(mkfifo(QFile::encodeName(path), 0600), 0);
        QCOMPARE(preference(), Bytes());
        QVERIFY(QFile::remove(path) && QFile::link("/dev/zero", path));
        QCOMPARE(preference(), Bytes());
    }
};

QTEST_GUILESS_MAIN(tst_CoreFoundation)
#include "tst_CoreFoundation.moc"
