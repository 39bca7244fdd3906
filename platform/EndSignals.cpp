#include "EndSignals.h"

namespace {

// Global because a signal handler gets no context.
volatile std::sig_atomic_t caughtSignal = 0;

void holdBack(int number)
{
    caughtSignal = number;
}

} // namespace

EndSignals::EndSignals()
{
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
    const int caught = caughtSignal;
    caughtSignal = 0;
    if (caught)
        raise(caught);
}

bool EndSignals::haveCome() const
{
    return caughtSignal != 0;
}
