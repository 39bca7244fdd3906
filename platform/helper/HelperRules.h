#pragma once

#include "HelperRequest.h"

#include <optional>
#include <sys/types.h>

/// Who asks, and what the group "admin" is, where there is one.
struct HelperCaller {
    uid_t user = 0;
    std::optional<gid_t> admin = {};
};

/// The folders that a command may be about; NoFolder: about none.
enum HelperFolder : unsigned {
    NoFolder = 0,
    New = 1,
    Made = 2, // by this helper
    Shared = 4, // the product folder, and the one for the database in it
    Own = 8, // of the caller
};

/// One command that an installation needs.
struct HelperRule {
    /// Words in angle brackets stand for what they say; the folder comes last.
    const char *words[5];
    unsigned folders = NoFolder;
};

/// The rule that the request matches; null when there is none.
const HelperRule *ruleFor(const HelperRequest &request, const HelperCaller &caller);

/// Why no command may be about a folder at that path; empty when one may.
std::string pathRefusal(const std::string &path);

/// Why no folder may be made in this one, named by its real path; empty when one may.
std::string parentRefusal(const std::string &parent);

/// Whether it is the path of one of the Shared folders.
bool isShared(const std::string &path);
