#include "computecontrol/AccountQueries.h"
#include "computecontrol/CorvaneInstallUtils.h"
#include "macos/MacDoAuthorizedCommand.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <iostream>
#include <string>

// Calls the folder functions that standard input names, one a line with tabs between the words, and prints
// their codes. Goes on in every box that comes.

static void goOn()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    const QList<QAbstractButton *> buttons = box ? box->buttons() : QList<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (button->text() != QLatin1String("Cancel Installation"))
            button->click();
    }
}

static int call(const QStringList &words)
{
    const QByteArray path = words.value(1).toUtf8();
    const QByteArray name = words.value(2).toUtf8();
    if (words[0] == "scope")
        gSystemScope = path == "1";
    else if (words[0] == "free")
        return freeAuthority(&gMacAuthorizationRef);
    else if (words[0] == "fixup")
        return fixupDirectory(path);
    else if (words[0] == "product")
        return createProductDirectory(path);
    else if (words[0] == "resource")
        return createResourceDirectory(path, name);
    else if (words[0] == "verify")
        return verifyResourceDirectory(path, name);
    return 0;
}

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, goOn);
    timer.start(10);
    gSystemScope = true;
    gAdminGid = static_cast<gid_t>(getGroupId("admin"));
    for (std::string line; std::getline(std::cin, line);)
        std::cout << call(QString::fromStdString(line).split('\t')) << std::endl;
}
