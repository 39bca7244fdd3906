#pragma once

#include "platform/Descriptor.h"

#include <string>
#include <sys/types.h>

/// What one packet brought.
struct Packet {
    std::string bytes;
    /// Why it can't be accepted: it came from another process or with a descriptor.
    std::string refusal;
};

/// The one process that this helper serves: its parent, at the other end of the socket.
class HelperPeer {
public:
    /// Whether the other end of standard input is a socket that this process's parent made, as the user who
    /// asked: the id as pkexec names it, null when it wasn't pkexec that started this.
    bool identify(const char *askingUser);
    uid_t user() const { return userId; }

    /// True when there is something to receive, false when the process has died or closed its end.
    bool waitForPacket() const;
    Packet receive() const;
    /// Whether the process has died or closed its end. Doesn't wait.
    bool hasEnded() const;

    /// Answers a request: with the connection to the tool that was started, or with why none was.
    void answer(const std::string &refusal, const Descriptor &connection) const;

    /// Waits for the end of a tool. Whether it succeeded; false, too, when the process has died or closed its
    /// end before.
    bool waitForTool(pid_t tool) const;

private:
    bool comesBeforeEnd(int descriptor) const;

    static constexpr int socket = STDIN_FILENO;
    pid_t process = 0;
    uid_t userId = 0;
    Descriptor lifetime;
};
