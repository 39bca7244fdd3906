#include "MountedDevice.h"

#include <cstdio>

#include <sys/mount.h>
#include <sys/param.h>

bool mountedDevice(const char *path, char (&name)[MountedDeviceNameSize])
{
    name[0] = '\0';
    struct statfs status;
    if (statfs(path, &status) != 0)
        return false;
    std::snprintf(name, sizeof name, "%s", status.f_mntfromname);
    return name[0] != '\0';
}
