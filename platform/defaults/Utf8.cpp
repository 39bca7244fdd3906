#include "Utf8.h"

namespace {

struct Form {
    unsigned char leadMask, lead;
    size_t continuations;
    unsigned long lowest;
};

constexpr Form forms[] = {
    {0x80, 0x00, 0, 0x0},
    {0xE0, 0xC0, 1, 0x80},
    {0xF0, 0xE0, 2, 0x800},
    {0xF8, 0xF0, 3, 0x10000},
};

bool isScalarValue(unsigned long code)
{
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

/// The length of the character at the place, 0 when there is none.
size_t characterLength(const std::string &bytes, size_t at)
{
    const auto first = static_cast<unsigned char>(bytes[at]);
    for (const Form &form : forms) {
        if ((first & form.leadMask) != form.lead)
            continue;
        if (bytes.size() - at <= form.continuations)
            return 0;
        unsigned long code = first & static_cast<unsigned char>(~form.leadMask);
        for (size_t i = 1; i <= form.continuations; ++i) {
            const auto next = static_cast<unsigned char>(bytes[at + i]);
            if ((next & 0xC0) != 0x80)
                return 0;
            code = code << 6 | (next & 0x3F);
        }
        return code >= form.lowest && isScalarValue(code) ? form.continuations + 1 : 0;
    }
    return 0;
}

} // namespace

bool isUtf8(const std::string &bytes)
{
    size_t at = 0;
    while (at < bytes.size()) {
        const size_t length = characterLength(bytes, at);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}
