#pragma once

#include "PropertyListFile.h"

#include <string>

// Both keep the file's other keys, write a binary list, as macOS does, and replace the file atomically:
// another file in the same folder is written, synchronised and renamed to it, mode 0644. A file that is there
// but isn't a readable property list, or isn't a regular file, stays as it is. The result is empty, or says
// what failed.

/// Makes the file, and its folders, when they are missing.
std::string writeString(const std::string &path, const std::string &key, const std::string &value);

/// A file or a key that is missing is a failure.
std::string deleteKey(const std::string &path, const std::string &key);
