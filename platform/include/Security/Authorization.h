#pragma once

// The part of Authorization Services that the installer uses, with the types and values of macOS.

#include <CoreFoundation/CoreFoundation.h>

#include <stddef.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef const struct AuthorizationOpaqueRef *AuthorizationRef;
typedef const char *AuthorizationString;
typedef UInt32 AuthorizationFlags;

typedef struct {
    AuthorizationString name;
    size_t valueLength;
    void *value;
    UInt32 flags;
} AuthorizationItem;

typedef struct {
    UInt32 count;
    AuthorizationItem *items;
} AuthorizationItemSet;

typedef AuthorizationItemSet AuthorizationRights;
typedef AuthorizationItemSet AuthorizationEnvironment;

enum {
    kAuthorizationFlagDefaults = 0,
    kAuthorizationFlagInteractionAllowed = 1 << 0,
    kAuthorizationFlagExtendRights = 1 << 1,
    kAuthorizationFlagDestroyRights = 1 << 3,
    kAuthorizationFlagPreAuthorize = 1 << 4,
};

#define kAuthorizationEmptyEnvironment NULL

enum {
    errAuthorizationSuccess = 0,
    errAuthorizationInvalidRef = -60002,
    errAuthorizationDenied = -60005,
    errAuthorizationCanceled = -60006,
    errAuthorizationInteractionNotAllowed = -60007,
    errAuthorizationInternal = -60008,
    errAuthorizationToolExecuteFailure = -60031,
};

/// Makes a reference that holds no rights yet and stores it. Keeps the environment's item "prompt".
OSStatus AuthorizationCreate(const AuthorizationRights *rights, const AuthorizationEnvironment *environment,
    AuthorizationFlags flags, AuthorizationRef *authorization);

/// Ends the rights that the reference holds and the reference itself, whatever the flags.
OSStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags);

/// Obtains the right "system.privilege.admin", the only one there is, whatever the rights and flags: one
/// authentication, unless the process is root. errAuthorizationCanceled: the dialog was dismissed, or the
/// process was told to end meanwhile. errAuthorizationDenied: wrong password or no administrator.
/// errAuthorizationInteractionNotAllowed: nothing here can ask. errAuthorizationInternal: the helper can't be
/// started. For the last two, a line on standard error says why.
OSStatus AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights *rights,
    const AuthorizationEnvironment *environment, AuthorizationFlags flags,
    AuthorizationRights **authorizedRights);

/// Starts a tool as root. The communications pipe, the caller's to close, is the tool's standard input and
/// output; its end of file is the tool's end. Here it carries the tool's errors, too; on macOS these go
/// straight to the caller's standard error. errAuthorizationDenied: the reference holds no right.
/// errAuthorizationToolExecuteFailure: no installation needs the command, or the tool can't be started.
/// errAuthorizationInternal: the helper, and with it the right, has ended. For the last two, a line on
/// standard error says why.
OSStatus AuthorizationExecuteWithPrivileges(AuthorizationRef authorization, const char *pathToTool,
    AuthorizationFlags options, char *const *arguments, FILE **communicationsPipe);

#ifdef __cplusplus
}
#endif
