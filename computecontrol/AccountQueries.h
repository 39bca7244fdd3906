#pragma once

#include <QString>

#include <sys/types.h>

/// Questions to the system's account database. Main thread only, since they write to the log.

/// The account name of a user id; empty, with a line on standard error, when it can't be found.
QString getUserName(uid_t user);

/// The id of a group, all bits set when it can't be found.
gid_t getGroupId(const char *group);

/// Whether the process may give its own files the group: true for its members and for the superuser; false
/// also when /tmp takes no file to try it on.
bool isUserInGroup(const char *group);
