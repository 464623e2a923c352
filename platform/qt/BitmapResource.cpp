#include "platform/qt/BitmapResource.h"

#include "platform/qt/ByteReader.h"

#include <algorithm>
#include <cstdlib>

namespace tavrix::platform
{
namespace
{

// Far beyond any screen; the rows' length and the table of pixels stay inside the numbers.
constexpr int64_t LargestSide = 16384;
constexpr size_t ColorSize = 4;
constexpr uint32_t Opaque = 0xFF000000u;

struct Header {
    size_t length = 0;
    int64_t width = 0;
    int64_t height = 0; // negative: top-down
    int depth = 0;
    size_t usedColors = 0;
};

std::optional<Header> ReadHeader(ByteReader& reader)
{
    Header header;
    header.length = reader.DoubleWord();
    header.width = static_cast<int32_t>(reader.DoubleWord());
    header.height = static_cast<int32_t>(reader.DoubleWord());
    const WORD planes = reader.Word();
    header.depth = reader.Word();
    const DWORD packing = reader.DoubleWord();
    reader.Skip(12); // the length of the rows, which many leave 0, and the density
    header.usedColors = reader.DoubleWord();
    reader.DoubleWord();
    constexpr int Depths[] = {1, 4, 8, 24, 32};
    const bool knownDepth =
        std::find(std::begin(Depths), std::end(Depths), header.depth) != std::end(Depths);
    if (reader.Failed() || header.length < sizeof(BITMAPINFOHEADER) || planes != 1 ||
        packing != BI_RGB || !knownDepth || header.width <= 0 || header.width > LargestSide ||
        header.height == 0 || std::abs(header.height) > LargestSide)
        return std::nullopt;
    return header;
}

uint32_t ColorAt(const BYTE* color)
{
    return Opaque | static_cast<uint32_t>(color[2]) << 16 | static_cast<uint32_t>(color[1]) << 8 |
           color[0];
}

/// A number that the table has no colour for is black.
uint32_t PixelOf(const BYTE* row, int x, int depth, const std::vector<uint32_t>& colors)
{
    if (depth >= 24)
        return ColorAt(row + static_cast<ptrdiff_t>(x) * (depth / 8));
    const int perByte = 8 / depth;
    const int shift = (perByte - 1 - x % perByte) * depth;
    const size_t index = static_cast<size_t>(row[x / perByte] >> shift) & ((1u << depth) - 1);
    return index < colors.size() ? colors[index] : Opaque;
}

} // namespace

std::optional<BitmapPicture> ParseBitmapResource(const void* bytes, size_t size)
{
    if (bytes == nullptr)
        return std::nullopt;
    ByteReader reader(bytes, size);
    const std::optional<Header> header = ReadHeader(reader);
    if (!header)
        return std::nullopt;

    size_t colorCount = header->usedColors;
    if (header->depth <= 8) {
        const size_t all = size_t{1} << header->depth;
        colorCount = colorCount == 0 ? all : std::min(colorCount, all);
    }
    const auto* start = static_cast<const BYTE*>(bytes);
    const size_t stride = static_cast<size_t>((header->width * header->depth + 31) / 32 * 4);
    const auto height = static_cast<size_t>(std::abs(header->height));
    // Step by step, since each number is whatever the bytes say.
    if (header->length > size || colorCount > (size - header->length) / ColorSize)
        return std::nullopt;
    const size_t before = header->length + colorCount * ColorSize;
    if (height > (size - before) / stride)
        return std::nullopt;

    std::vector<uint32_t> colors;
    for (size_t i = 0; header->depth <= 8 && i < colorCount; ++i)
        colors.push_back(ColorAt(start + header->length + i * ColorSize));
    BitmapPicture picture;
    picture.width = static_cast<int>(header->width);
    picture.height = static_cast<int>(height);
    picture.pixels.reserve(static_cast<size_t>(header->width) * height);
    for (size_t y = 0; y < height; ++y) {
        const size_t at = header->height < 0 ? y : height - 1 - y;
        for (int x = 0; x < picture.width; ++x)
            picture.pixels.push_back(
                PixelOf(start + before + at * stride, x, header->depth, colors));
    }
    return picture;
}

} // namespace tavrix::platform
