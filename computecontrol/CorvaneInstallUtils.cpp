#include "CorvaneInstallUtils.h"

#include "PrivilegedStep.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "MacXUtils/Logging.h"
#include "core/LimitedCalls.h"
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

/// Steps that need the group "admin" are left out where there is none.
bool isKnown(gid_t group)
{
    return group != static_cast<gid_t>(-1);
}

/// "user:group" of the installing user and the group, both numeric; without the group where it is unknown.
std::string owner(gid_t group)
{
    const std::string user = std::to_string(getuid());
    return isKnown(group) ? user + ':' + std::to_string(group) : user;
}

/// Joins parent and name in `path`; false when that takes more than 4095 bytes.
bool joinPath(const char *parent, const char *name, char (&path)[4096])
{
    return std::snprintf(path, sizeof path, "%s/%s", parent, name) < static_cast<int>(sizeof path);
}

/// One thing that fixupDirectory changes, by a call as the user or by a tool as the superuser, with its
/// reports and its codes for failures.
struct Repair {
    bool (*change)(const char *path);
    const char *tool;
    std::string argument;
    const char *attempt;
    const char *failure;
    int32_t failureCode;
    const char *toolFailure;
    int32_t toolFailureCode;
};

/// Returns fixupDirectory's code.
int32_t apply(const Repair &repair, const char *path)
{
    if (repair.change(path))
        return 0;
    const int error = errno;
    if (!refusedForLackOfRights(error)) {
        report("%s", filled(repair.failure, {path, strerror(error)}).c_str());
        return repair.failureCode;
    }
    log_msg("%s", filled(repair.attempt, {path}).c_str());
    if (!haveAuthority())
        return 4;
    if (runPrivileged(repair.tool, {repair.argument, path}))
        return 0;
    report("%s", filled(repair.toolFailure, {path}).c_str());
    return repair.toolFailureCode;
}

int32_t fixupGroup(const char *path)
{
    return apply(
        {[](const char *folder) { return limited::chown(folder, static_cast<uid_t>(-1), gAdminGid) == 0; },
            "/usr/bin/chgrp", std::to_string(static_cast<int>(gAdminGid)),
            "fixupDirectory: trying to set chown group-admin perms on %s\n",
            "fixupDirectory: Unable to change group to 'admin' on directory...\n    %s\n%s\n", 4,
            "fixupDirectory: Unable to change group to 'admin' on directory %s\n", 3},
        path);
}

int32_t fixupMode(const char *path)
{
    return apply({[](const char *folder) { return limited::chmod(folder, 0775) == 0; }, "/bin/chmod", "0775",
                     "fixupDirectory: trying to set chmod group-admin perms on %s\n",
                     "fixupDirectory: Unable to add group write permission on directory...\n    %s\n%s\n", 6,
                     "fixupDirectory: Unable to add group write permission on directory %s\n", 5},
        path);
}

/// The privileged steps of createResourceDirectory, up to the first that fails. Returns its code.
int32_t createResourceDirectoryWithRights(const char *parent, const char *path, gid_t adminGid)
{
    const std::string mode = octal(newFolderMode());
    if (!runOrLog("/bin/mkdir", {"-m", mode, parent},
            "createResourceDirectory: runCommandWithAuthority(/bin/mkdir %s %s %s) failed\n"))
        return 1;
    if (isKnown(adminGid)
        && !runOrLog("/usr/bin/chgrp", {std::to_string(static_cast<int>(adminGid)), parent},
            "createResourceDirectory: runCommandWithAuthority(/usr/bin/chgrp %s %s) failed\n"))
        return 2;
    if (!runOrLog("/bin/mkdir", {"-m", mode, path},
            "createResourceDirectory: runCommandWithAuthority(/bin/mkdir %s %s %s) failed\n"))
        return 3;
    if (!runOrLog("/usr/sbin/chown", {owner(adminGid), path},
            "createResourceDirectory: runCommandWithAuthority(/usr/sbin/chown %s %s) failed\n"))
        return 4;
    log_msg("createResourceDirectory: succeeded\n");
    return 0;
}

} // namespace

int32_t establishPrivsForSetup()
{
    // Checked again after each box: an ending session closes it, and a screen reader can press Cancel behind
    // it.
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
    if (limited::stat(path, status) != 0) {
        report("fixupDirectory: Unable to determine status of directory...\n    %s\n%s\n", path,
            strerror(errno));
        return 1;
    }
    if (!S_ISDIR(status.st_mode)) {
        report("fixupDirectory: %s is not a directory.\n", path);
        return 2;
    }
    const bool otherGroup = isKnown(gAdminGid) && status.st_gid != gAdminGid;
    const bool closedToGroup = (status.st_mode & S_IWGRP) == 0;
    if (const int32_t code = otherGroup ? fixupGroup(path) : 0)
        return code;
    if (const int32_t code = closedToGroup ? fixupMode(path) : 0)
        return code;
    if (otherGroup || closedToGroup)
        log_msg("fixupDirectory: succeeded\n");
    return 0;
}

int32_t createProductDirectory(const char *path)
{
    const gid_t adminGid = getGroupId("admin");
    if (limited::mkdir(path, newFolderMode()) == 0) {
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
    if (!runOrLog("/bin/mkdir", {"-m", octal(newFolderMode()), path},
            "createProductDirectory: runCommandWithAuthority(/bin/mkdir %s %s %s) failed\n"))
        return 1;
    if (!runOrLog("/usr/sbin/chown", {owner(adminGid), path},
            "createProductDirectory: runCommandWithAuthority(/bin/usr/sbin/chown %s %s) failed\n"))
        return 2;
    log_msg("createProductDirectory: succeeded\n");
    return 0;
}

int32_t createResourceDirectory(const char *parent, const char *name)
{
    const gid_t adminGid = getGroupId("admin");
    char path[4096];
    if (!joinPath(parent, name, path))
        return 1;
    const OneAnswer forBothFolders;
    if (limited::mkdir(parent, newFolderMode()) == 0) {
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
    const OneAnswer forBothFolders;
    struct stat status;
    if (limited::stat(parent, status) != 0) {
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

    if (limited::stat(path, status) == 0) {
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

bool createPickedDirectory(const char *path)
{
    struct stat status;
    const bool exists = limited::lstat(path, status) == 0;
    // Where the user can't even look, a folder of root's would stay behind.
    if ((!exists && errno != ENOENT) || !haveAuthority())
        return false;
    if (!runOrLog("/bin/mkdir", {"-m", octal(0755), path},
            "doCopy: runCommandWithAuthority(/bin/mkdir %s %s %s) failed\n")
        || belongsToStranger(path))
        return false;
    // mkdir ran as root, but cp and mv run as the user, so the user gets a new folder. One that existed keeps
    // its owner, and -h spares the target of a link that took its place.
    return exists
        || runOrLog("/usr/sbin/chown", {"-h", owner(gAdminGid), path},
            "doCopy: runCommandWithAuthority(/usr/sbin/chown %s %s %s) failed\n");
}

bool canBeFilled(const char *path)
{
    struct stat status;
    return limited::stat(path, status) == 0 && S_ISDIR(status.st_mode)
        && limited::access(path, W_OK | X_OK) == 0;
}

bool belongsToStranger(const char *path)
{
    struct stat status;
    return limited::lstat(path, status) == 0 && status.st_uid != getuid() && status.st_uid != 0;
}
