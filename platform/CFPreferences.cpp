#include "CFString.h"

#include "defaults/PropertyListFile.h"

#include <cstdlib>
#include <string>

namespace {

CFPropertyListRef valueIn(const std::string &file, const std::string &key)
{
    const PropertyList list = readPropertyListFile(file).list;
    const plist_t value = list ? plist_dict_get_item(list.get(), key.c_str()) : nullptr;
    if (!value)
        return nullptr;
    if (plist_get_node_type(value) != PLIST_STRING)
        return new CFObject(CFObject::OtherValue);
    return CFStringCreateWithCString(
        kCFAllocatorDefault, plist_get_string_ptr(value, nullptr), kCFStringEncodingUTF8);
}

} // namespace

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID)
{
    const std::string name = key->characters.toStdString();
    const std::string file = "/Library/Preferences/" + applicationID->characters.toStdString() + ".plist";
    const char *home = std::getenv("HOME");
    const CFPropertyListRef own = home && *home ? valueIn(home + file, name) : nullptr;
    return own ? own : valueIn(file, name);
}

Boolean CFPreferencesAppSynchronize(CFStringRef)
{
    return true;
}
