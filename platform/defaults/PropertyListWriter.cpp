#include "PropertyListWriter.h"

#include "platform/Descriptor.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/random.h>
#include <sys/stat.h>

namespace {

std::string systemFailure(const std::string &path, const char *step)
{
    return path + ": can't " + step + ": " + std::strerror(errno);
}

/// The file's folder, held open, so that all steps happen in the same one.
struct Place {
    explicit Place(const std::string &filePath)
        : path(filePath)
        , name(path.substr(path.rfind('/') + 1))
        , folder(open(path.substr(0, path.size() - name.size()).append(".").c_str(),
              O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
    }

    const std::string path;
    const std::string name;
    const Descriptor folder;
};

/// A file beside the one to be replaced, removed unless it took its place.
class Replacement {
public:
    explicit Replacement(const Place &target)
        : place(target)
    {
    }
    ~Replacement()
    {
        if (file)
            unlinkat(place.folder.get(), name.c_str(), 0);
    }

    std::string write(const char *bytes, size_t length)
    {
        if (!create())
            return systemFailure(place.path, "make a new file beside it");
        if (!writeAll(bytes, length) || fchmod(file.get(), 0644) != 0 || fsync(file.get()) != 0)
            return systemFailure(place.path, "write the new file");
        if (renameat(place.folder.get(), name.c_str(), place.folder.get(), place.name.c_str()) != 0)
            return systemFailure(place.path, "replace it");
        file.reset();
        fsync(place.folder.get());
        return {};
    }

private:
    bool create()
    {
        unsigned long long number = 0;
        if (getrandom(&number, sizeof number, 0) != sizeof number)
            return false;
        name = ".defaults-" + std::to_string(number);
        file = Descriptor(openat(
            place.folder.get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        return bool(file);
    }

    bool writeAll(const char *bytes, size_t length)
    {
        while (length > 0) {
            const ssize_t count = ::write(file.get(), bytes, length);
            if (count < 0 && errno != EINTR)
                return false;
            const size_t written = count > 0 ? static_cast<size_t>(count) : 0;
            bytes += written;
            length -= written;
        }
        return true;
    }

    const Place &place;
    std::string name;
    Descriptor file;
};

std::string save(const Place &place, const PropertyList &list)
{
    char *bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(list.get(), &bytes, &length);
    const std::unique_ptr<char, decltype(&plist_to_bin_free)> owner(bytes, plist_to_bin_free);
    return bytes ? Replacement(place).write(bytes, length)
                 : place.path + ": can't put the property list into bytes";
}

} // namespace

std::string writeString(const std::string &path, const std::string &key, const std::string &value)
{
    std::error_code failure;
    const auto folder = std::filesystem::path(path).parent_path();
    if (!folder.empty() && (std::filesystem::create_directories(folder, failure), failure))
        return path + ": can't make its folder: " + failure.message();
    const Place place(path);
    if (!place.folder)
        return systemFailure(path, "open its folder");
    PropertyListFile file = readPropertyListFile(place.name.c_str(), place.folder.get());
    if (file.problem == PropertyListFile::Missing) {
        file.list.reset(plist_new_dict());
    } else if (file.problem != PropertyListFile::None) {
        return path + " " + file.reason + "; it stays as it is";
    }
    plist_dict_set_item(file.list.get(), key.c_str(), plist_new_string(value.c_str()));
    return save(place, file.list);
}

std::string deleteKey(const std::string &path, const std::string &key)
{
    const Place place(path);
    if (!place.folder)
        return systemFailure(path, "open its folder");
    const PropertyListFile file = readPropertyListFile(place.name.c_str(), place.folder.get());
    if (file.problem != PropertyListFile::None)
        return path + " " + file.reason + "; it stays as it is";
    if (!plist_dict_get_item(file.list.get(), key.c_str()))
        return path + " has no key " + key;
    plist_dict_remove_item(file.list.get(), key.c_str());
    return save(place, file.list);
}
