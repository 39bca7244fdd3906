#include "MacXUtils/TerminationSignals.h"
#include "Orvo_Installer.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::requested, &QApplication::closeAllWindows);
    Orvo_Installer wizard;
    install_wizard = &wizard;
    wizard.show();
    return QApplication::exec();
}
