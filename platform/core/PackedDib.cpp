#include "platform/core/PackedDib.h"

#include <cstdlib>
#include <cstring>

namespace tavrix::platform
{
namespace
{

constexpr DWORD PackedIn8 = 1;
constexpr DWORD PackedIn4 = 2;
constexpr DWORD ColorMasks = 3;
constexpr DWORD WholeJpeg = 4;
constexpr DWORD WholePng = 5;
constexpr DWORD AlphaMasks = 6;

constexpr size_t LargestFile = 0xFFFFFFFFu; // its header says so in 32 bits
constexpr DWORD LongestHeader = 124;
// From this length on the masks stand in the header itself.
constexpr DWORD HeaderWithMasks = 52;

bool IsDepthOf(DWORD compression, WORD depth)
{
    switch (compression) {
    case BI_RGB:
        return depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 16 || depth == 24 ||
               depth == 32;
    case PackedIn8:
        return depth == 8;
    case PackedIn4:
        return depth == 4;
    case ColorMasks:
    case AlphaMasks:
        return depth == 16 || depth == 32;
    case WholeJpeg:
    case WholePng:
        return depth == 0;
    default:
        return false;
    }
}

bool HasPlainRows(DWORD compression)
{
    return compression == BI_RGB || compression == ColorMasks || compression == AlphaMasks;
}

size_t MasksBehind(const BITMAPINFOHEADER& header)
{
    if (header.biSize >= HeaderWithMasks)
        return 0;
    if (header.biCompression == ColorMasks)
        return 3 * sizeof(DWORD);
    return header.biCompression == AlphaMasks ? 4 * sizeof(DWORD) : 0;
}

void PutDoubleWord(BYTE* to, size_t value)
{
    for (int i = 0; i < 4; ++i)
        to[i] = static_cast<BYTE>(value >> (8 * i));
}

} // namespace

std::optional<PackedDib> ReadPackedDib(const void* block, size_t size)
{
    BITMAPINFOHEADER header;
    if (block == nullptr || size < sizeof(header))
        return std::nullopt;
    std::memcpy(&header, block, sizeof(header));
    const WORD depth = header.biBitCount;
    if (header.biSize < sizeof(header) || header.biSize > LongestHeader || header.biPlanes != 1 ||
        header.biWidth <= 0 || header.biHeight == 0 || !IsDepthOf(header.biCompression, depth))
        return std::nullopt;

    // Step by step, since each number is whatever the bytes say.
    size_t colors = header.biClrUsed;
    if (depth >= 1 && depth <= 8) {
        const size_t most = size_t{1} << depth;
        if (colors > most)
            return std::nullopt;
        colors = colors == 0 ? most : colors;
    }
    PackedDib dib;
    dib.rows = header.biSize + MasksBehind(header);
    if (dib.rows > size || colors > (size - dib.rows) / sizeof(RGBQUAD))
        return std::nullopt;
    dib.rows += colors * sizeof(RGBQUAD);
    const size_t room = size - dib.rows;
    size_t taken = header.biSizeImage;
    if (HasPlainRows(header.biCompression)) {
        const auto width = static_cast<unsigned long long>(header.biWidth);
        const auto height = static_cast<size_t>(std::llabs(header.biHeight));
        const unsigned long long row = (width * depth + 31) / 32 * 4;
        if (row > room || height > room / row)
            return std::nullopt;
        taken = static_cast<size_t>(row) * height;
    } else if (taken == 0 || taken > room) {
        return std::nullopt;
    }
    dib.size = dib.rows + taken;
    dib.readable = depth != 0 && depth != 2 && header.biCompression != AlphaMasks &&
                   dib.size <= LargestFile - FileHeaderSize;
    return dib;
}

void WriteFileHeader(const PackedDib& dib, BYTE* header)
{
    std::memset(header, 0, FileHeaderSize);
    header[0] = 'B';
    header[1] = 'M';
    PutDoubleWord(header + 2, FileHeaderSize + dib.size);
    PutDoubleWord(header + 10, FileHeaderSize + dib.rows);
}

} // namespace tavrix::platform
