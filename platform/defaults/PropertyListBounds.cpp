#include "PropertyListBounds.h"

#include "PropertyListFile.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

bool startsAt(const std::string &bytes, size_t at, const char *text)
{
    return bytes.compare(at, std::char_traits<char>::length(text), text) == 0;
}

/// The end of the markup that starts at the place; the bytes' end when it has none.
size_t markupEnd(const std::string &bytes, size_t at)
{
    const char *end = startsAt(bytes, at, "<!--") ? "-->" : startsAt(bytes, at, "<![CDATA[") ? "]]>" : ">";
    const size_t found = bytes.find(end, at);
    return found == std::string::npos ? bytes.size() : found + std::char_traits<char>::length(end);
}

/// A binary list's objects as its trailer lays them out. Numbers are big-endian.
class BinaryObjects {
public:
    explicit BinaryObjects(const std::string &list)
        : bytes(list)
    {
    }

    bool isWithinBounds();

private:
    struct Visit {
        uint64_t object;
        size_t depth;
    };

    bool readTrailer();
    bool number(uint64_t at, uint64_t size, uint64_t &value) const;
    bool lengthOf(uint64_t at, uint64_t &length, uint64_t &contents) const;
    bool visit(const Visit &current);
    bool push(uint64_t references, uint64_t count, size_t depth);

    const std::string &bytes;
    uint64_t offsetSize = 0, referenceSize = 0, objects = 0, root = 0, offsets = 0;
    std::vector<Visit> pending;
    uint64_t expandedSize = 0;
};

constexpr uint64_t trailerSize = 32;
constexpr uint64_t nodeSize = 128;

/// What a list may grow to in memory: an object for every byte, which may be a reference to one, a little
/// more for long strings that are referred to often, and in all no more than the densest of large lists
/// needs.
uint64_t largestExpansion(size_t listSize)
{
    return std::min<uint64_t>(nodeSize * listSize + largestPropertyList / 4, 16 * largestPropertyList);
}

bool BinaryObjects::number(uint64_t at, uint64_t size, uint64_t &value) const
{
    if (size == 0 || size > 8 || at > bytes.size() || bytes.size() - at < size)
        return false;
    value = 0;
    for (uint64_t i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return true;
}

bool BinaryObjects::readTrailer()
{
    if (bytes.size() < trailerSize)
        return false;
    const uint64_t trailer = bytes.size() - trailerSize;
    return number(trailer + 6, 1, offsetSize) && number(trailer + 7, 1, referenceSize)
        && number(trailer + 8, 8, objects) && number(trailer + 16, 8, root)
        && number(trailer + 24, 8, offsets) && objects <= bytes.size();
}

bool BinaryObjects::lengthOf(uint64_t at, uint64_t &length, uint64_t &contents) const
{
    length = static_cast<unsigned char>(bytes[at]) & 0x0F;
    contents = at + 1;
    if (length != 0x0F)
        return true;
    uint64_t marker = 0;
    if (!number(contents, 1, marker) || (marker & 0xF0) != 0x10 || (marker & 0x0F) > 3)
        return false;
    const uint64_t size = uint64_t(1) << (marker & 0x0F);
    contents += 1 + size;
    return number(contents - size, size, length) && length <= bytes.size();
}

bool BinaryObjects::push(uint64_t references, uint64_t count, size_t depth)
{
    for (uint64_t i = 0; i < count; ++i) {
        uint64_t object = 0;
        if (!number(references + i * referenceSize, referenceSize, object) || object >= objects)
            return false;
        // Counted here already, so that the list of what is pending stays small, too.
        expandedSize += nodeSize;
        if (expandedSize > largestExpansion(bytes.size()))
            return false;
        pending.push_back({object, depth});
    }
    return true;
}

bool BinaryObjects::visit(const Visit &current)
{
    uint64_t at = 0, marker = 0, length = 0, contents = 0;
    if (!number(offsets + current.object * offsetSize, offsetSize, at) || !number(at, 1, marker)
        || !lengthOf(at, length, contents))
        return false;
    const uint64_t type = marker & 0xF0;
    constexpr uint64_t firstContainer = 0xA0; // arrays; then sets, which the library takes for arrays
    constexpr uint64_t dictionary = 0xD0;
    constexpr uint64_t utf8BytesPerUnit = 3;
    if (type >= 0x40 && type < firstContainer)
        expandedSize += length * utf8BytesPerUnit;
    if (type < firstContainer)
        return expandedSize <= largestExpansion(bytes.size());

    // A list that holds itself ends here, too.
    if (current.depth >= deepestNesting)
        return false;
    return push(contents, type == dictionary ? 2 * length : length, current.depth + 1);
}

bool BinaryObjects::isWithinBounds()
{
    if (!readTrailer() || root >= objects)
        return false;
    pending.push_back({root, 0});
    while (!pending.empty()) {
        const Visit current = pending.back();
        pending.pop_back();
        if (!visit(current))
            return false;
    }
    return true;
}

} // namespace

bool isBoundedXml(const std::string &bytes)
{
    size_t depth = 0;
    for (size_t at = bytes.find('<'); at != std::string::npos; at = bytes.find('<', at)) {
        const size_t end = markupEnd(bytes, at);
        const bool isEmptyElement = end - at >= 2 && startsAt(bytes, end - 2, "/>");
        if (startsAt(bytes, at, "</"))
            depth -= depth > 0 ? 1 : 0;
        else if (!startsAt(bytes, at, "<!") && !startsAt(bytes, at, "<?") && !isEmptyElement)
            ++depth;
        if (depth > deepestNesting)
            return false;
        at = end;
    }
    return true;
}

bool isBoundedBinary(const std::string &bytes)
{
    return BinaryObjects(bytes).isWithinBounds();
}
