#include "platform/core/Gdi.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace tavrix::platform
{
namespace
{

// Indexed pixels stand from the high bits of a byte down.
unsigned ReadIndex(const uint8_t* row, int depth, int x)
{
    const int bit = x * depth;
    const int shift = 8 - depth - (bit & 7);
    return (static_cast<unsigned>(row[bit >> 3]) >> shift) & ((1u << depth) - 1);
}

void WriteIndex(uint8_t* row, int depth, int x, unsigned index)
{
    const int bit = x * depth;
    const int shift = 8 - depth - (bit & 7);
    const unsigned mask = ((1u << depth) - 1) << shift;
    uint8_t& byte = row[bit >> 3];
    byte = static_cast<uint8_t>((byte & ~mask) | (index << shift));
}

/// From one pixel to before another: whole bytes at once.
void FillIndexes(uint8_t* row, int depth, int first, int behind, unsigned index)
{
    const int perByte = 8 / depth;
    int x = first;
    for (; x < behind && x % perByte != 0; ++x)
        WriteIndex(row, depth, x, index);
    const int bytes = (behind - x) / perByte;
    if (bytes > 0) {
        const unsigned repeated = index * (0xFFu / ((1u << depth) - 1));
        std::memset(row + x / perByte, static_cast<int>(repeated), static_cast<size_t>(bytes));
        x += bytes * perByte;
    }
    for (; x < behind; ++x)
        WriteIndex(row, depth, x, index);
}

COLORREF ColorOf(const RGBQUAD& entry)
{
    return RGB(entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
}

unsigned NearestIndex(const Surface& surface, COLORREF color)
{
    const int red = static_cast<int>(color & 0xFF);
    const int green = static_cast<int>((color >> 8) & 0xFF);
    const int blue = static_cast<int>((color >> 16) & 0xFF);
    int best = std::numeric_limits<int>::max();
    unsigned found = 0;
    for (unsigned index = 0; index < (1u << surface.depth); ++index) {
        const RGBQUAD& entry = surface.colors[index];
        const int r = entry.rgbRed - red;
        const int g = entry.rgbGreen - green;
        const int b = entry.rgbBlue - blue;
        const int distance = r * r + g * g + b * b;
        if (distance < best) {
            best = distance;
            found = index;
        }
    }
    return found;
}

uint32_t PixelWord(COLORREF color)
{
    return 0xFF000000u | ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

// Eight pixels at a time: a text of a whole screen at eight times its size has 25 million.
void PaintBits(uint8_t* row, const uint8_t* mask, int width, unsigned index)
{
    const int last = (width - 1) / 8;
    for (int i = 0; i <= last; ++i) {
        const unsigned inside = i < last ? 0xFF : 0xFF00u >> ((width - 1) % 8 + 1);
        const unsigned bits = mask[i] & inside;
        row[i] = static_cast<uint8_t>(index != 0 ? row[i] | bits : row[i] & ~bits);
    }
}

void PaintPixels(const Surface& surface, int y, const uint8_t* mask, unsigned index, COLORREF color)
{
    uint8_t* row = surface.Row(y);
    for (int x = 0; x < surface.width; ++x) {
        if ((x & 7) == 0 && mask[x >> 3] == 0) {
            x += 7;
        } else if ((mask[x >> 3] & (0x80 >> (x & 7))) != 0) {
            if (surface.depth < 24)
                WriteIndex(row, surface.depth, x, index);
            else
                WritePixel(surface, x, y, color);
        }
    }
}

void Copy24To32(uint8_t* to, const uint8_t* from, int width)
{
    uint32_t* out = reinterpret_cast<uint32_t*>(to);
    int x = 0;
    // Four pixels are three words; a plain loop over bytes takes twice as long.
    for (; x + 4 <= width; x += 4, from += 12) {
        uint32_t words[3];
        std::memcpy(words, from, sizeof(words));
        out[x] = 0xFF000000u | words[0];
        out[x + 1] = 0xFF000000u | (words[0] >> 24) | (words[1] << 8);
        out[x + 2] = 0xFF000000u | (words[1] >> 16) | (words[2] << 16);
        out[x + 3] = 0xFF000000u | (words[2] >> 8);
    }
    for (; x < width; ++x, from += 3)
        out[x] = 0xFF000000u | static_cast<uint32_t>(from[2]) << 16 |
                 static_cast<uint32_t>(from[1]) << 8 | from[0];
}

void CopyIndexedTo32(uint8_t* to, const uint8_t* row, int sourceX, int width, const uint32_t* words,
                     int depth)
{
    uint32_t* out = reinterpret_cast<uint32_t*>(to);
    for (int x = 0; x < width; ++x)
        out[x] = words[ReadIndex(row, depth, sourceX + x)];
}

bool SameMemory(const Surface& a, const Surface& b)
{
    return a.top == b.top && a.stride == b.stride;
}

void CopyRow(const Surface& target, int x, int y, int width, const Surface& source, int sourceX,
             int sourceY, const uint32_t* words)
{
    uint8_t* to = target.Row(y);
    const uint8_t* from = source.Row(sourceY);
    if (target.depth == source.depth && target.depth >= 24) {
        const size_t pixel = static_cast<size_t>(target.depth / 8);
        std::memmove(to + static_cast<size_t>(x) * pixel,
                     from + static_cast<size_t>(sourceX) * pixel,
                     static_cast<size_t>(width) * pixel);
        // The fourth byte of a 32-bit section is anything; that of a picture shown is "drawn".
        if (target.depth == 32)
            for (int i = 0; i < width; ++i)
                to[static_cast<size_t>(x + i) * 4 + 3] = 0xFF;
    } else if (target.depth == 32 && source.depth == 24) {
        Copy24To32(to + static_cast<size_t>(x) * 4, from + static_cast<size_t>(sourceX) * 3, width);
    } else if (target.depth == 32) {
        CopyIndexedTo32(to + static_cast<size_t>(x) * 4, from, sourceX, width, words, source.depth);
    } else if (SameMemory(target, source) && sourceX < x) {
        for (int i = width - 1; i >= 0; --i)
            WritePixel(target, x + i, y, ReadPixel(source, sourceX + i, sourceY));
    } else {
        for (int i = 0; i < width; ++i)
            WritePixel(target, x + i, y, ReadPixel(source, sourceX + i, sourceY));
    }
}

} // namespace

COLORREF ReadPixel(const Surface& surface, int x, int y)
{
    const uint8_t* row = surface.Row(y);
    if (surface.depth < 24)
        return ColorOf(surface.colors[ReadIndex(row, surface.depth, x)]);
    const uint8_t* pixel = row + static_cast<size_t>(x) * static_cast<size_t>(surface.depth / 8);
    return RGB(pixel[2], pixel[1], pixel[0]);
}

void WritePixel(const Surface& surface, int x, int y, COLORREF color)
{
    uint8_t* row = surface.Row(y);
    if (surface.depth < 24) {
        WriteIndex(row, surface.depth, x, NearestIndex(surface, color));
        return;
    }
    uint8_t* pixel = row + static_cast<size_t>(x) * static_cast<size_t>(surface.depth / 8);
    const uint32_t word = PixelWord(color);
    std::memcpy(pixel, &word, static_cast<size_t>(surface.depth / 8));
}

void FillArea(const Surface& surface, const RECT& area, COLORREF color)
{
    const unsigned index = surface.depth < 24 ? NearestIndex(surface, color) : 0;
    for (int y = area.top; y < area.bottom; ++y) {
        if (surface.depth == 32) {
            uint32_t* row = reinterpret_cast<uint32_t*>(surface.Row(y));
            std::fill(row + area.left, row + area.right, PixelWord(color));
        } else if (surface.depth < 24) {
            FillIndexes(surface.Row(y), surface.depth, area.left, area.right, index);
        } else {
            for (int x = area.left; x < area.right; ++x)
                WritePixel(surface, x, y, color);
        }
    }
}

void PaintMask(const Surface& surface, int top, int rows, const uint8_t* mask, ptrdiff_t maskStride,
               COLORREF color)
{
    const unsigned index = surface.depth < 24 ? NearestIndex(surface, color) : 0;
    for (int y = 0; y < rows; ++y) {
        const uint8_t* bits = mask + y * maskStride;
        uint8_t* row = surface.Row(top + y);
        if (surface.depth == 1)
            PaintBits(row, bits, surface.width, index);
        else
            PaintPixels(surface, top + y, bits, index, color);
    }
}

void CopyPixels(const Surface& target, int x, int y, int width, int height, const Surface& source,
                int sourceX, int sourceY)
{
    uint32_t words[256] = {};
    if (source.depth < 24) {
        for (unsigned index = 0; index < (1u << source.depth); ++index)
            words[index] = PixelWord(ColorOf(source.colors[index]));
    }
    // Within one picture a move downwards starts at the last row, so that no row is read after it
    // was written.
    if (SameMemory(target, source) && sourceY < y) {
        for (int row = height - 1; row >= 0; --row)
            CopyRow(target, x, y + row, width, source, sourceX, sourceY + row, words);
        return;
    }
    for (int row = 0; row < height; ++row)
        CopyRow(target, x, y + row, width, source, sourceX, sourceY + row, words);
}

} // namespace tavrix::platform
