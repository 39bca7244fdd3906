#pragma once

#include "platform/Descriptor.h"

#include <string>
#include <sys/types.h>

/// What one packet brought.
struct Packet {
    std::string bytes;
    Descriptor descriptor;
    /// Why it can't be accepted: it was too large, came from another process or without exactly one
    /// descriptor.
    std::string refusal;
    /// There is none: the other end is closed.
    bool isEnd = false;
};

/// The one process that this helper serves: its parent, at the other end of the socket.
class HelperPeer {
public:
    /// `askingUser` is the user id as pkexec names it, null when it wasn't pkexec that started this.
    HelperPeer(int socketDescriptor, const char *askingUser);

    /// Whether this is a socket for packets, its other end made by this process's parent, for the user who
    /// asked.
    bool identify();
    uid_t user() const { return userId; }

    /// True when there is something to receive, false when the process has died.
    bool waitForPacket() const;
    Packet receive() const;

private:
    int socket;
    std::string expectedUser;
    pid_t process = 0;
    uid_t userId = 0;
    Descriptor lifetime;
};
