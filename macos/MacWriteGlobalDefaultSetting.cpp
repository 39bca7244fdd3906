#include "MacWriteGlobalDefaultSetting.h"

#include <string>
#include <vector>

#include "MacDoAuthorizedCommand.h"

bool MacWriteGlobalDefaultSetting(
    CFStringRef domain, const char *key, const char *value, AuthorizationRef authorization)
{
    if (!authorization)
        return false;
    const std::string folder = "/Library/Preferences/";
    char name[4096];
    const CFIndex room = static_cast<CFIndex>(sizeof name - folder.size());
    if (!CFStringGetCString(domain, name, room, kCFStringEncodingMacRoman))
        return false;

    // Without an extension: the tool adds the property list's own.
    const std::string path = folder + name;
    const bool write = value && *value;
    const std::vector<std::string> arguments = write ? std::vector<std::string>{"write", path, key, value}
                                                     : std::vector<std::string>{"delete", path, key};
    const bool started = runCommandWithAuthority(authorization, "/usr/bin/defaults", arguments);
    CFPreferencesAppSynchronize(domain);
    return started;
}
