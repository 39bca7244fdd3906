#include "platform/defaults/PropertyListFile.h"

#include <cstdint>
#include <cstdlib>

// Whatever is in the file: either a reason, or a dictionary that can be changed and put into bytes again.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const PropertyListFile file = parsePropertyList(std::string(reinterpret_cast<const char *>(data), size));
    if ((file.problem == PropertyListFile::None) != bool(file.list) || bool(file.list) != file.reason.empty())
        std::abort();
    if (!file.list)
        return 0;
    plist_dict_set_item(file.list.get(), "key", plist_new_string("value"));
    char *bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(file.list.get(), &bytes, &length);
    free(bytes);
    return 0;
}
