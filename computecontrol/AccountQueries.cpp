#include "AccountQueries.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include "MacXUtils/Logging.h"

namespace {

/// Runs a reentrant lookup with a buffer that doubles while it is too small, ten calls at most. True when it
/// found a record; calls `use` with it while its buffer is alive.
template <typename Record, typename LookUp, typename Use> bool lookUp(int sizeName, LookUp call, Use use)
{
    std::vector<char> buffer(static_cast<size_t>(std::max(sysconf(sizeName), 1024L)));
    for (int calls = 1;; ++calls) {
        Record record;
        Record *found = nullptr;
        const int error = call(&record, buffer.data(), buffer.size(), &found);
        if (error == 0 && found) {
            use(*found);
            return true;
        }
        if (error != ERANGE || calls == 10)
            return false;
        buffer = std::vector<char>(buffer.size() * 2);
    }
}

} // namespace

QString getUserName(uid_t user)
{
    QString name;
    const auto call = [user](auto... rest) { return getpwuid_r(user, rest...); };
    const auto use = [&name](const struct passwd &record) { name = QString::fromUtf8(record.pw_name); };
    if (!lookUp<struct passwd>(_SC_GETPW_R_SIZE_MAX, call, use)) {
        std::fprintf(
            stderr, "System call 'getpwuid_r' failed with errno=%d\n    %s\n", errno, strerror(errno));
        std::fflush(stderr);
    }
    return name;
}

gid_t getGroupId(const char *group)
{
    gid_t id = static_cast<gid_t>(-1);
    const auto call = [group](auto... rest) { return getgrnam_r(group, rest...); };
    lookUp<struct group>(
        _SC_GETGR_R_SIZE_MAX, call, [&id](const struct group &record) { id = record.gr_gid; });
    return id;
}

bool isUserInGroup(const char *group)
{
    const int32_t id = static_cast<int32_t>(getGroupId(group));
    log_msg("isUserInGroup: getGroupId %s returned %d\n", group, id);
    if (id < 0)
        return false;

    // Only a member of a group, or the superuser, may give a file of its own that group.
    char name[] = "/tmp/zq_computecontrol.XXXXXX";
    const int descriptor = mkstemp(name);
    log_msg("isUserInGroup: mkstemp(%s) returned %d\n", name, descriptor);
    if (descriptor == -1)
        return false;
    const bool member = fchown(descriptor, static_cast<uid_t>(-1), static_cast<gid_t>(id)) == 0;
    if (member)
        log_msg("isUserInGroup: fchown succeeded\n");
    else
        log_msg("isUserInGroup: fchown(%d, -1, %d) returned -1\n\n%s\n", descriptor, id, strerror(errno));
    close(descriptor);
    unlink(name);
    return member;
}
