#include "EndSignals.h"

#include <cerrno>
#include <sys/eventfd.h>

namespace {

// Global because a signal handler gets no context.
volatile std::sig_atomic_t caughtSignal = 0;
int wakeUp = -1;

void holdBack(int number)
{
    const int error = errno;
    caughtSignal = number;
    const unsigned long long one = 1;
    [[maybe_unused]] const ssize_t count = write(wakeUp, &one, sizeof one);
    errno = error;
}

} // namespace

EndSignals::EndSignals()
{
    wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    struct sigaction action { };
    action.sa_handler = holdBack;
    action.sa_flags = SA_RESTART;
    for (int i = 0; i < 3; ++i) {
        sigaction(numbers[i], nullptr, &before[i]);
        if (before[i].sa_handler != SIG_IGN)
            sigaction(numbers[i], &action, nullptr);
    }
}

EndSignals::~EndSignals()
{
    for (int i = 0; i < 3; ++i)
        sigaction(numbers[i], &before[i], nullptr);
    close(wakeUp);
    wakeUp = -1;
    const int caught = caughtSignal;
    caughtSignal = 0;
    if (caught)
        raise(caught);
}

int EndSignals::descriptor() const
{
    return wakeUp;
}
