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
    /// The errno that ended the listing early, EILSEQ for a subfolder whose name can't be decoded; 0 if none.
    int error = 0;
};

/// Lists the subfolders and data files in the folder `prefix`, which ends in a slash, ordered by their names
/// in lower case, code unit by code unit. Leaves out symbolic links and all other files; a folder that may
/// not be read, or whose path is too long, counts as empty. Asks `interrupted` between entries; once it
/// returns true, returns the entries so far, unordered and without an error. Any thread.
FolderListing listFolder(const QString &prefix, const std::function<bool()> &interrupted);
