#pragma once

#include "Descriptor.h"

#include <csignal>

/// While it lives, a signal that tells the process to end (SIGHUP, SIGINT, SIGTERM) is held back and makes
/// `descriptor` readable; afterwards the process gets it as if it had come then. One at a time, on any
/// thread.
class EndSignals {
public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals &) = delete;
    EndSignals &operator=(const EndSignals &) = delete;

    int descriptor() const;

private:
    static constexpr int numbers[] = {SIGHUP, SIGINT, SIGTERM};
    struct sigaction before[3];
};
