#pragma once

#include "MountedDevice.h"

#include <string>

#include <sys/stat.h>
#include <sys/types.h>

/// System calls for the main thread, which a disk that no longer answers would block for good. Each runs on a
/// thread of its own. If it takes 5 seconds, or the process is asked to end, it fails with errno ETIMEDOUT
/// and leaves the thread behind, where it may still succeed. Where the system has no thread left, it runs on
/// the caller's, without the limit.
namespace limited {

int access(const std::string &path, int mode);
int chmod(const std::string &path, mode_t mode);
int chown(const std::string &path, uid_t user, gid_t group);
int lstat(const std::string &path, struct stat &status);
int mkdir(const std::string &path, mode_t mode);
int stat(const std::string &path, struct stat &status);
int unlink(const std::string &path);

bool mountedDevice(const std::string &path, char (&name)[MountedDeviceNameSize]);

} // namespace limited
