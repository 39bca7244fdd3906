#pragma once

#include <string>

// The property-list library follows nesting with its own stack and copies what a binary list refers to twice,
// so a small hostile file could exhaust the stack or the memory. These look before it does.

/// Containers nested deeper than this are refused.
constexpr size_t deepestNesting = 256;

/// Whether no more than deepestNesting arrays and dictionaries can be open at once.
bool isBoundedXml(const std::string &bytes);

/// Whether the list is nested no deeper than deepestNesting and, when what is referred to twice is copied,
/// comes to no more memory than a file of its size can need.
bool isBoundedBinary(const std::string &bytes);
