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
    /// Whether standard input is a packet socket whose other end this process's parent made, as the user who
    /// asked. `askingUser` is that user's id as pkexec gives it, null without pkexec. Call it first.
    bool identify(const char *askingUser);
    uid_t user() const { return userId; }

    /// True when there is something to receive, false when the process has died or closed its end.
    bool waitForPacket() const;
    /// Takes the packet that waitForPacket() announced; doesn't wait.
    Packet receive() const;
    /// Whether the process has died or closed its end. Doesn't wait.
    bool hasEnded() const;

    /// Answers a request with the connection to the tool that was started, or with why none was.
    void answer(const std::string &refusal, const Descriptor &connection) const;

    /// Waits for the end of a tool and returns whether it succeeded; false, too, when the process dies or
    /// closes its end first.
    bool waitForTool(pid_t tool) const;

private:
    bool comesBeforeEnd(int descriptor) const;

    static constexpr int socket = STDIN_FILENO;
    pid_t process = 0;
    uid_t userId = 0;
    Descriptor lifetime;
};
