// A device-independent bitmap in one block, as it crosses the clipboard: header, masks or palette,
// rows. The bytes are a program's and may say anything.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>

namespace tavrix::platform
{

struct PackedDib {
    size_t rows = 0;       // where they begin
    size_t size = 0;       // of all of it; what the block has beyond is nobody's
    bool readable = false; // as a picture file, by programs in general
};

/// Where things stand in the block of `size` bytes. Empty when its header says what cannot be, or
/// what the block has no room for; nothing outside of it is read.
std::optional<PackedDib> ReadPackedDib(const void* block, size_t size);

/// The header of the file that is this header and the block's first `dib.size` bytes.
constexpr size_t FileHeaderSize = 14;
void WriteFileHeader(const PackedDib& dib, BYTE* header);

/// The length of a row: padded to whole double words.
constexpr size_t RowSize(size_t width, size_t depth)
{
    return (width * depth + 31) / 32 * 4;
}

} // namespace tavrix::platform
