#pragma once

/// Room for a device name with its terminating NUL, in bytes.
constexpr int MountedDeviceNameSize = 1024;

/// Writes the name of the mounted device that holds `path` (UTF-8) to `name`. The names of two paths are
/// equal when a file at the one can be renamed into the folder at the other. Returns false, with `name`
/// empty, when it can't be found, for instance because nothing exists at `path`. Any thread.
bool mountedDevice(const char *path, char (&name)[MountedDeviceNameSize]);
