#include "TerminationSignals.h"

#include <QSocketNotifier>
#include <QTimer>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int endingSignals[] = {SIGTERM, SIGINT, SIGHUP};
volatile sig_atomic_t sReceived = 0;
int sPipe[2] = {-1, -1};

void noteSignal(int)
{
    const int previousError = errno;
    sReceived = 1;
    const char byte = 0;
    // If the pipe is full, the event loop has enough to read already.
    if (write(sPipe[1], &byte, 1) < 0)
        errno = previousError;
}

void setHandler(int number, void (*handler)(int))
{
    struct sigaction action = {};
    struct sigaction previous = {};
    sigaction(number, nullptr, &previous);
    if (previous.sa_handler == SIG_IGN)
        return;
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART; // without it, EINTR would pass for the end of a tool's output
    sigaction(number, &action, nullptr);
}

} // namespace

TerminationSignals::TerminationSignals()
{
    if (pipe(sPipe) != 0)
        return;
    for (int end : sPipe) {
        fcntl(end, F_SETFL, O_NONBLOCK);
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    notifier = new QSocketNotifier(sPipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &TerminationSignals::announce);
    for (int number : endingSignals)
        setHandler(number, noteSignal);
    // A closed standard error, or a log at the limit of a file's size, is no reason to leave an installation
    // half done.
    for (int number : {SIGPIPE, SIGXFSZ})
        setHandler(number, SIG_IGN);
}

TerminationSignals::~TerminationSignals()
{
    if (!notifier)
        return;
    for (int number : endingSignals)
        setHandler(number, SIG_DFL);
    delete notifier;
    for (int end : sPipe)
        close(end);
}

bool TerminationSignals::received()
{
    return sReceived != 0;
}

void TerminationSignals::announce()
{
    notifier->setEnabled(false);
    auto *repetition = new QTimer(this);
    connect(repetition, &QTimer::timeout, this, &TerminationSignals::requested);
    repetition->start(100);
    emit requested();
}
