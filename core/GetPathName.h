#pragma once

#include <cstdint>
#include <string>

/// The application bundle's own folder as an absolute path in UTF-8, without a trailing slash; empty when it
/// can't be found or takes more than 4095 bytes. Asks the system at every call.
std::string GetInstallPath();

/// Copies the bundle's path and a terminating NUL into `buffer` of `bufferSize` bytes, cutting the path where
/// it doesn't fit, and sets `length` to the number of bytes copied without the NUL. With a `bufferSize` below
/// 1, sets `length` to 0 and leaves the buffer alone.
void GETINSTALLPATH(char *buffer, int32_t bufferSize, int32_t *length);
