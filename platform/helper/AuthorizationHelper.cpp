#include "HelperFolders.h"
#include "HelperPeer.h"
#include "HelperRules.h"
#include "HelperTools.h"
#include "platform/Descriptor.h"

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <sys/resource.h>
#include <syslog.h>
#include <unistd.h>

// Runs as root for one installer, which starts it through polkit: it starts the few tools that need the
// superuser, and ends when the installer closes the socket or dies.

namespace {

/// An installer is refused a few times at most. Whoever gets this far is probing.
constexpr int mostRefusals = 10;

/// Drops what was inherited from the caller, except the standard descriptors.
bool shedSurroundings()
{
    // The tools inherit these. Without a handler no system call here ends with EINTR.
    for (int number = 1; number < NSIG; ++number)
        std::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    // A key typed in the installer's terminal is meant for the installer.
    setsid();
    // A core file would be root's, in a folder of the caller's choice.
    const rlimit noCore{0, 0};
    return setrlimit(RLIMIT_CORE, &noCore) == 0 && chdir("/") == 0
        && close_range(STDERR_FILENO + 1, ~0U, 0) == 0;
}

/// The line in ASCII without control characters, for the system log, cut to the longest path and what else
/// there is to say.
std::string printable(std::string line)
{
    constexpr size_t longest = PATH_MAX + 512;
    line = line.substr(0, longest);
    std::replace_if(
        line.begin(), line.end(), [](unsigned char byte) { return byte < ' ' || byte > '~'; }, '?');
    return line;
}

/// The request in words, with its folder right after the tool.
std::string described(HelperRequest words, bool isAboutFolder)
{
    if (isAboutFolder)
        std::rotate(words.begin() + 1, words.end() - 1, words.end());
    std::string line;
    for (std::string &word : words) {
        // So that no word can look like two.
        std::replace(word.begin(), word.end(), '\'', '?');
        line += line.empty() ? word : " '" + word + "'";
    }
    return line;
}

/// Rewrites the command so that no name can be swapped under it: its folder, or the parent of a new one,
/// becomes the working folder. Returns why it is refused, or nothing.
std::string bindToFolder(
    HelperCommand &command, const HelperRule &rule, uid_t user, const HelperFolders &folders)
{
    const std::string path = command.words.back();
    std::string refusal = pathRefusal(path);
    if (!refusal.empty())
        return refusal;
    Descriptor folder = folders.open(path, rule.folders, user, refusal);
    command.words.back() = rule.folders & New ? path.substr(path.rfind('/') + 1) : ".";
    if (rule.folders & New) {
        // The mode goes into the umask, because mkdir -m would look the new name up a second time.
        command.mask = command.words[2] == "775" ? 002 : 022;
        command.words.erase(command.words.begin() + 1, command.words.end() - 1);
    }
    if (folder)
        command.folder = std::move(folder);
    else
        command.words.back().clear(); // no file has an empty name, so the tool fails by itself
    return refusal;
}

/// Runs what the request asks for. The result is empty, or says why it was refused.
std::string serve(const HelperPeer &peer, const HelperRequest &request, HelperFolders &folders)
{
    HelperCaller caller{peer.user()};
    if (const group *admin = getgrnam("admin"))
        caller.admin = admin->gr_gid;
    const HelperRule *rule = ruleFor(request, caller);
    if (!rule)
        return "no installation needs this: " + described(request, false);
    HelperCommand command{request, Descriptor(open("/", O_PATH | O_CLOEXEC))};
    const std::string description = described(request, rule->folders);
    if (rule->folders) {
        const std::string refusal = bindToFolder(command, *rule, caller.user, folders);
        if (!refusal.empty())
            return refusal + ": " + description;
    }
    // Opening the way can take longer than the peer lives.
    if (peer.hasEnded())
        return "nobody waits for it any more: " + description;
    syslog(LOG_NOTICE, "user %u runs %s", caller.user, printable(description).c_str());
    HelperTool tool = startTool(command);
    if (!tool.refusal.empty())
        return tool.refusal;
    peer.answer({}, tool.connection);
    tool.connection.reset();
    if (peer.waitForTool(tool.process) && rule->folders & New)
        folders.remember(command.folder, command.words[1]);
    return {};
}

} // namespace

int main()
{
    HelperPeer peer;
    if (!shedSurroundings() || !peer.identify(std::getenv("PKEXEC_UID")))
        return EXIT_FAILURE;
    openlog("lumetra-installer", LOG_PID, LOG_AUTHPRIV);
    peer.answer({}, Descriptor());
    HelperFolders folders;
    for (int refusals = 0; refusals < mostRefusals && peer.waitForPacket();) {
        const Packet packet = peer.receive();
        const std::string refusal =
            packet.refusal.empty() ? serve(peer, parseRequest(packet.bytes), folders) : packet.refusal;
        if (refusal.empty())
            continue;
        syslog(LOG_WARNING, "user %u was refused: %s", peer.user(), printable(refusal).c_str());
        peer.answer(refusal, Descriptor());
        ++refusals;
    }
    return EXIT_SUCCESS;
}
