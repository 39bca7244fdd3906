#include <Security/Authorization.h>

#include "HelperProcess.h"

#include <cstring>

struct AuthorizationOpaqueRef {
    std::string prompt;
    mutable HelperProcess helper;
};

namespace {

std::string promptOf(const AuthorizationEnvironment *environment)
{
    for (UInt32 i = 0; environment && i < environment->count; ++i) {
        const AuthorizationItem &item = environment->items[i];
        if (std::strcmp(item.name, "prompt") == 0)
            return std::string(static_cast<const char *>(item.value), item.valueLength);
    }
    return {};
}

} // namespace

OSStatus AuthorizationCreate(const AuthorizationRights *, const AuthorizationEnvironment *environment,
    AuthorizationFlags, AuthorizationRef *authorization)
{
    auto *created = new AuthorizationOpaqueRef;
    created->prompt = promptOf(environment);
    *authorization = created;
    return errAuthorizationSuccess;
}

OSStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags)
{
    if (!authorization)
        return errAuthorizationInvalidRef;
    delete authorization;
    return errAuthorizationSuccess;
}

OSStatus AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights *,
    const AuthorizationEnvironment *, AuthorizationFlags, AuthorizationRights **)
{
    if (!authorization)
        return errAuthorizationInvalidRef;
    if (authorization->helper.isRunning())
        return errAuthorizationSuccess;
    return authorization->helper.start(authorization->prompt);
}

OSStatus AuthorizationExecuteWithPrivileges(AuthorizationRef authorization, const char *pathToTool,
    AuthorizationFlags, char *const *arguments, FILE **communicationsPipe)
{
    if (!authorization)
        return errAuthorizationInvalidRef;
    if (!authorization->helper.wasStarted())
        return errAuthorizationDenied;
    Descriptor connection;
    const OSStatus status = authorization->helper.runTool(pathToTool, arguments, connection);
    if (status == errAuthorizationSuccess && communicationsPipe)
        *communicationsPipe = fdopen(connection.release(), "r+");
    return status;
}
