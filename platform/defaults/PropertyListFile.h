#pragma once

#include <cstddef>
#include <memory>
#include <plist/plist.h>
#include <string>

struct PropertyListDeleter {
    void operator()(plist_t list) const { plist_free(list); }
};

/// Owns a tree of the property-list library.
using PropertyList = std::unique_ptr<void, PropertyListDeleter>;

/// A file's dictionary, or why there is none.
struct PropertyListFile {
    /// An empty file is missing, too.
    enum Problem { None, Missing, Unreadable, NotAPropertyList };

    PropertyList list;
    Problem problem = None;
    /// Readable, for every problem.
    std::string reason = {};
};

/// Preferences are a few kilobytes; more than this is no preference file.
constexpr size_t largestPropertyList = 64 * 1024;

/// Reads a regular file, never waiting for a special one and never following a symbolic link in the last
/// place. `folder` is what a relative path starts from, as for openat.
PropertyListFile readPropertyListFile(const char *path, int folder);
/// The same; a link is followed.
PropertyListFile readPropertyListFile(const char *path);
