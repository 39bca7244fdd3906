#include "PropertyListFile.h"

#include "platform/Descriptor.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <iconv.h>
#include <sys/stat.h>

namespace {

PropertyListFile noList(const std::string &problem, bool isMissing = false)
{
    return {nullptr, problem, isMissing};
}

PropertyListFile unreadable()
{
    return noList(
        errno == ELOOP ? "is a symbolic link" : std::string("can't be read: ") + std::strerror(errno),
        errno == ENOENT);
}

PropertyListFile parsed(const std::string &bytes)
{
    const auto length = static_cast<uint32_t>(bytes.size());
    plist_t root = nullptr;
    if (bytes.compare(0, 8, "bplist00") == 0)
        plist_from_bin(bytes.data(), length, &root);
    else if (isUtf8(bytes))
        plist_from_xml(bytes.data(), length, &root);

    PropertyListFile file{PropertyList(root), {}};
    return root && plist_get_node_type(root) == PLIST_DICT ? std::move(file)
                                                           : noList("is not a property list");
}

} // namespace

PropertyListFile readPropertyListFile(const std::string &path, int openFlags)
{
    // Without O_NONBLOCK a FIFO would block.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | openFlags));
    struct stat status { };
    if (!file || fstat(file.get(), &status) != 0)
        return unreadable();
    if (!S_ISREG(status.st_mode))
        return noList("is not a regular file");

    std::string bytes(largestPropertyList + 1, '\0');
    size_t length = 0;
    ssize_t count = 0;
    while ((count = read(file.get(), &bytes[length], bytes.size() - length)) > 0)
        length += static_cast<size_t>(count);
    if (count < 0)
        return unreadable();
    if (length > largestPropertyList)
        return noList("is too large for a property list");
    // A loss of power can leave an empty file, which holds no more than a missing one.
    if (length == 0)
        return noList("is empty", true);
    bytes.resize(length);
    return parsed(bytes);
}

bool isUtf8(const std::string &bytes)
{
    // UTF-16 can't express what UTF-8 must not hold, and takes at most twice the room.
    const iconv_t converter = iconv_open("UTF-16LE", "UTF-8");
    if (reinterpret_cast<intptr_t>(converter) == -1)
        return false;
    std::string converted(2 * bytes.size(), '\0');
    char *in = const_cast<char *>(bytes.data());
    char *out = converted.data();
    size_t left = bytes.size();
    size_t room = converted.size();
    const bool isValid = iconv(converter, &in, &left, &out, &room) != static_cast<size_t>(-1);
    iconv_close(converter);
    return isValid;
}
