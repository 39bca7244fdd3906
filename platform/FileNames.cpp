#include <QCoreApplication>
#include <QTextCodec>

// The linker is told to take this in, as nothing else refers to it.
extern "C" {
extern const bool platformFileNamesAreUtf8;
const bool platformFileNamesAreUtf8 = true;
}

/// File names are UTF-8 as on macOS, whatever the locale says; in the C locale the toolkit would ask for
/// ASCII.
static void readFileNamesAsUtf8()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

Q_COREAPP_STARTUP_FUNCTION(readFileNamesAsUtf8)
