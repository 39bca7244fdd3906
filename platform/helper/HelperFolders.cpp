#include "HelperFolders.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

namespace {

constexpr int openedFolder = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
/// As many links as the kernel follows.
constexpr int mostLinks = 40;
/// An installation makes two folders.
constexpr int mostFolders = 8;

struct stat statusOf(const Descriptor &descriptor)
{
    struct stat status { };
    if (fstat(descriptor.get(), &status) != 0)
        status.st_uid = static_cast<uid_t>(-1);
    return status;
}

/// The target of the link in the folder; empty when there is none, or when any but root could have put it
/// there, by its rights to the link or by those to the folder.
std::string targetOfRootsLink(const Descriptor &folder, const std::string &name)
{
    const Descriptor link(openat(folder.get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    const struct stat way = statusOf(folder);
    if (!link || statusOf(link).st_uid != 0 || way.st_uid != 0 || way.st_mode & (S_IWGRP | S_IWOTH))
        return {};
    char target[PATH_MAX];
    const ssize_t length = readlinkat(link.get(), "", target, sizeof target);
    return length > 0 ? std::string(target, static_cast<size_t>(length)) : std::string();
}

/// Opens the folder at `path`, one name after the other. Empty without a refusal when a name is missing.
Descriptor walk(std::string path, std::string &refusal)
{
    const auto root = [] { return Descriptor(open("/", openedFolder)); };
    Descriptor folder = root();
    int links = 0;
    while (folder && !path.empty()) {
        const size_t end = std::min(path.find('/'), path.size());
        const std::string name = path.substr(0, end);
        path.erase(0, end + 1);
        if (name.empty())
            continue;
        Descriptor next(openat(folder.get(), name.c_str(), openedFolder));
        const int failure = errno;
        if (!next && failure == ENOTDIR) {
            const std::string target = targetOfRootsLink(folder, name);
            if (target.empty() || ++links > mostLinks) {
                refusal = name + ", on the way to it, is no folder, and no link that only root can have made";
                return Descriptor();
            }
            path.insert(0, target + "/");
            if (target[0] == '/')
                folder = root();
            continue;
        }
        if (!next && failure != ENOENT)
            refusal = name + ", on the way to it: " + std::strerror(failure);
        folder = std::move(next);
    }
    return folder;
}

/// Where the folder lies now, with no link on the way.
std::string realPath(const Descriptor &folder)
{
    std::error_code failure;
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(folder.get()), failure).string();
}

} // namespace

Descriptor HelperFolders::open(
    const std::string &path, unsigned kinds, uid_t caller, std::string &refusal) const
{
    const size_t slash = path.rfind('/');
    Descriptor parent = walk(path.substr(0, slash), refusal);
    if (!parent)
        return parent;
    if (kinds & New) {
        refusal = madeCount < mostFolders ? parentRefusal(realPath(parent))
                                          : "more folders than an installation makes";
        return parent;
    }
    Descriptor folder(openat(parent.get(), path.c_str() + slash + 1, openedFolder));
    if (!folder) {
        refusal = errno == ENOENT ? "" : std::strerror(errno);
        return folder;
    }
    const bool isAllowed = (kinds & Made && isMade(folder)) || (kinds & Shared && isShared(path))
        || (kinds & Own && statusOf(folder).st_uid == caller);
    if (!isAllowed)
        refusal = "the folder is none of the installation's";
    return folder;
}

void HelperFolders::remember(const Descriptor &parent, const std::string &name)
{
    ++madeCount;
    Descriptor folder(openat(parent.get(), name.c_str(), openedFolder));
    std::error_code failure;
    const bool isEmpty = std::filesystem::is_empty("/proc/self/fd/" + std::to_string(folder.get()), failure);
    const struct stat status = statusOf(folder);
    // A parent with the set-group-ID bit, and any on some disks, gives its group to what is made in it.
    const bool isOfGroup = status.st_gid == 0 || status.st_gid == statusOf(parent).st_gid;
    if (isEmpty && status.st_uid == 0 && isOfGroup)
        made.push_back(std::move(folder));
}

bool HelperFolders::isMade(const Descriptor &folder) const
{
    const struct stat status = statusOf(folder);
    return std::any_of(made.begin(), made.end(), [&](const Descriptor &one) {
        return statusOf(one).st_dev == status.st_dev && statusOf(one).st_ino == status.st_ino;
    });
}
