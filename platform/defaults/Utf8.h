#pragma once

#include <string>

/// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing past U+10FFFF.
bool isUtf8(const std::string &bytes);
