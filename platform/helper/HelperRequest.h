#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What the helper is asked to run: the tool's path and its arguments.
using HelperRequest = std::vector<std::string>;

/// Takes a packet apart. Empty when it has more than largestRequest bytes, or its last string lacks its NUL.
HelperRequest parseRequest(std::string_view packet);

/// The packet that parseRequest takes apart. `arguments` ends with a null entry, or is null.
std::string packRequest(const char *tool, char *const *arguments);
