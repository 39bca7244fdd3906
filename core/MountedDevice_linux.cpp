#include "MountedDevice.h"

#include <cstdio>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

bool examine(const std::string &path, struct statx &status)
{
    return statx(AT_FDCWD, path.c_str(), 0, STATX_TYPE | STATX_MNT_ID, &status) == 0
        && (status.stx_mask & STATX_MNT_ID) != 0;
}

} // namespace

// The mount source alone isn't enough: every tmpfs is called "tmpfs", and the kernel refuses a rename between
// two mounts of one disk as well as between two subvolumes of one mount. So the name is the mount's id and
// the device number of the folder; a file's own device number can differ from its folder's on an overlay.
bool mountedDevice(const char *path, char (&name)[MountedDeviceNameSize])
{
    name[0] = '\0';
    struct statx status;
    if (!examine(path, status))
        return false;
    const auto mount = status.stx_mnt_id;
    if (!S_ISDIR(status.stx_mode)) {
        const std::string file = path;
        const size_t slash = file.rfind('/');
        const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash + 1);
        if (!examine(folder, status))
            return false;
    }
    std::snprintf(name, sizeof name, "%llu:%u:%u", static_cast<unsigned long long>(mount),
        status.stx_dev_major, status.stx_dev_minor);
    return true;
}
