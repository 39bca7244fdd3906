#pragma once

#include <QString>

#include <sys/types.h>

/// Questions to the system's account database. They keep no state; main thread only, since they write to the
/// log.

/// The account name of a user id, empty when there is none.
QString getUserName(uid_t user);

/// The id of a group, all bits set when it can't be found.
gid_t getGroupId(const char *group);

/// Whether the process may give a file of its own the group: true for its members and for the superuser.
bool isUserInGroup(const char *group);
