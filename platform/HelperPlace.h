#pragma once

#include <string>

/// Where the helper lies in this program's bundle.
std::string helperPath();

/// Whether any account could replace the file: it, or a folder above it, is world-writable. Sticky folders
/// count as safe, since accounts can replace only their own files there.
bool isReplaceableByAnyone(const std::string &path);
