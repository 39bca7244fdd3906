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

/// Lists the subfolders and data files in the folder `prefix`, which ends in a slash, ordered by their names
/// in lower case, code unit by code unit. Symbolic links, special files and all other files are left out.
/// Empty when the folder can't be read. `interrupted` is asked between entries; once it says true the listing
/// ends as it stands. Any thread.
std::vector<FolderEntry> listFolder(const QString &prefix, const std::function<bool()> &interrupted);
