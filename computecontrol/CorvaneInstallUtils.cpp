#include "CorvaneInstallUtils.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "MacXUtils/Logging.h"
#include "macos/MacDoAuthorizedCommand.h"

gid_t gAdminGid = 0;
bool gSystemScope = false;
bool gPromptsDeclined = false;
QString gPrivilegeReason;

namespace {

/// One report to standard error, flushed at once, and to the installer log.
void report(const char *format, ...) __attribute__((format(printf, 1, 2)));
void report(const char *format, ...)
{
    char text[8192];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    std::fputs(text, stderr);
    std::fflush(stderr);
    log_msg("%s", text);
}

bool refusedForLackOfRights(int error)
{
    return error == EPERM || error == EACCES;
}

bool haveAuthority()
{
    return gMacAuthorizationRef || establishPrivsForSetup() == 0;
}

bool run(const char *tool, const std::vector<std::string> &arguments)
{
    return runCommandWithAuthority(gMacAuthorizationRef, tool, arguments);
}

mode_t newFolderMode()
{
    return gSystemScope ? 0775 : 0755;
}

std::string octal(mode_t mode)
{
    char text[16];
    std::snprintf(text, sizeof text, "%o", mode);
    return text;
}

/// "user:group" of the installing user and the group, both numeric.
std::string owner(gid_t group)
{
    char text[32];
    std::snprintf(text, sizeof text, "%d:%d", static_cast<int>(getuid()), static_cast<int>(group));
    return text;
}

/// Joins a parent and a name to `path`; false when that takes more than 4095 bytes.
bool joinPath(const char *parent, const char *name, char (&path)[4096])
{
    return std::snprintf(path, sizeof path, "%s/%s", parent, name) < static_cast<int>(sizeof path);
}

/// Returns fixupDirectory's code; `changed` tells whether the group was another one.
int32_t fixupGroup(const char *path, const struct stat &status, bool &changed)
{
    changed = status.st_gid != gAdminGid;
    if (!changed || chown(path, static_cast<uid_t>(-1), gAdminGid) == 0)
        return 0;
    if (!refusedForLackOfRights(errno)) {
        report("fixupDirectory: Unable to change group to 'admin' on directory...\n    %s\n%s\n", path,
            strerror(errno));
        return 4;
    }
    log_msg("fixupDirectory: trying to set chown group-admin perms on %s\n", path);
    if (!haveAuthority())
        return 4;
    if (!run("/usr/bin/chgrp", {std::to_string(static_cast<int>(gAdminGid)), path})) {
        report("fixupDirectory: Unable to change group to 'admin' on directory %s\n", path);
        return 3;
    }
    return 0;
}

/// Returns fixupDirectory's code; `changed` tells whether the group couldn't write before.
int32_t fixupMode(const char *path, const struct stat &status, bool &changed)
{
    changed = (status.st_mode & S_IWGRP) == 0;
    if (!changed || chmod(path, 0775) == 0)
        return 0;
    if (!refusedForLackOfRights(errno)) {
        report("fixupDirectory: Unable to add group write permission on directory...\n    %s\n%s\n", path,
            strerror(errno));
        return 6;
    }
    log_msg("fixupDirectory: trying to set chmod group-admin perms on %s\n", path);
    if (!haveAuthority())
        return 4;
    if (!run("/bin/chmod", {"0775", path})) {
        report("fixupDirectory: Unable to add group write permission on directory %s\n", path);
        return 5;
    }
    return 0;
}

/// The privileged steps of createResourceDirectory, up to the first that fails. Returns its code.
int32_t createResourceDirectoryWithRights(const char *parent, const char *path, gid_t adminGid)
{
    const std::string mode = octal(newFolderMode());
    const std::string group = std::to_string(static_cast<int>(adminGid));
    const std::string user = owner(adminGid);
    if (!run("/bin/mkdir", {"-m", mode, parent})) {
        log_msg("createResourceDirectory: runCommandWithAuthority(/bin/mkdir %s %s %s) failed\n", "-m",
            mode.c_str(), parent);
        return 1;
    }
    if (!run("/usr/bin/chgrp", {group, parent})) {
        log_msg("createResourceDirectory: runCommandWithAuthority(/usr/bin/chgrp %s %s) failed\n",
            group.c_str(), parent);
        return 2;
    }
    if (!run("/bin/mkdir", {"-m", mode, path})) {
        log_msg("createResourceDirectory: runCommandWithAuthority(/bin/mkdir %s %s %s) failed\n", "-m",
            mode.c_str(), path);
        return 3;
    }
    if (!run("/usr/sbin/chown", {user, path})) {
        log_msg("createResourceDirectory: runCommandWithAuthority(/usr/sbin/chown %s %s) failed\n",
            user.c_str(), path);
        return 4;
    }
    log_msg("createResourceDirectory: succeeded\n");
    return 0;
}

} // namespace

int32_t establishPrivsForSetup()
{
    // A session that is ending closes the boxes, and a screen reader presses Cancel also beneath them: asked
    // anew after each.
    if (gPromptsDeclined || (!isUserInGroup("admin") && !acceptsOtherAdministrator()) || gPromptsDeclined)
        return 1;
    installInfoDialog(gPrivilegeReason.toUtf8().constData());
    return !gPromptsDeclined && createAuthority(&gMacAuthorizationRef) ? 0 : 1;
}

int32_t fixupDirectory(const char *path)
{
    if (!gSystemScope)
        return 0;
    struct stat status;
    if (stat(path, &status) != 0) {
        report("fixupDirectory: Unable to determine status of directory...\n    %s\n%s\n", path,
            strerror(errno));
        return 1;
    }
    if (!S_ISDIR(status.st_mode)) {
        report("fixupDirectory: %s is not a directory.\n", path);
        return 2;
    }
    bool groupChanged = false;
    bool modeChanged = false;
    if (const int32_t code = fixupGroup(path, status, groupChanged))
        return code;
    if (const int32_t code = fixupMode(path, status, modeChanged))
        return code;
    if (groupChanged || modeChanged)
        log_msg("fixupDirectory: succeeded\n");
    return 0;
}

int32_t createProductDirectory(const char *path)
{
    const gid_t adminGid = getGroupId("admin");
    if (mkdir(path, newFolderMode()) == 0) {
        log_msg("createProductDirectory: made dir %s w/o needing privs, checking for fixup\n", path);
        return fixupDirectory(path);
    }
    report("createProductDirectory: Unable to mkdir %s, %s\n", path, strerror(errno));
    if (!gSystemScope) {
        log_msg("createProductDirectory: gSystemScope = 0, user not privileged\n");
        return 3;
    }
    log_msg("createProductDirectory: trying to mkdir %s with trampoline\n", path);
    if (!haveAuthority())
        return 4;
    const std::string mode = octal(newFolderMode());
    if (!run("/bin/mkdir", {"-m", mode, path})) {
        log_msg("createProductDirectory: runCommandWithAuthority(/bin/mkdir %s %s %s) failed\n", "-m",
            mode.c_str(), path);
        return 1;
    }
    const std::string user = owner(adminGid);
    if (!run("/usr/sbin/chown", {user, path})) {
        log_msg("createProductDirectory: runCommandWithAuthority(/bin/usr/sbin/chown %s %s) failed\n",
            user.c_str(), path);
        return 2;
    }
    log_msg("createProductDirectory: succeeded\n");
    return 0;
}

int32_t createResourceDirectory(const char *parent, const char *name)
{
    const gid_t adminGid = getGroupId("admin");
    char path[4096];
    if (!joinPath(parent, name, path))
        return 1;
    if (mkdir(parent, newFolderMode()) == 0) {
        log_msg("createResourceDirectory: made dir %s w/o needing privs, checking for fixup\n", parent);
        fixupDirectory(parent);
        log_msg("createResourceDirectory: making dir %s w/o needing privs\n", path);
        return createProductDirectory(path);
    }
    report("createResourceDirectory: Unable to mkdir %s, %s\n", parent, strerror(errno));
    if (!gSystemScope) {
        log_msg("createResourceDirectory: gSystemScope = 0, user not privileged\n");
        return 5;
    }
    log_msg("createResourceDirectory: trying to mkdir %s with trampoline\n", parent);
    if (!haveAuthority())
        return 4;
    return createResourceDirectoryWithRights(parent, path, adminGid);
}

int32_t verifyResourceDirectory(const char *parent, const char *name)
{
    char path[4096];
    if (!joinPath(parent, name, path))
        return 1;
    struct stat status;
    if (stat(parent, &status) != 0) {
        if (errno == ENOENT) {
            log_msg("verifyResourceDirectory: %s does not exist, creating\n", parent);
            return createResourceDirectory(parent, name);
        }
        report("verifyResourceDirectory: Unable to determine status of file...\n    %s\n%s\n", parent,
            strerror(errno));
        return 1;
    }
    if (gSystemScope && (status.st_mode != 040775 || status.st_gid != gAdminGid))
        report("verifyResourceDirectory: \"%s\" exists and has owner %d group %d and mode %o\n", parent,
            static_cast<int>(status.st_uid), static_cast<int>(status.st_gid), status.st_mode);
    log_msg("verifyResourceDirectory: fixup of %s returned %d\n", parent, fixupDirectory(parent));

    if (stat(path, &status) == 0) {
        log_msg("verifyResourceDirectory: checking %s for fixup\n", path);
        return fixupDirectory(path);
    }
    if (errno == ENOENT) {
        log_msg("verifyResourceDirectory: %s does not exist, creating\n", path);
        return createProductDirectory(path);
    }
    report("verifyResourceDirectory: Unable to determine status of directory...\n    %s\n%s\n", path,
        strerror(errno));
    return 1;
}
