#include "MacXUtils/TerminationSignals.h"
#include "Orvo_Installer.h"

#include <QApplication>

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// Opens whichever of standard input, output and error is closed. Otherwise the connection to the display
/// would get its number, and then all that is written to standard error.
void completeStandardStreams()
{
    int descriptor;
    do
        descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    close(descriptor);
}

/// Unblocks all signals and stops ignoring SIGCHLD, which a process inherits from its starter. Otherwise no
/// tool would ever seem to end, or each would seem to have crashed.
void resetSignals()
{
    std::signal(SIGCHLD, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

} // namespace

int main(int argc, char *argv[])
{
    completeStandardStreams();
    resetSignals();
    QApplication application(argc, argv);
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::requested, &QApplication::closeAllWindows);
    Orvo_Installer wizard;
    install_wizard = &wizard;
    wizard.show();
    return QApplication::exec();
}
