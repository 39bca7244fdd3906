#pragma once

#include "PropertyListFile.h"

#include <string>

// Both keep the file's other keys, write a binary list, as macOS does, and replace the file atomically: they
// write another file in the same folder, mode 0644, synchronise it and rename it. A file that isn't a regular
// one with a readable property list stays as it is. The result is empty, or says what failed.

/// Makes the file, and its folders, when they are missing.
std::string writeString(const std::string &path, const std::string &key, const std::string &value);

/// A file or a key that is missing is a failure.
std::string deleteKey(const std::string &path, const std::string &key);
