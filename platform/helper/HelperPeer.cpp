#include "HelperPeer.h"

#include "HelperProtocol.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>

namespace {

const char *refusalOf(const msghdr &message, pid_t process)
{
    const cmsghdr *header = CMSG_FIRSTHDR(&message);
    ucred sender{};
    if (header && header->cmsg_level == SOL_SOCKET && header->cmsg_type == SCM_CREDENTIALS)
        std::memcpy(&sender, CMSG_DATA(header), sizeof sender);
    if (sender.pid != process)
        return "the request is another process's";
    if (message.msg_flags & MSG_CTRUNC)
        return "the request comes with a descriptor";
    return "";
}

} // namespace

bool HelperPeer::identify(const char *askingUser)
{
    ucred credentials{};
    socklen_t size = sizeof credentials;
    const int on = 1;
    int type = 0;
    socklen_t typeSize = sizeof type;
    // Other sockets join packets, or don't tell that the peer has closed its end.
    if (getsockopt(socket, SOL_SOCKET, SO_TYPE, &type, &typeSize) != 0 || type != SOCK_SEQPACKET
        || getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0
        || setsockopt(socket, SOL_SOCKET, SO_PASSCRED, &on, sizeof on) != 0)
        return false;
    process = credentials.pid;
    userId = credentials.uid;
    lifetime = endOf(process);
    // Checked after opening the pidfd: if it is still our parent, the pidfd can't belong to a later process
    // with the same id.
    return lifetime && getppid() == process && (!askingUser || askingUser == std::to_string(userId));
}

bool HelperPeer::waitForPacket() const
{
    return comesBeforeEnd(socket);
}

Packet HelperPeer::receive() const
{
    Packet packet;
    packet.bytes.resize(largestRequest + 1); // what is too large shows
    iovec span{packet.bytes.data(), packet.bytes.size()};
    // With no room for them the kernel drops descriptors. One that arrived would have to be closed, and
    // close() can block on the file system behind it.
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(ucred))];
    msghdr message{};
    message.msg_iov = &span;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t length = recvmsg(socket, &message, MSG_DONTWAIT);
    packet.bytes.resize(length > 0 ? static_cast<size_t>(length) : 0);
    packet.refusal = length < 0 ? std::strerror(errno) : refusalOf(message, process);
    return packet;
}

bool HelperPeer::hasEnded() const
{
    pollfd ends[] = {{socket, POLLRDHUP, 0}, {lifetime.get(), POLLIN, 0}};
    return poll(ends, 2, 0) != 0;
}

void HelperPeer::answer(const std::string &refusal, const Descriptor &connection) const
{
    HelperReply reply;
    reply.status = refusal.empty() ? errAuthorizationSuccess : errAuthorizationToolExecuteFailure;
    std::strncpy(reply.reason, refusal.c_str(), sizeof reply.reason - 1);
    iovec span{&reply, sizeof reply};
    const int number = connection.get();
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof number)] = {};
    msghdr message{};
    message.msg_iov = &span;
    message.msg_iovlen = 1;
    if (connection) {
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        cmsghdr *header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof number);
        std::memcpy(CMSG_DATA(header), &number, sizeof number);
    }
    // Never blocks on a peer that doesn't read; its death would go unnoticed.
    sendmsg(socket, &message, MSG_NOSIGNAL | MSG_DONTWAIT);
}

bool HelperPeer::waitForTool(pid_t tool) const
{
    int status = 0;
    return comesBeforeEnd(endOf(tool).get()) && waitpid(tool, &status, 0) == tool && status == 0;
}

/// Whether the descriptor becomes readable before the peer closes its end or dies.
bool HelperPeer::comesBeforeEnd(int descriptor) const
{
    // The socket isn't enough: a child of the peer may have inherited its end.
    pollfd sources[] = {{descriptor, POLLIN, 0}, {socket, POLLRDHUP, 0}, {lifetime.get(), POLLIN, 0}};
    return poll(sources, 3, -1) > 0 && !hasEnded();
}
