#pragma once

#include <Security/Authorization.h>

#include <cstddef>

// The installer and its helper talk over a sequenced-packet socket, the helper's standard input. The helper
// first says that it is ready, then answers each request. A request is one packet: the tool's path and its
// arguments, each with its NUL. With the answer that the tool was started comes one descriptor, the other end
// of the tool's standard input, output and error. The next request is looked at when the tool has ended.

constexpr const char *helperName = "authorization-helper";

/// Four times what the longest request of the installer takes: a path, a key and a value of 4096 bytes at the
/// most.
constexpr size_t largestRequest = 48 * 1024;

struct HelperReply {
    OSStatus status = errAuthorizationSuccess;
    /// Why the tool wasn't started, with its NUL.
    char reason[508] = {};
};
