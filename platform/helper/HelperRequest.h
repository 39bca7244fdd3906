#pragma once

#include <string>
#include <vector>

/// What the helper is asked to run.
struct HelperRequest {
    std::string tool;
    std::vector<std::string> arguments;
    /// Why the request can't be accepted; empty when it can.
    std::string refusal;
};

/// Takes a packet apart. Refused: no bytes, more than largestRequest, a last string without its NUL, a tool
/// that is no absolute path, no argument, or more than mostArguments.
HelperRequest parseRequest(const char *bytes, size_t length);

/// The packet that parseRequest takes apart.
std::string packRequest(const char *tool, char *const *arguments);
