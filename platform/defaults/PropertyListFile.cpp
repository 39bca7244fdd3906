#include "PropertyListFile.h"

#include "Utf8.h"
#include "platform/Descriptor.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

PropertyListFile problem(PropertyListFile::Problem what, const std::string &reason)
{
    PropertyListFile file;
    file.problem = what;
    file.reason = reason;
    return file;
}

PropertyListFile systemProblem()
{
    if (errno == ELOOP)
        return problem(PropertyListFile::Unreadable, "is a symbolic link");
    return problem(errno == ENOENT ? PropertyListFile::Missing : PropertyListFile::Unreadable,
        std::string("can't be read: ") + std::strerror(errno));
}

PropertyListFile parsed(const std::string &bytes)
{
    const auto length = static_cast<uint32_t>(bytes.size());
    plist_t root = nullptr;
    if (bytes.compare(0, 8, "bplist00") == 0)
        plist_from_bin(bytes.data(), length, &root);
    else if (isUtf8(bytes))
        plist_from_xml(bytes.data(), length, &root);

    PropertyListFile file;
    file.list.reset(root);
    if (!root || plist_get_node_type(root) != PLIST_DICT)
        return problem(PropertyListFile::NotAPropertyList, "is not a property list");
    return file;
}

PropertyListFile readFrom(int descriptor)
{
    struct stat status { };
    if (fstat(descriptor, &status) != 0)
        return systemProblem();
    if (!S_ISREG(status.st_mode))
        return problem(PropertyListFile::Unreadable, "is not a regular file");

    std::string bytes(largestPropertyList + 1, '\0');
    size_t length = 0;
    while (length < bytes.size()) {
        const ssize_t count = read(descriptor, bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return systemProblem();
        if (count == 0)
            break;
        length += static_cast<size_t>(count);
    }
    if (length > largestPropertyList)
        return problem(PropertyListFile::Unreadable, "is too large for a property list");
    // A loss of power leaves an empty file, which holds no more than none.
    if (length == 0)
        return problem(PropertyListFile::Missing, "is empty");
    bytes.resize(length);
    return parsed(bytes);
}

PropertyListFile openAndRead(const char *path, int folder, int extraFlags)
{
    // Without O_NONBLOCK a FIFO would be waited for.
    const Descriptor descriptor(
        openat(folder, path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | extraFlags));
    return descriptor ? readFrom(descriptor.get()) : systemProblem();
}

} // namespace

PropertyListFile readPropertyListFile(const char *path, int folder)
{
    return openAndRead(path, folder, O_NOFOLLOW);
}

PropertyListFile readPropertyListFile(const char *path)
{
    return openAndRead(path, AT_FDCWD, 0);
}
