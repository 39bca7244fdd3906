// Preloaded into the installer and its tools: fails the Nth call of one kind among all of them. FAILING_CALLS
// is "file:kind:N:errno"; the file holds the shared count. With the errno 0 the call never returns.

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <dirent.h>
#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using Count = std::atomic<int>;
/// Of the calls so far; negative until the installer has started.
Count *count = nullptr;
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
        mmap(nullptr, sizeof(Count), PROT_READ | PROT_WRITE, MAP_SHARED, static_cast<int>(descriptor), 0);
    syscall(SYS_close, descriptor);
    if (memory != MAP_FAILED)
        count = static_cast<Count *>(memory);
}

bool mustFail(const char *kind)
{
    if (!count || *count < 0 || strcmp(kind, chosenKind) != 0 || ++*count != chosenCall)
        return false;
    while (chosenError == 0)
        pause();
    errno = chosenError;
    return true;
}

template <typename Target> Target *pointer(long argument)
{
    Target *target = nullptr;
    memcpy(&target, &argument, sizeof argument);
    return target;
}

std::string placeOf(int descriptor)
{
    char name[32];
    char target[256];
    snprintf(name, sizeof name, "/proc/self/fd/%d", descriptor);
    const ssize_t length = readlink(name, target, sizeof target);
    return std::string(target, length > 0 ? static_cast<size_t>(length) : 0);
}

/// Writing to the pipes and events that hold a process together doesn't fail on a real system.
bool isFile(int descriptor)
{
    return placeOf(descriptor)[0] == '/';
}

/// Programs list folders of their own, too.
bool isSource(int descriptor)
{
    return placeOf(descriptor) == "/opt/Lumetra";
}

} // namespace

// Of whatever type the arguments are, all are integers or pointers, which the machine passes alike; none of
// these calls has more than seven. The labels keep clear of the headers' own declarations.
#define FAILING_IF(kind, name, condition, failure)                                                           \
    extern "C" long failing_##name(long a, long b, long c, long d, long e, long f, long g) asm(#name);       \
    long failing_##name(long a, long b, long c, long d, long e, long f, long g)                              \
    {                                                                                                        \
        if ((condition) && mustFail(kind))                                                                   \
            return failure;                                                                                  \
        static const auto real = reinterpret_cast<decltype(&failing_##name)>(dlsym(RTLD_NEXT, #name));       \
        return real(a, b, c, d, e, f, g);                                                                    \
    }
#define FAILING(kind, name) FAILING_IF(kind, name, true, -1)

// The names of each that an installation calls.
FAILING("open", open)
FAILING("open", open64)
FAILING("open", openat)
FAILING_IF("open", opendir, true, 0)
FAILING_IF("list", readdir, isSource(dirfd(pointer<DIR>(a))), 0)
FAILING_IF("access", access, strstr(pointer<char>(a), "Lumetra"), -1)
FAILING("mkdir", mkdir)
FAILING("stat", stat)
FAILING("stat", fstat)
FAILING("stat", fstat64)
FAILING("stat", fstatat)
FAILING("stat", statx)
FAILING("chown", chown)
FAILING("chown", fchown)
FAILING("chmod", chmod)
FAILING("rename", renameat2)
FAILING("fork", fork)
// Qt makes its processes with the bare system call.
FAILING_IF("fork", syscall, a == SYS_clone, -1)
FAILING_IF("fork", posix_spawn, true, errno)
FAILING_IF("write", write, isFile(static_cast<int>(a)), -1)
FAILING_IF("write", copy_file_range, isFile(static_cast<int>(c)), -1)
