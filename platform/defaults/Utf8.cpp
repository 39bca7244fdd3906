#include "Utf8.h"

#include <cstdint>
#include <iconv.h>

bool isUtf8(const std::string &bytes)
{
    // Into a form that has none of what UTF-8 must not hold; it takes at most twice the room.
    const iconv_t converter = iconv_open("UTF-16LE", "UTF-8");
    if (reinterpret_cast<intptr_t>(converter) == -1)
        return false;
    std::string converted(2 * bytes.size(), '\0');
    char *in = const_cast<char *>(bytes.data());
    char *out = converted.data();
    size_t left = bytes.size();
    size_t room = converted.size();
    const bool isValid = iconv(converter, &in, &left, &out, &room) != static_cast<size_t>(-1);
    iconv_close(converter);
    return isValid;
}
