#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Writes the path of the process's executable with a NUL. Returns its length, or 0 when it can't be found or
/// doesn't fit.
int proc_pidpath(int pid, void *buffer, uint32_t buffersize);

#ifdef __cplusplus
}
#endif
