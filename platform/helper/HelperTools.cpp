#include "HelperTools.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

/// The tool's path on this system. `defaults` is always the one beside this program, whatever the caller asks
/// for.
std::string placeOf(const std::string &tool)
{
    const std::string name = tool.substr(tool.rfind('/') + 1);
    if (name != "defaults")
        return "/bin/" + name;
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    if (length <= 0 || length == sizeof path)
        return {};
    const std::string program(path, static_cast<size_t>(length));
    return program.substr(0, program.rfind('/') + 1) + name;
}

/// Runs in the child. Returns only if exec, or a step before it, failed.
void becomeTool(
    const HelperCommand &command, const std::string &place, const Descriptor &connection, pid_t helper)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != helper || fchdir(command.folder.get()) != 0)
        return;
    umask(command.mask);
    for (int standard = STDIN_FILENO; standard <= STDERR_FILENO; ++standard)
        dup2(connection.get(), standard);
    std::vector<char *> words;
    for (const std::string &word : command.words)
        words.push_back(const_cast<char *>(word.c_str()));
    words.push_back(nullptr);
    char path[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
    char locale[] = "LC_ALL=C";
    char *environment[] = {path, locale, nullptr};
    execve(place.c_str(), words.data(), environment);
}

HelperTool notStarted(const std::string &what)
{
    HelperTool tool;
    tool.refusal = what + ": " + std::strerror(errno);
    return tool;
}

} // namespace

HelperTool startTool(const HelperCommand &command)
{
    const std::string place = placeOf(command.words[0]);
    int connection[2];
    int report[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, connection) != 0)
        return notStarted("no connection");
    HelperTool tool;
    tool.connection = Descriptor(connection[0]);
    const Descriptor toolEnd(connection[1]);
    if (pipe2(report, O_CLOEXEC) != 0)
        return notStarted("no pipe");
    const Descriptor reportEnd(report[0]);
    Descriptor childEnd(report[1]);
    const pid_t helper = getpid();
    tool.process = fork();
    if (tool.process == 0) {
        becomeTool(command, place, toolEnd, helper);
        const int failure = errno;
        [[maybe_unused]] const ssize_t count = write(childEnd.get(), &failure, sizeof failure);
        _exit(127);
    }
    if (tool.process < 0)
        return notStarted("no process");
    childEnd.reset();
    // A child that can't become the tool sends its errno; exec closes its end.
    int failure = 0;
    if (read(reportEnd.get(), &failure, sizeof failure) == 0)
        return tool;
    waitpid(tool.process, nullptr, 0);
    errno = failure;
    return notStarted(place);
}
