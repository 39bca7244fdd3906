#include "HelperPeer.h"
#include "HelperProtocol.h"
#include "HelperTools.h"
#include "platform/Descriptor.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <syslog.h>

// Runs as root for one installer: started by it through polkit, it starts the few tools that need the
// superuser, and ends when the installer lets go of the socket or dies.

namespace {

/// Fills a standard descriptor that came closed, so that nothing opened later takes its place.
bool hasStandardDescriptors()
{
    Descriptor filler;
    do {
        filler.release();
        filler = Descriptor(open("/dev/null", O_RDWR | O_CLOEXEC));
    } while (filler && filler.get() <= STDERR_FILENO);
    return bool(filler);
}

/// Leaves nothing of the caller's surroundings but the three standard descriptors.
bool shedSurroundings()
{
    clearenv();
    umask(022);
    for (int number = 1; number < NSIG; ++number)
        std::signal(number, SIG_DFL);
    // Tools that have ended leave no zombies; a key typed in the installer's terminal is meant for the
    // installer.
    std::signal(SIGCHLD, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    setsid();
    return chdir("/") == 0 && close_range(STDERR_FILENO + 1, ~0U, 0) == 0 && hasStandardDescriptors();
}

/// One line for the journal, whatever bytes the request holds.
std::string printable(const HelperRequest &request)
{
    std::string line = request.tool;
    for (const std::string &argument : request.arguments)
        line += " '" + argument + "'";
    for (char &character : line) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < ' ' || byte == 0x7F)
            character = '?';
    }
    return line;
}

void answer(int socket, const std::string &refusal)
{
    HelperReply reply;
    reply.status = refusal.empty() ? errAuthorizationSuccess : errAuthorizationToolExecuteFailure;
    std::strncpy(reply.reason, refusal.c_str(), sizeof reply.reason - 1);
    // Never waits for a peer that doesn't read: its death would go unseen.
    send(socket, &reply, sizeof reply, MSG_NOSIGNAL | MSG_DONTWAIT);
}

void handle(const HelperPeer &peer, const Packet &packet)
{
    HelperRequest request = parseRequest(packet.bytes.data(), packet.bytes.size());
    if (!packet.refusal.empty())
        request.refusal = packet.refusal;
    if (request.refusal.empty()) {
        syslog(LOG_NOTICE, "user %u runs %s", peer.user(), printable(request).c_str());
        request.refusal = startTool(request, packet.descriptor.get());
    }
    if (!request.refusal.empty())
        syslog(LOG_WARNING, "user %u was refused: %s", peer.user(),
            printable({request.refusal, {}, {}}).c_str());
    answer(STDIN_FILENO, request.refusal);
}

} // namespace

int main()
{
    HelperPeer peer(STDIN_FILENO, std::getenv("PKEXEC_UID"));
    if (!shedSurroundings() || !peer.identify())
        return EXIT_FAILURE;
    openlog("lumetra-installer", LOG_PID, LOG_AUTHPRIV);
    answer(STDIN_FILENO, {});
    while (peer.waitForPacket()) {
        const Packet packet = peer.receive();
        if (packet.isEnd)
            break;
        handle(peer, packet);
    }
    return EXIT_SUCCESS;
}
