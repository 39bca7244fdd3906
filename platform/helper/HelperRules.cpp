#include "HelperRules.h"

#include <algorithm>
#include <climits>
#include <filesystem>
#include <string_view>

namespace {

constexpr char productFolder[] = "/Library/Application Support/Brindlewerks";
constexpr char list[] = "/Library/Preferences/com.brindle.CorvaneLumetra";
constexpr char key[] = "LumetraFullDatabasePath";

/// The system's folders: below them programs of root's look for plug-ins, and one could be named after a
/// database. Folders whose names begin with "/lib" count, too.
constexpr const char *systemFolders[] = {
    "/usr", "/etc", "/bin", "/sbin", "/boot", "/dev", "/proc", "/sys", "/run", "/var", "/root"};

constexpr HelperRule rules[] = {
    {{"/bin/mkdir", "-m", "755", "<folder>"}, New},
    {{"/bin/mkdir", "-m", "775", "<folder>"}, New},
    {{"/usr/bin/chgrp", "<admin>", "<folder>"}, Made | Shared},
    {{"/usr/sbin/chown", "<user>", "<database>"}, Made},
    {{"/usr/sbin/chown", "<user>:<admin>", "<database>"}, Made},
    {{"/usr/sbin/chown", "-h", "<user>", "<database>"}, Made},
    {{"/usr/sbin/chown", "-h", "<user>:<admin>", "<database>"}, Made},
    {{"/bin/chmod", "0775", "<folder>"}, Made | Shared | Own},
    {{"/usr/bin/defaults", "write", list, key, "<value>"}},
    {{"/usr/bin/defaults", "delete", list, key}},
};

bool fits(std::string_view word, const std::string &argument, const HelperCaller &caller)
{
    const std::string user = std::to_string(caller.user);
    if (word == "<folder>")
        return true;
    if (word == "<database>")
        return argument != productFolder;
    if (word == "<value>")
        return !argument.empty() && argument.size() < PATH_MAX;
    if (word == "<user>")
        return argument == user;
    if (word == "<admin>")
        return caller.admin && argument == std::to_string(*caller.admin);
    if (word == "<user>:<admin>")
        return caller.admin && argument == user + ":" + std::to_string(*caller.admin);
    return argument == word;
}

/// "Lumetra", or that with "_" and a number.
bool isDatabaseName(std::string_view name)
{
    constexpr std::string_view plain = "Lumetra";
    if (name.substr(0, plain.size()) != plain)
        return false;
    name.remove_prefix(plain.size());
    return name.empty()
        || (name.size() > 1 && name[0] == '_' && name.find_first_not_of("0123456789", 1) == name.npos);
}

} // namespace

const HelperRule *ruleFor(const HelperRequest &request, const HelperCaller &caller)
{
    const auto isKept = [&](const HelperRule &rule) {
        const auto end = std::find(std::begin(rule.words), std::end(rule.words), nullptr);
        return std::equal(std::begin(rule.words), end, request.begin(), request.end(),
            [&](const char *word, const std::string &argument) { return fits(word, argument, caller); });
    };
    const auto rule = std::find_if(std::begin(rules), std::end(rules), isKept);
    return rule == std::end(rules) ? nullptr : rule;
}

std::string pathRefusal(const std::string &path)
{
    if (path.empty() || path[0] != '/' || path.size() >= PATH_MAX)
        return "the path isn't absolute, or too long";
    // A folder picked in the root is "//Lumetra".
    const std::string plain = path.substr(path.rfind('/') == 1 ? 1 : 0);
    if (std::filesystem::path(plain).lexically_normal().native() != plain)
        return "the path isn't plain";
    if (path != productFolder && !isDatabaseName(path.substr(path.rfind('/') + 1)))
        return "the folder is none that an installation makes";
    return {};
}

std::string parentRefusal(const std::string &parent)
{
    if (parent.empty() || parent[0] != '/')
        return "the parent has no path";
    const std::string top = parent.substr(0, parent.find('/', 1));
    const bool isSystems = top.compare(0, 4, "/lib") == 0
        || std::find(std::begin(systemFolders), std::end(systemFolders), top) != std::end(systemFolders);
    const bool isDisk = (parent + "/").compare(0, 11, "/run/media/") == 0;
    return isSystems && !isDisk ? parent + " is the system's" : std::string();
}

bool isShared(const std::string &path)
{
    return path == productFolder || path == std::string(productFolder) + "/Lumetra";
}
