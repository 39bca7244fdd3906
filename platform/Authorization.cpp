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

bool isAdministratorRight(const AuthorizationRights *rights)
{
    return rights && rights->count == 1 && std::strcmp(rights->items[0].name, "system.privilege.admin") == 0;
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

OSStatus AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights *rights,
    const AuthorizationEnvironment *, AuthorizationFlags flags, AuthorizationRights **)
{
    if (!authorization)
        return errAuthorizationInvalidRef;
    if (!isAdministratorRight(rights))
        return errAuthorizationDenied;
    if (authorization->helper.isRunning())
        return errAuthorizationSuccess;
    if (!(flags & kAuthorizationFlagInteractionAllowed))
        return errAuthorizationInteractionNotAllowed;
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
