#pragma once

#include <string>
#include <vector>

#include <Security/Authorization.h>

/// The administrator's rights, and the system tools run with them. Main thread only; every call blocks it
/// until the password dialog is answered or the tool has ended. Failures are reported on standard error.

/// The process-wide authorization reference: null until first created and again after freeAuthority.
extern AuthorizationRef gMacAuthorizationRef;

/// Creates the reference and asks for an administrator's name and password. True when the right was granted.
/// When it was refused or the dialog cancelled, the reference stays in place, without the right.
bool createAuthority(AuthorizationRef *authorization);

/// Gives up the reference with its rights and sets it to null. Returns the system's status, 0 for success.
OSStatus freeAuthority(AuthorizationRef *authorization);

/// Runs the tool at the full path `tool` as the superuser, waits until it has closed its output and copies
/// that to standard error. `arguments` doesn't repeat the tool's path and ends with a null entry. True when
/// the tool was started, whatever became of it then.
bool runCommandWithAuthority(AuthorizationRef authorization, const char *tool, char *const *arguments);

/// The same for arguments held in strings.
bool runCommandWithAuthority(
    AuthorizationRef authorization, const char *tool, const std::vector<std::string> &arguments);
