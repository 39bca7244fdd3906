#pragma once

#include <string>

// The property-list library follows nesting with its own stack and copies what a binary list refers to twice,
// so a small hostile file could exhaust the stack or the memory. These look before it does.

/// Containers nested deeper than this are refused.
constexpr size_t deepestNesting = 256;

/// Whether no more than deepestNesting arrays and dictionaries can be open at once.
bool isBoundedXml(const std::string &bytes);

/// Whether the list is nested no deeper than deepestNesting and comes to no more than a few times the largest
/// file when what is referred to twice is copied.
bool isBoundedBinary(const std::string &bytes);
