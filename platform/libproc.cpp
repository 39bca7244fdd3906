#include <libproc.h>

#include <string>
#include <unistd.h>

int proc_pidpath(int pid, void *buffer, uint32_t buffersize)
{
    if (buffersize == 0)
        return 0;
    const std::string link = "/proc/" + std::to_string(pid) + "/exe";
    char *path = static_cast<char *>(buffer);
    const ssize_t length = readlink(link.c_str(), path, buffersize);
    if (length <= 0 || length >= static_cast<ssize_t>(buffersize))
        return 0;
    path[length] = '\0';
    return static_cast<int>(length);
}
