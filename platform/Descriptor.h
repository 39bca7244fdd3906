#pragma once

#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

/// Owns a file descriptor.
class Descriptor {
public:
    explicit Descriptor(int number = -1)
        : descriptor(number)
    {
    }
    Descriptor(Descriptor &&other) noexcept
        : descriptor(other.release())
    {
    }
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        std::swap(descriptor, other.descriptor);
        return *this;
    }
    ~Descriptor() { reset(); }

    int get() const { return descriptor; }
    explicit operator bool() const { return descriptor >= 0; }
    int release() { return std::exchange(descriptor, -1); }
    void reset()
    {
        if (descriptor >= 0)
            close(release());
    }

private:
    int descriptor;
};

/// A pidfd, which becomes readable when the process ends; empty when there is no such process.
inline Descriptor endOf(pid_t process)
{
    return Descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
}
