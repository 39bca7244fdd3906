#include "computecontrol/AccountQueries.h"
#include "computecontrol/CorvaneInstallUtils.h"
#include "macos/MacDoAuthorizedCommand.h"
#include "tests/Fixture.h"

#include <iostream>

// Calls the folder functions that standard input names, one a line with tabs between the words, and prints
// their codes. Goes on in every box that comes.

static int call(const QString &function, const QByteArray &path, const QByteArray &name)
{
    if (function == "free")
        return freeAuthority(&gMacAuthorizationRef);
    if (function == "fixup")
        return fixupDirectory(path);
    if (function == "product")
        return createProductDirectory(path);
    if (function == "resource")
        return createResourceDirectory(path, name);
    if (function == "verify")
        return verifyResourceDirectory(path, name);
    gSystemScope = path == "1";
    return 0;
}

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, acceptBox);
    timer.start(10);
    gAdminGid = static_cast<gid_t>(getGroupId("admin"));
    gSystemScope = true;
    for (std::string line; std::getline(std::cin, line);) {
        const QStringList words = QString::fromStdString(line).split('\t');
        std::cout << call(words[0], words.value(1).toUtf8(), words.value(2).toUtf8()) << std::endl;
    }
}
