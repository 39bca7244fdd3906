#include "HelperProcess.h"

#include "EndSignals.h"
#include "HelperPlace.h"
#include "helper/HelperRequest.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>

namespace {

// Never looked for on the user's PATH.
constexpr const char *pkexec = "/usr/bin/pkexec";

/// Milliseconds to wait for the helper to answer or exit. No user is involved, so anything longer is a hang.
constexpr int answerLimit = 30000;
constexpr int endLimit = 5000;
/// Milliseconds that a signal to end this process can go unnoticed.
constexpr int signalsLimit = 100;

void say(const std::string &line)
{
    std::fprintf(stderr, "%s\n", line.c_str());
    std::fflush(stderr);
}

/// Whether the descriptor has data, or is at its end, within `limit` milliseconds.
bool isReadable(int descriptor, int limit)
{
    pollfd source{descriptor, POLLIN, 0};
    int count = 0;
    do {
        count = poll(&source, 1, limit);
    } while (count < 0 && errno == EINTR);
    return count > 0;
}

/// Starts the helper with these standard descriptors. On failure says why and returns a negative number.
pid_t spawn(const std::string &helper, int input, int error)
{
    std::string program = geteuid() == 0 ? helper : pkexec;
    std::string noTerminal = "--disable-internal-agent";
    std::string own = helper;
    // The helper itself ignores its arguments.
    char *argumentList[] = {program.data(), noTerminal.data(), own.data(), nullptr};

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    for (int output : {STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_adddup2(&actions, error, output);
    pid_t child = -1;
    const int failure = posix_spawn(&child, program.c_str(), &actions, nullptr, argumentList, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure)
        say(program + ": " + std::strerror(failure));
    return failure ? -1 : child;
}

} // namespace

OSStatus HelperProcess::start(const std::string &prompt)
{
    stop();
    const std::string helper = helperPath();
    if (isReplaceableByAnyone(helper)) {
        say(helper
            + " is not run with administrator rights, as any account of this computer could replace it.");
        return errAuthorizationInternal;
    }
    int sockets[2];
    const Descriptor messages(memfd_create("messages", MFD_CLOEXEC));
    if (!messages || socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) != 0) {
        say(helper + ": " + std::strerror(errno));
        return errAuthorizationInternal;
    }
    socket = Descriptor(sockets[0]);
    Descriptor helperEnd(sockets[1]);

    const EndSignals endSignals;
    process = spawn(helper, helperEnd.get(), messages.get());
    helperEnd.reset();
    OSStatus status = errAuthorizationInternal;
    if (process > 0)
        status = awaitReady(endSignals, messages, prompt);
    if (status != errAuthorizationSuccess) {
        // Ends pkexec while it asks. A helper that is ready ends with the socket, and is root's to signal.
        if (process > 0)
            kill(process, SIGTERM);
        stop();
    }
    return status;
}

OSStatus HelperProcess::awaitReady(
    const EndSignals &endSignals, const Descriptor &messages, const std::string &prompt)
{
    // No limit: the user is typing a password.
    while (!endSignals.haveCome() && !isReadable(socket.get(), signalsLimit)) { }
    if (endSignals.haveCome())
        return errAuthorizationCanceled;
    HelperReply reply;
    Descriptor none;
    if (receive(reply, none))
        return reply.status;
    return statusOfFailedStart(messages, prompt);
}

/// pkexec has exited: its status tells a dismissed dialog from a refusal, its message that no agent was there
/// to ask.
OSStatus HelperProcess::statusOfFailedStart(const Descriptor &messages, const std::string &prompt)
{
    constexpr int dismissed = 126;
    constexpr int notAuthorized = 127;
    int ending = 0;
    if (!isReadable(endOf(process).get(), endLimit)) {
        say("The helper for administrator rights gives no answer.");
        return errAuthorizationInternal;
    }
    while (waitpid(process, &ending, 0) < 0 && errno == EINTR) { }
    process = -1;

    char said[4096] = "";
    if (pread(messages.get(), said, sizeof said - 1, 0) > 0)
        std::fputs(said, stderr);
    if (std::strstr(said, "No authentication agent found")) {
        say(prompt + " No authentication agent is running that could ask for an administrator's password.");
        return errAuthorizationInteractionNotAllowed;
    }
    if (WIFEXITED(ending) && WEXITSTATUS(ending) == dismissed)
        return errAuthorizationCanceled;
    if (WIFEXITED(ending) && WEXITSTATUS(ending) == notAuthorized)
        return errAuthorizationDenied;
    say("The helper for administrator rights ended before it was ready.");
    return errAuthorizationInternal;
}

void HelperProcess::stop()
{
    // A child of this process may still hold the socket.
    shutdown(socket.get(), SHUT_RDWR);
    socket.reset();
    if (process > 0) {
        isReadable(endOf(process).get(), endLimit);
        waitpid(process, nullptr, WNOHANG);
        process = -1;
    }
}

bool HelperProcess::isRunning() const
{
    return socket && !isReadable(socket.get(), 0);
}

OSStatus HelperProcess::runTool(const char *tool, char *const *arguments, Descriptor &connection)
{
    const std::string packet = packRequest(tool, arguments);
    HelperReply reply;
    if (send(socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL) < 0
        || !isReadable(socket.get(), answerLimit) || !receive(reply, connection)) {
        // A late reply must not be taken for the answer to the next request.
        shutdown(socket.get(), SHUT_RDWR);
        say("The helper for administrator rights has ended.");
        return errAuthorizationInternal;
    }
    if (reply.status != errAuthorizationSuccess)
        say(reply.reason);
    return reply.status;
}

/// False when there is no whole reply, or no descriptor left for its connection.
bool HelperProcess::receive(HelperReply &reply, Descriptor &connection)
{
    iovec span{&reply, sizeof reply};
    int number = -1;
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof number)];
    msghdr message{};
    message.msg_iov = &span;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t length = recvmsg(socket.get(), &message, MSG_CMSG_CLOEXEC);
    const cmsghdr *header = CMSG_FIRSTHDR(&message);
    if (length > 0 && header && header->cmsg_type == SCM_RIGHTS) {
        std::memcpy(&number, CMSG_DATA(header), sizeof number);
        connection = Descriptor(number);
    }
    return length == sizeof reply && !(message.msg_flags & MSG_CTRUNC);
}
