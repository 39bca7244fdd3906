// Preloaded into the installer and its tools: fails the Nth call of one kind among all of them. FAILING_CALLS
// is "file:kind:N:errno"; the file holds the shared count, which begins when the installer arms it.

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct Shared {
    std::atomic<int> armed;
    std::atomic<int> count;
};
Shared *shared = nullptr;
char chosenKind[16];
int chosenCall = 0;
int chosenError = 0;

__attribute__((constructor)) void load()
{
    char file[256];
    const char *wish = getenv("FAILING_CALLS");
    if (!wish || sscanf(wish, "%255[^:]:%15[^:]:%d:%d", file, chosenKind, &chosenCall, &chosenError) != 4)
        return;
    const long descriptor = syscall(SYS_open, file, 2 /* O_RDWR */, 0);
    void *memory =
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, static_cast<int>(descriptor), 0);
    syscall(SYS_close, descriptor);
    if (memory != MAP_FAILED)
        shared = static_cast<Shared *>(memory);
}

bool mustFail(const char *kind)
{
    if (!shared || !shared->armed || strcmp(kind, chosenKind) != 0 || ++shared->count != chosenCall)
        return false;
    errno = chosenError;
    return true;
}

/// Writing to the pipes and events that hold a process together doesn't fail on a real system.
bool isFile(int descriptor)
{
    char name[32];
    char target = 0;
    snprintf(name, sizeof name, "/proc/self/fd/%d", descriptor);
    return readlink(name, &target, 1) == 1 && target == '/';
}

} // namespace

extern "C" void armFailingCalls()
{
    if (shared)
        shared->armed = 1;
}

#define FAILING_IF(kind, condition, failure, type, name, parameters, ...)                                    \
    extern "C" type name parameters                                                                          \
    {                                                                                                        \
        if ((condition) && mustFail(kind))                                                                   \
            return failure;                                                                                  \
        static const auto real = reinterpret_cast<type(*) parameters>(dlsym(RTLD_NEXT, #name));              \
        return real(__VA_ARGS__);                                                                            \
    }
#define FAILING(kind, name, parameters, ...) FAILING_IF(kind, true, -1, int, name, parameters, __VA_ARGS__)

// The aliases of each that the C library, the toolkit and the tools use. No header declares them here: their
// optional arguments are passed on as if they were given.
FAILING("open", open, (const char *path, int flags, unsigned mode), path, flags, mode)
FAILING("open", open64, (const char *path, int flags, unsigned mode), path, flags, mode)
FAILING("open", openat, (int folder, const char *path, int flags, unsigned mode), folder, path, flags, mode)
FAILING("open", openat64, (int folder, const char *path, int flags, unsigned mode), folder, path, flags, mode)
FAILING_IF("open", true, nullptr, void *, opendir, (const char *path), path)
FAILING("mkdir", mkdir, (const char *path, unsigned mode), path, mode)
FAILING("mkdir", mkdirat, (int folder, const char *path, unsigned mode), folder, path, mode)
FAILING("stat", stat, (const char *path, void *status), path, status)
FAILING("stat", stat64, (const char *path, void *status), path, status)
FAILING("stat", lstat, (const char *path, void *status), path, status)
FAILING("stat", lstat64, (const char *path, void *status), path, status)
FAILING("stat", fstat, (int file, void *status), file, status)
FAILING("stat", fstat64, (int file, void *status), file, status)
FAILING("stat", fstatat, (int folder, const char *path, void *status, int flags), folder, path, status, flags)
FAILING("stat", statx, (int folder, const char *path, int flags, unsigned mask, void *status), folder, path,
    flags, mask, status)
FAILING("chown", chown, (const char *path, uid_t user, gid_t group), path, user, group)
FAILING("chown", fchown, (int file, uid_t user, gid_t group), file, user, group)
FAILING("chown", fchownat, (int folder, const char *path, uid_t user, gid_t group, int flags), folder, path,
    user, group, flags)
FAILING("chmod", chmod, (const char *path, unsigned mode), path, mode)
FAILING("chmod", fchmod, (int file, unsigned mode), file, mode)
FAILING(
    "chmod", fchmodat, (int folder, const char *path, unsigned mode, int flags), folder, path, mode, flags)
FAILING("rename", renameat2, (int from, const char *old, int to, const char *path, unsigned flags), from, old,
    to, path, flags)
FAILING("rename", renameat, (int from, const char *old, int to, const char *path), from, old, to, path)
FAILING_IF("fork", true, -1, pid_t, fork, (), )
// The toolkit makes its processes with the bare call.
extern "C" long syscall(long number, ...)
{
    if (number == SYS_clone && mustFail("fork"))
        return -1;
    va_list list;
    va_start(list, number);
    long a[6];
    for (long &each : a)
        each = va_arg(list, long);
    va_end(list);
    static const auto real = reinterpret_cast<long (*)(long, ...)>(dlsym(RTLD_NEXT, "syscall"));
    return real(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}
FAILING_IF("fork", true, errno, int, posix_spawn,
    (pid_t * child, const char *path, const posix_spawn_file_actions_t *actions,
        const posix_spawnattr_t *attributes, char *const arguments[], char *const environment[]),
    child, path, actions, attributes, arguments, environment)
FAILING_IF(
    "write", isFile(file), -1, ssize_t, write, (int file, const void *bytes, size_t size), file, bytes, size)
FAILING_IF("write", isFile(to), -1, ssize_t, copy_file_range,
    (int from, long *fromAt, int to, long *toAt, size_t size, unsigned flags), from, fromAt, to, toAt, size,
    flags)
