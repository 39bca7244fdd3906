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
    PropertyList list;
    /// Why there is none, to follow the path in a message; empty when there is a list.
    std::string problem;
    /// The file is missing or empty.
    bool isMissing = false;
};

/// Preferences are a few kilobytes; more than this is no preference file.
constexpr size_t largestPropertyList = 64 * 1024;

/// Reads a regular file; refuses a special one without waiting for it. Adds `openFlags` to the flags of open.
PropertyListFile readPropertyListFile(const std::string &path, int openFlags = 0);

/// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing past U+10FFFF.
bool isUtf8(const std::string &bytes);
