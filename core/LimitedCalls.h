#pragma once

#include "MountedDevice.h"

#include <string>

#include <sys/stat.h>
#include <sys/types.h>

/// The system's calls of these names for the main thread, which a disk that no longer answers would hold up:
/// each runs on a thread of its own. Silence for 5 seconds, or until the process is asked to end, is a
/// failure with errno ETIMEDOUT; the thread is then left behind.
namespace limited {

int access(const std::string &path, int mode);
int chmod(const std::string &path, mode_t mode);
int chown(const std::string &path, uid_t user, gid_t group);
int lstat(const std::string &path, struct stat &status);
int mkdir(const std::string &path, mode_t mode);
int stat(const std::string &path, struct stat &status);

bool mountedDevice(const std::string &path, char (&name)[MountedDeviceNameSize]);

} // namespace limited
