#include "PropertyListWriter.h"

#include "platform/Descriptor.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>

namespace {

std::string systemFailure(const std::string &path, const char *step)
{
    return path + ": can't " + step + ": " + std::strerror(errno);
}

bool writeAll(const Descriptor &file, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = write(file.get(), bytes.data(), bytes.size());
        if (count < 0)
            return false;
        bytes.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

/// Writes the bytes beside the file, synchronised, and puts them in its place.
std::string replace(const std::string &path, std::string_view bytes)
{
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    std::string beside = folder + ".defaults-XXXXXX";
    const Descriptor file(mkostemp(beside.data(), O_CLOEXEC));
    if (!file)
        return systemFailure(path, "make a new file beside it");
    if (!writeAll(file, bytes) || fchmod(file.get(), 0644) != 0 || fsync(file.get()) != 0
        || rename(beside.c_str(), path.c_str()) != 0) {
        const std::string failure = systemFailure(path, "replace it");
        unlink(beside.c_str());
        return failure;
    }
    fsync(Descriptor(open((folder + ".").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)).get());
    return {};
}

std::string save(const std::string &path, const PropertyList &list)
{
    char *bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(list.get(), &bytes, &length);
    const std::unique_ptr<char, decltype(&plist_to_bin_free)> owner(bytes, plist_to_bin_free);
    return bytes ? replace(path, {bytes, length}) : path + ": can't put the property list into bytes";
}

} // namespace

std::string writeString(const std::string &path, const std::string &key, const std::string &value)
{
    std::error_code failure;
    const auto folder = std::filesystem::path(path).parent_path();
    if (!folder.empty() && (std::filesystem::create_directories(folder, failure), failure))
        return path + ": can't make its folder: " + failure.message();
    PropertyListFile file = readPropertyListFile(path, O_NOFOLLOW);
    if (file.isMissing)
        file.list.reset(plist_new_dict());
    if (!file.list)
        return path + " " + file.problem + "; it stays as it is";
    plist_dict_set_item(file.list.get(), key.c_str(), plist_new_string(value.c_str()));
    return save(path, file.list);
}

std::string deleteKey(const std::string &path, const std::string &key)
{
    const PropertyListFile file = readPropertyListFile(path, O_NOFOLLOW);
    if (!file.list)
        return path + " " + file.problem + "; it stays as it is";
    if (!plist_dict_get_item(file.list.get(), key.c_str()))
        return path + " has no key " + key;
    plist_dict_remove_item(file.list.get(), key.c_str());
    return save(path, file.list);
}
