#pragma once

#include <string>

/// Where the helper lies in this program's bundle.
std::string helperPath();

/// Whether any account of the computer could put another file in this one's place: it or a folder above it is
/// writable for all. A folder in which each account can only replace its own files (sticky) counts as safe.
bool isReplaceableByAnyone(const std::string &path);
