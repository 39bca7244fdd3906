#include "MacDoAuthorizedCommand.h"

#include <csignal>
#include <cstdio>

AuthorizationRef gMacAuthorizationRef = nullptr;

namespace {

/// Blocks SIGCHLD in this thread. Qt's handler, installed with the first QProcess, lacks SA_RESTART: it would
/// make reads fail with EINTR, and a read inside the system's call would be reported as a tool that can't
/// start.
class NoChildSignals {
public:
    NoChildSignals()
    {
        sigset_t children;
        sigemptyset(&children);
        sigaddset(&children, SIGCHLD);
        pthread_sigmask(SIG_BLOCK, &children, &before);
    }
    NoChildSignals(const NoChildSignals &) = delete;
    ~NoChildSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

private:
    sigset_t before;
};

} // namespace

bool createAuthority(AuthorizationRef *authorization)
{
    constexpr AuthorizationFlags interactive =
        kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights;
    char prompt[] = "Corvane '14 needs to configure itself to run on your system.";
    AuthorizationItem promptItem = {"prompt", sizeof prompt - 1, prompt, 0};
    const AuthorizationEnvironment environment = {1, &promptItem};
    OSStatus status = AuthorizationCreate(nullptr, &environment, interactive, authorization);
    if (status != errAuthorizationSuccess) {
        std::fprintf(stderr, "AuthorizationCreate failed: status=%d\n", status);
        std::fflush(stderr);
        return false;
    }

    AuthorizationItem administrator = {"system.privilege.admin", 0, nullptr, 0};
    const AuthorizationRights rights = {1, &administrator};
    status = AuthorizationCopyRights(*authorization, &rights, kAuthorizationEmptyEnvironment,
        interactive | kAuthorizationFlagPreAuthorize, nullptr);
    if (status != errAuthorizationSuccess) {
        std::fprintf(stderr, "AuthorizationCopyRights failed: status=%d", status);
        std::fflush(stderr);
        return false;
    }
    return true;
}

OSStatus freeAuthority(AuthorizationRef *authorization)
{
    const OSStatus status = AuthorizationFree(*authorization, kAuthorizationFlagDestroyRights);
    *authorization = nullptr;
    return status;
}

bool runCommandWithAuthority(AuthorizationRef authorization, const char *tool, char *const *arguments)
{
    const NoChildSignals whileItRuns;
    FILE *pipe = nullptr;
    // Deprecated on macOS, but the only call there that runs a tool as the superuser without a helper
    // installed for good, which a program used once must not leave behind.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    const OSStatus status =
        AuthorizationExecuteWithPrivileges(authorization, tool, kAuthorizationFlagDefaults, arguments, &pipe);
#pragma GCC diagnostic pop
    if (pipe) {
        char piece[128];
        while (const size_t length = std::fread(piece, 1, sizeof piece, pipe))
            std::fwrite(piece, 1, length, stderr);
        std::fclose(pipe);
    }
    if (status == errAuthorizationSuccess)
        return true;

    std::fprintf(stderr, "AuthorizationExecuteWithPrivileges failed: %s\n", tool);
    for (char *const *argument = arguments; *argument; ++argument)
        std::fprintf(stderr, " %s\n", *argument);
    std::fprintf(stderr, " status=%d\n", status);
    std::fflush(stderr);
    return false;
}

bool runCommandWithAuthority(
    AuthorizationRef authorization, const char *tool, const std::vector<std::string> &arguments)
{
    std::vector<char *> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string &argument : arguments)
        pointers.push_back(const_cast<char *>(argument.c_str()));
    pointers.push_back(nullptr);
    return runCommandWithAuthority(authorization, tool, pointers.data());
}
