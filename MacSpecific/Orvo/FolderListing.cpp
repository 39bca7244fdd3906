#include "FolderListing.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

/// Whether everything after the name's first dot is a data file's suffix.
bool isDataFileName(const char *name)
{
    const char *point = std::strchr(name, '.');
    return point && (std::strcmp(point, ".zqimage") == 0 || std::strcmp(point, ".zqin") == 0);
}

struct EntryKind {
    bool isFolder;
    bool isDataFile;
};

EntryKind kindOf(const struct dirent &entry, int type)
{
    return {type == DT_DIR, type == DT_REG && isDataFileName(entry.d_name)};
}

bool mayNotBeRead(int error)
{
    return error == EACCES || error == EPERM;
}

/// The entry's type, from the file system if the listing doesn't say: DT_UNKNOWN if it is gone or may not be
/// examined, -1 with errno set if the file system fails.
int typeOf(int folder, const struct dirent &entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type;
    struct stat status;
    if (fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT || mayNotBeRead(errno) ? DT_UNKNOWN : -1;
    return S_ISDIR(status.st_mode) ? DT_DIR : S_ISREG(status.st_mode) ? DT_REG : DT_UNKNOWN;
}

/// Whether the name, decoded and encoded again by Qt, no longer leads to the folder, for instance because
/// it isn't in the encoding of file names.
bool isUnreachable(int folder, const char *name)
{
    const QByteArray again = QFile::encodeName(QFile::decodeName(name));
    struct stat status;
    return again != name && fstatat(folder, again.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0
        && fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool isSelfOrParent(const char *name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

/// Prefix and name in a string with no spare capacity, since hundreds of thousands are kept.
QString joined(const QString &prefix, const char *name)
{
    const char *end = name;
    while (static_cast<signed char>(*end) > 0)
        ++end;
    if (*end)
        return prefix + QFile::decodeName(name);
    // ASCII is the same in every encoding of file names.
    QString path(prefix.size() + static_cast<int>(end - name), Qt::Uninitialized);
    std::copy(name, end, std::copy(prefix.begin(), prefix.end(), path.begin()));
    return path;
}

/// Sorts by the names in lower case, which are built once in a single string; ties are broken by the names
/// themselves. All paths begin with the prefix.
void sortByName(std::vector<FolderEntry> &entries, const QString &prefix)
{
    struct Keyed {
        qsizetype begin;
        qsizetype length;
        FolderEntry entry;
    };
    QString keys;
    std::vector<Keyed> keyed;
    keyed.reserve(entries.size());
    for (FolderEntry &entry : entries) {
        const QString key = entry.path.mid(prefix.size()).toLower();
        keyed.push_back({keys.size(), key.size(), std::move(entry)});
        keys += key;
    }
    const auto keyOf = [&keys](const Keyed &each) { return QStringView(keys).mid(each.begin, each.length); };
    std::sort(keyed.begin(), keyed.end(), [&keyOf](const Keyed &a, const Keyed &b) {
        const int order = keyOf(a).compare(keyOf(b));
        return order != 0 ? order < 0 : a.entry.path < b.entry.path;
    });
    std::transform(
        keyed.begin(), keyed.end(), entries.begin(), [](Keyed &each) { return std::move(each.entry); });
}

} // namespace

// Not with QDir, which calls stat for every entry and again for every size: a scan of 200,000 files would
// take almost twice as long.
FolderListing listFolder(const QString &prefix, const std::function<bool()> &interrupted)
{
    FolderListing listing;
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(
        opendir(QFile::encodeName(prefix).constData()), closedir);
    if (!folder) {
        listing.error = mayNotBeRead(errno) || errno == ENAMETOOLONG ? 0 : errno;
        return listing;
    }
    const int descriptor = dirfd(folder.get());
    // Only errno tells a failure from the end.
    while (const struct dirent *entry = (errno = 0, readdir(folder.get()))) {
        if (interrupted())
            return listing;
        if (isSelfOrParent(entry->d_name))
            continue;
        const int type = typeOf(descriptor, *entry);
        if (type < 0)
            break;
        const EntryKind kind = kindOf(*entry, type);
        if (!kind.isFolder && !kind.isDataFile)
            continue;
        if (kind.isFolder && isUnreachable(descriptor, entry->d_name)) {
            errno = EILSEQ;
            break;
        }
        // A file that can't be examined is listed too, so that its installation fails and is reported.
        struct stat status = {};
        if (kind.isDataFile)
            fstatat(descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW);
        listing.entries.push_back(
            {joined(prefix, entry->d_name), kind.isFolder, static_cast<quint64>(status.st_size)});
    }
    listing.error = errno;
    sortByName(listing.entries, prefix);
    return listing;
}
