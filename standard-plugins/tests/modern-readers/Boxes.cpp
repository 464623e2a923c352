#include "standard-plugins/tests/modern-readers/Boxes.h"

namespace moderntest
{
namespace
{

uint64_t Get(const std::string& file, size_t at, size_t bytes)
{
    uint64_t value = 0;
    for (size_t i = 0; i < bytes && at + i < file.size(); ++i)
        value = value << 8 | static_cast<uint8_t>(file[at + i]);
    return value;
}

void Put(std::string* file, size_t at, size_t bytes, uint64_t value)
{
    for (size_t i = bytes; i > 0; --i, value >>= 8)
        (*file)[at + i - 1] = static_cast<char>(value);
}

void Add(std::string* file, size_t at, size_t bytes, uint64_t more)
{
    Put(file, at, bytes, Get(*file, at, bytes) + more);
}

/// Where the box of this type begins among those from `at` to `end`; npos where there is none.
size_t Find(const std::string& file, size_t at, size_t end, const char* type)
{
    for (; at + 8 <= end; at += Get(file, at, 4))
        if (file.compare(at + 4, 4, type) == 0)
            return at;
    return std::string::npos;
}

size_t EndOf(const std::string& file, size_t box)
{
    return box + Get(file, box, 4);
}

/// The places of all items that lie in the file and not in a box of their own, `more` bytes further
/// behind. (Section 8.11.3, "iloc".)
void MoveItems(std::string* file, size_t box, uint64_t more)
{
    const auto version = Get(*file, box + 8, 1);
    const size_t offsetBytes = Get(*file, box + 12, 1) >> 4;
    const size_t lengthBytes = Get(*file, box + 12, 1) & 15;
    const size_t baseBytes = Get(*file, box + 13, 1) >> 4;
    const size_t indexBytes = version == 0 ? 0 : Get(*file, box + 13, 1) & 15;
    uint64_t items = Get(*file, box + 14, 2);
    size_t at = box + 16;
    for (; items > 0; --items) {
        const bool isInFile = version == 0 || (Get(*file, at + 2, 2) & 15) == 0;
        at += version == 0 ? 4 : 6;
        if (isInFile && baseBytes > 0)
            Add(file, at, baseBytes, more);
        at += baseBytes;
        uint64_t extents = Get(*file, at, 2);
        at += 2;
        for (; extents > 0; --extents) {
            at += indexBytes;
            if (isInFile && baseBytes == 0)
                Add(file, at, offsetBytes, more);
            at += offsetBytes + lengthBytes;
        }
    }
}

} // namespace

std::string WithProfile(const std::string& file, const std::string& profile)
{
    constexpr size_t fullHeader = 12;
    const size_t meta = Find(file, 0, file.size(), "meta");
    if (meta == std::string::npos)
        return file;
    const size_t properties = Find(file, meta + fullHeader, EndOf(file, meta), "iprp");
    const size_t places = Find(file, meta + fullHeader, EndOf(file, meta), "iloc");
    const size_t container = Find(file, properties + 8, EndOf(file, properties), "ipco");
    size_t colours = Find(file, container + 8, EndOf(file, container), "colr");
    while (colours != std::string::npos && file.compare(colours + 8, 4, "prof") != 0)
        colours = Find(file, EndOf(file, colours), EndOf(file, container), "colr");
    if (colours == std::string::npos)
        return file;
    std::string changed = file;
    const uint64_t more = fullHeader + profile.size() - Get(file, colours, 4);
    MoveItems(&changed, places, more);
    for (const size_t box : {meta, properties, container, colours})
        Add(&changed, box, 4, more);
    return changed.replace(colours + fullHeader, EndOf(file, colours) - colours - fullHeader,
                           profile);
}

std::string WithSize(const std::string& file, uint32_t width, uint32_t height)
{
    std::string changed = file;
    // Behind the type of the box: its version and flags, width, height.
    for (size_t at = changed.find("ispe"); at != std::string::npos;
         at = changed.find("ispe", at + 4)) {
        Put(&changed, at + 8, 4, width);
        Put(&changed, at + 12, 4, height);
    }
    // The last two of a track's header of version 0 or 1, in 16.16.
    for (size_t at = changed.find("tkhd"); at != std::string::npos;
         at = changed.find("tkhd", at + 4)) {
        const size_t end = EndOf(changed, at - 4);
        Put(&changed, end - 8, 4, uint64_t{width} << 16);
        Put(&changed, end - 4, 4, uint64_t{height} << 16);
    }
    // A sample entry, which is no brand and no item's type: its data begin with zeros.
    for (size_t at = changed.find("av01"); at != std::string::npos;
         at = changed.find("av01", at + 4))
        if (at + 32 < changed.size() && Get(changed, at + 4, 6) == 0 &&
            Get(changed, at + 28, 2) != 0) {
            Put(&changed, at + 28, 2, width);
            Put(&changed, at + 30, 2, height);
        }
    return changed;
}

} // namespace moderntest
