#include "HelperTools.h"

#include "platform/Descriptor.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/prctl.h>

namespace {

struct Tool {
    const char *asked;
    /// Null: the program of that name beside this one.
    const char *place;
};

constexpr Tool tools[] = {
    {"/bin/mkdir", "/bin/mkdir"},
    {"/usr/bin/chgrp", "/bin/chgrp"},
    {"/usr/sbin/chown", "/bin/chown"},
    {"/bin/chmod", "/bin/chmod"},
    {"/usr/bin/defaults", nullptr},
};

std::string besideThisProgram(const char *name)
{
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    if (length <= 0 || length == sizeof path)
        return {};
    const std::string program(path, static_cast<size_t>(length));
    return program.substr(0, program.rfind('/') + 1) + name;
}

std::string placeOf(const std::string &asked)
{
    for (const Tool &tool : tools) {
        if (asked == tool.asked)
            return tool.place ? tool.place : besideThisProgram("defaults");
    }
    return {};
}

void resetSignals()
{
    for (int number = 1; number < NSIG; ++number)
        std::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// In the child. Returns only when the tool couldn't take this process over.
void becomeTool(const char *place, char **argumentList, int connection, pid_t helper)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != helper)
        return;
    resetSignals();
    for (int standard = STDIN_FILENO; standard <= STDERR_FILENO; ++standard)
        dup2(connection, standard);
    char path[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
    char locale[] = "LC_ALL=C";
    char *environment[] = {path, locale, nullptr};
    execve(place, argumentList, environment);
}

/// Waits until the child is the tool, which closes its end, or says in a number that it can't be.
int startFailure(int reportEnd)
{
    int failure = 0;
    ssize_t count = 0;
    do {
        count = read(reportEnd, &failure, sizeof failure);
    } while (count < 0 && errno == EINTR);
    return count == 0 ? 0 : failure ? failure : EIO;
}

} // namespace

std::string startTool(const HelperRequest &request, int connection)
{
    const std::string place = placeOf(request.tool);
    if (place.empty())
        return request.tool + " is none of the tools that are run with administrator rights";

    std::vector<char *> argumentList{const_cast<char *>(request.tool.c_str())};
    for (const std::string &argument : request.arguments)
        argumentList.push_back(const_cast<char *>(argument.c_str()));
    argumentList.push_back(nullptr);

    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return std::string("no pipe: ") + std::strerror(errno);
    const Descriptor reportEnd(ends[0]);
    Descriptor childEnd(ends[1]);
    const pid_t helper = getpid();
    const pid_t child = fork();
    if (child == 0) {
        becomeTool(place.c_str(), argumentList.data(), connection, helper);
        const int failure = errno;
        [[maybe_unused]] const ssize_t count = write(childEnd.get(), &failure, sizeof failure);
        _exit(127);
    }
    if (child < 0)
        return std::string("no process: ") + std::strerror(errno);
    childEnd.reset();
    const int failure = startFailure(reportEnd.get());
    return failure ? place + ": " + std::strerror(failure) : std::string();
}
