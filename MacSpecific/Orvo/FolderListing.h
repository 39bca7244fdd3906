#pragma once

#include <QString>

#include <functional>
#include <vector>

/// An entry of a folder that belongs to the database: a subfolder, or a data file with its size in bytes.
struct FolderEntry {
    QString path;
    bool isFolder;
    quint64 size;
};

struct FolderListing {
    std::vector<FolderEntry> entries;
    /// Why the folder couldn't be listed to its end, as errno says; 0 when it could.
    int error = 0;
};

/// Lists the subfolders and data files in the folder `prefix`, which ends in a slash, ordered by their names
/// in lower case, code unit by code unit. Symbolic links, special files and all other files are left out; a
/// folder that may not be read, or whose path is too long, counts as empty. `interrupted` is asked between
/// entries; once it says true the listing ends as it stands. Any thread.
FolderListing listFolder(const QString &prefix, const std::function<bool()> &interrupted);
