#pragma once

#include <csignal>

/// While it lives, holds back a signal that tells the process to end (SIGHUP, SIGINT, SIGTERM); afterwards
/// the process gets it as if it had come then. One at a time, on any thread.
class EndSignals {
public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals &) = delete;
    EndSignals &operator=(const EndSignals &) = delete;

    bool haveCome() const;

private:
    static constexpr int numbers[] = {SIGHUP, SIGINT, SIGTERM};
    struct sigaction before[3];
};
