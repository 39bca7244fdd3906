#pragma once

#include "AccountQueries.h"
#include "PrivilegeBoxes.h"

#include <QString>

#include <cstdint>

/// The folders that all users of the computer share. Main thread only: the steps that need rights
/// show modal boxes and the system's password dialog. Paths and names are NUL-terminated UTF-8. Reports begin
/// with the function's name and go to standard error, to the installer log or to both.

/// The group id of "admin", all bits set when the group is unknown; looked up once at the start.
extern gid_t gAdminGid;

/// Whether folders are prepared for sharing: group "admin", mode 0775, refused steps tried again with rights.
extern bool gSystemScope;

/// Why rights are needed, shown just before the password dialog.
extern QString gPrivilegeReason;

/// Whether the user has stopped the installation: no box and no password dialog is shown any more.
extern bool gPromptsDeclined;

/// Tells the user what is to come and obtains the administrator's rights in gMacAuthorizationRef. Returns 0
/// when it holds them now, 1 when the user cancelled or stopped, or the rights were refused.
int32_t establishPrivsForSetup();

/// Gives the existing folder the group "admin" and, where the group can't write to it, the mode 0775, with
/// rights where the system refuses. Returns 0 for success or nothing to do; 1 status unreadable, 2 not a
/// directory, 3 privileged group change failed, 4 other failure of the group change or no authorization, 5
/// privileged mode change failed, 6 other failure of the mode change.
int32_t fixupDirectory(const char *path);

/// Creates one folder in the shared state. Returns 0 or, after a creation without rights, fixupDirectory's
/// code; 1 privileged mkdir failed, 2 privileged chown failed, 3 not in system scope, 4 no authorization.
int32_t createProductDirectory(const char *path);

/// Creates a parent folder and its subfolder. Returns 0 or, after a creation without rights,
/// createProductDirectory's code; 1 path too long or privileged mkdir of the parent failed, 2 its chgrp, 3
/// the subfolder's mkdir, 4 its chown or no authorization, 5 not in system scope.
int32_t createResourceDirectory(const char *parent, const char *name);

/// Brings a parent folder and its subfolder into the shared state, creating what is missing. Returns 0 when
/// the subfolder is ready; otherwise the code of the function that it handed over to, or 1 when a status
/// can't be read or the joined path takes more than 4095 bytes.
int32_t verifyResourceDirectory(const char *parent, const char *name);

/// Creates the folder at `path` as the superuser, mode 0755, and gives it to the user and the group "admin".
/// One that exists, and a link, stay as they are. False when the user can't look there, there is no
/// authorization, a tool can't be started or a stranger's folder is in the place.
bool createPickedDirectory(const char *path);

/// Whether it is a folder that the user can write to.
bool canBeFilled(const char *path);

/// Whether the folder, or a link in its place, belongs to neither this user nor root. It may be a trap, with
/// links in the places of files. False when that can't be found out within 5 seconds.
bool belongsToStranger(const char *path);
