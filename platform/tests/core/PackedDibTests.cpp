// Blocks that cross the clipboard, told whole from broken by their headers.

#include "platform/core/PackedDib.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace
{

using namespace tavrix::platform;

struct Case {
    const char* what;
    BITMAPINFOHEADER header;
    size_t rows; // where they begin
    size_t size; // the smallest block that holds it; 0: no block does
    bool readable;
};

constexpr LONG Lowest = -0x7FFFFFFF - 1;

// Header fields in their order: size, width, height, planes, depth, packing, bytes, density twice,
// colours used, important ones.
const Case Cases[] = {
    {"24 bits, rows of 9 bytes padded to 12", {40, 3, 2, 1, 24, 0, 0, 0, 0, 0, 0}, 40, 64, true},
    {"top-down", {40, 3, -2, 1, 24, 0, 0, 0, 0, 0, 0}, 40, 64, true},
    {"16 bits", {40, 3, 2, 1, 16, 0, 0, 0, 0, 0, 0}, 40, 56, true},
    {"16 bits with masks", {40, 3, 2, 1, 16, 3, 0, 0, 0, 0, 0}, 52, 68, true},
    {"32 bits with masks in a long header", {108, 1, 1, 1, 32, 3, 0, 0, 0, 0, 0}, 108, 112, true},
    {"32 bits with four masks", {40, 1, 1, 1, 32, 6, 0, 0, 0, 0, 0}, 56, 60, false},
    {"32 bits", {40, 1, 1, 1, 32, 0, 0, 0, 0, 0, 0}, 40, 44, true},
    {"8 bits, all colours", {40, 5, 1, 1, 8, 0, 0, 0, 0, 0, 0}, 1064, 1072, true},
    {"8 bits, two colours", {40, 5, 1, 1, 8, 0, 0, 0, 0, 2, 0}, 48, 56, true},
    {"4 bits", {40, 9, 1, 1, 4, 0, 0, 0, 0, 0, 0}, 104, 112, true},
    {"2 bits, which other programs do not know",
     {40, 17, 1, 1, 2, 0, 0, 0, 0, 0, 0},
     56,
     64,
     false},
    {"1 bit", {40, 33, 1, 1, 1, 0, 0, 0, 0, 0, 0}, 48, 56, true},
    {"packed rows", {40, 5, 9, 1, 8, 1, 7, 0, 0, 2, 0}, 48, 55, true},
    {"packed rows in 4 bits", {40, 5, 9, 1, 4, 2, 7, 0, 0, 2, 0}, 48, 55, true},
    {"a whole file in it", {40, 5, 9, 1, 0, 5, 100, 0, 0, 0, 0}, 40, 140, false},
    {"24 bits with colours to choose", {40, 1, 1, 1, 24, 0, 0, 0, 0, 3, 0}, 52, 56, true},
    {"no width", {40, 0, 2, 1, 24, 0, 0, 0, 0, 0, 0}, 0, 0, false},
    {"a negative width", {40, -3, 2, 1, 24, 0, 0, 0, 0, 0, 0}, 0, 0, false},
    {"no height", {40, 3, 0, 1, 24, 0, 0, 0, 0, 0, 0}, 0, 0, false},
    {"the lowest height", {40, 3, Lowest, 1, 24, 0, 0, 0, 0, 0, 0}, 0, 0, false},
    {"the largest of sides", {40, 0x7FFFFFFF, 0x7FFFFFFF, 1, 32, 0, 0, 0, 0, 0, 0}, 0, 0, false},
    {"sides whose bytes pass 64 bits",
     {40, 0x7FFFFFFF, Lowest, 1, 32, 0, 0, 0, 0, 0, 0},
     0,
     0,
     false},
    {"no planes", {40, 3, 2, 0, 24, 0, 0, 0, 0, 0, 0}, 0, 0, false},
    {"a depth of 7", {40, 3, 2, 1, 7, 0, 0, 0, 0, 0, 0}, 0, 0, false},
    {"a depth of 0", {40, 3, 2, 1, 0, 0, 0, 0, 0, 0, 0}, 0, 0, false},
    {"more colours than there are", {40, 3, 2, 1, 8, 0, 0, 0, 0, 257, 0}, 0, 0, false},
    {"billions of colours", {40, 3, 2, 1, 24, 0, 0, 0, 0, 0xFFFFFFFF, 0}, 0, 0, false},
    {"packed rows of no length", {40, 5, 9, 1, 8, 1, 0, 0, 0, 2, 0}, 0, 0, false},
    {"packed rows without end", {40, 5, 9, 1, 8, 1, 0xFFFFFFFF, 0, 0, 2, 0}, 0, 0, false},
    {"packed rows of 24 bits", {40, 5, 9, 1, 24, 1, 7, 0, 0, 0, 0}, 0, 0, false},
    {"an unknown packing", {40, 3, 2, 1, 24, 99, 24, 0, 0, 0, 0}, 0, 0, false},
    {"an old header", {12, 3, 2, 1, 24, 0, 0, 0, 0, 0, 0}, 0, 0, false},
    {"a header longer than any", {128, 3, 2, 1, 24, 0, 0, 0, 0, 0, 0}, 0, 0, false},
    {"a header without end", {0xFFFFFFFF, 3, 2, 1, 24, 0, 0, 0, 0, 0, 0}, 0, 0, false},
};

/// Of exactly so many bytes, so that the sanitizer sees a look past them.
std::vector<BYTE> BlockOf(const BITMAPINFOHEADER& header, size_t size)
{
    std::vector<BYTE> block(size);
    std::memcpy(block.data(), &header, std::min(size, sizeof(header)));
    block.shrink_to_fit();
    return block;
}

TEST(PackedDib, AHeaderSaysWhereTheRowsAreAndHowManyBytesThereHaveToBe)
{
    for (const Case& one : Cases) {
        SCOPED_TRACE(one.what);
        if (one.size == 0) {
            const std::vector<BYTE> block = BlockOf(one.header, 4000);
            EXPECT_FALSE(ReadPackedDib(block.data(), block.size()));
            continue;
        }
        const std::vector<BYTE> whole = BlockOf(one.header, one.size);
        const auto dib = ReadPackedDib(whole.data(), whole.size());
        ASSERT_TRUE(dib);
        EXPECT_EQ(dib->rows, one.rows);
        EXPECT_EQ(dib->size, one.size);
        EXPECT_EQ(dib->readable, one.readable);
        const std::vector<BYTE> larger = BlockOf(one.header, one.size + 5);
        EXPECT_EQ(ReadPackedDib(larger.data(), larger.size())->size, one.size);
        for (size_t size = 1; size < one.size; ++size) {
            const std::vector<BYTE> cut = BlockOf(one.header, size);
            EXPECT_FALSE(ReadPackedDib(cut.data(), cut.size())) << size << " bytes";
        }
    }
    EXPECT_FALSE(ReadPackedDib(nullptr, 100));
}

TEST(PackedDib, TheFilesHeaderTellsItsLengthAndWhereTheRowsAre)
{
    PackedDib dib;
    dib.rows = 0x428;
    dib.size = 0x01020304 - 14;
    BYTE header[FileHeaderSize];
    std::memset(header, 0xEE, sizeof(header));
    WriteFileHeader(dib, header);
    const BYTE expected[] = {'B', 'M', 4, 3, 2, 1, 0, 0, 0, 0, 0x36, 4, 0, 0};
    EXPECT_EQ(std::memcmp(header, expected, sizeof(expected)), 0);
}

} // namespace
