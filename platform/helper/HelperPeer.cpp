#include "HelperPeer.h"

#include "HelperProtocol.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <vector>

namespace {

/// Takes over the descriptors that came with a packet; true when its sender is the process.
bool takeAncillaryData(msghdr &message, pid_t process, std::vector<Descriptor> &descriptors)
{
    bool isFromProcess = false;
    for (cmsghdr *header = CMSG_FIRSTHDR(&message); header; header = CMSG_NXTHDR(&message, header)) {
        if (header->cmsg_level != SOL_SOCKET)
            continue;
        if (header->cmsg_type == SCM_CREDENTIALS) {
            ucred sender{};
            std::memcpy(&sender, CMSG_DATA(header), sizeof sender);
            isFromProcess = sender.pid == process;
        } else if (header->cmsg_type == SCM_RIGHTS) {
            for (size_t at = 0; at + sizeof(int) <= header->cmsg_len - CMSG_LEN(0); at += sizeof(int)) {
                int number = -1;
                std::memcpy(&number, CMSG_DATA(header) + at, sizeof number);
                descriptors.emplace_back(number);
            }
        }
    }
    return isFromProcess;
}

const char *refusalOf(const msghdr &message, bool isFromPeer, size_t descriptors)
{
    if (!isFromPeer)
        return "the request is another process's";
    if (message.msg_flags & MSG_TRUNC)
        return "the request is too large";
    if (message.msg_flags & MSG_CTRUNC || descriptors != 1)
        return "the request doesn't come with one descriptor";
    return "";
}

} // namespace

HelperPeer::HelperPeer(int socketDescriptor, const char *askingUser)
    : socket(socketDescriptor)
    , expectedUser(askingUser ? askingUser : "")
{
}

bool HelperPeer::identify()
{
    // Only packets tell an end from an empty request.
    int type = 0;
    socklen_t typeSize = sizeof type;
    ucred credentials{};
    socklen_t size = sizeof credentials;
    const int on = 1;
    if (getsockopt(socket, SOL_SOCKET, SO_TYPE, &type, &typeSize) != 0 || type != SOCK_SEQPACKET
        || getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0
        || setsockopt(socket, SOL_SOCKET, SO_PASSCRED, &on, sizeof on) != 0)
        return false;
    process = credentials.pid;
    userId = credentials.uid;
    lifetime = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
    // Still this process's parent after the descriptor was had: so it is that process and none that got its
    // id later.
    return lifetime && getppid() == process
        && (expectedUser.empty() || expectedUser == std::to_string(userId));
}

bool HelperPeer::waitForPacket() const
{
    // The socket alone isn't enough: a child of the process could have kept its end open.
    pollfd sources[] = {{socket, POLLIN, 0}, {lifetime.get(), POLLIN, 0}};
    int count = 0;
    do {
        count = poll(sources, 2, -1);
    } while (count < 0 && errno == EINTR);
    return count > 0 && sources[1].revents == 0;
}

Packet HelperPeer::receive() const
{
    Packet packet;
    packet.bytes.resize(largestRequest);
    iovec span{packet.bytes.data(), packet.bytes.size()};
    constexpr size_t someDescriptors = 8;
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(ucred)) + CMSG_SPACE(someDescriptors * sizeof(int))];
    msghdr message{};
    message.msg_iov = &span;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    ssize_t length = 0;
    do {
        length = recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    } while (length < 0 && errno == EINTR);

    // An empty packet differs from the end in that it names its sender.
    packet.isEnd = length < 0 || (length == 0 && message.msg_controllen == 0);
    if (packet.isEnd)
        return packet;
    packet.bytes.resize(static_cast<size_t>(length));
    std::vector<Descriptor> descriptors;
    const bool isFromPeer = takeAncillaryData(message, process, descriptors);
    packet.refusal = refusalOf(message, isFromPeer, descriptors.size());
    if (descriptors.size() == 1)
        packet.descriptor = std::move(descriptors.front());
    return packet;
}
