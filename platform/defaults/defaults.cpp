#include "PropertyListWriter.h"

#include <csignal>
#include <cstdio>
#include <string>

// Stands in for /usr/bin/defaults where the system has none: reads, writes and deletes one string in a
// property list named by its path without the extension.

namespace {

int complain(const std::string &what)
{
    std::fprintf(stderr, "defaults: %s\n", what.c_str());
    return 1;
}

int readValue(const std::string &path, const std::string &key)
{
    const PropertyListFile file = readPropertyListFile(path);
    if (!file.list)
        return complain(path + " " + file.problem);
    const plist_t value = plist_dict_get_item(file.list.get(), key.c_str());
    if (!value)
        return complain(path + " has no key " + key);
    if (plist_get_node_type(value) != PLIST_STRING)
        return complain(path + ": the value of " + key + " is not a string");
    std::printf("%s\n", plist_get_string_ptr(value, nullptr));
    return 0;
}

int report(const std::string &failure)
{
    return failure.empty() ? 0 : complain(failure);
}

} // namespace

int main(int argc, char **argv)
{
    const std::string verb = argc > 1 ? argv[1] : "";
    // So that a write over the caller's file-size limit fails, and the unfinished file is removed.
    std::signal(SIGXFSZ, SIG_IGN);
    const int expected = verb == "write" ? 5 : verb == "read" || verb == "delete" ? 4 : 0;
    if (argc != expected) {
        complain("usage: defaults write <path> <key> <value> | delete <path> <key> | read <path> <key>");
        return 2;
    }
    for (int i = 2; i < argc; ++i) {
        if (!isUtf8(argv[i]))
            return complain("the arguments are not UTF-8");
    }
    const std::string path = std::string(argv[2]) + ".plist";
    const std::string key = argv[3];
    if (verb == "read")
        return readValue(path, key);
    return report(verb == "write" ? writeString(path, key, argv[4]) : deleteKey(path, key));
}
