// Small pictures that a test can spell out: sheets of one value, drawings of which pixels changed,
// a pixel's bytes.
#pragma once

#include "Twin.h"

using Picture = std::vector<std::string>; // a letter a pixel
using Bytes = std::vector<u32>;

inline u32 PixelSize(u32 depth)
{
    return depth / 8;
}

/// Sets every byte to `value`, padding too.
inline void Flatten(Twin& twin, u8 value)
{
    twin.SetRows(Rows(twin.plain.height, std::vector<u8>(twin.plain.stride, value)));
}

/// '.' where all bytes of a pixel are `value`, else '#'.
inline Picture Changed(Raster& raster, u8 value)
{
    const RasterInfo info = InfoOf(raster);
    const u32 size = PixelSize(info.depth);
    Picture picture;
    for (const std::vector<u8>& row : RowsOf(raster)) {
        std::string letters;
        for (u32 x = 0; x < info.width; ++x) {
            char letter = '.';
            for (u32 i = 0; i < size; ++i)
                if (row[x * size + i] != value)
                    letter = '#';
            letters += letter;
        }
        picture.push_back(letters);
    }
    return picture;
}

/// The bytes of a pixel in the order of memory.
inline Bytes PixelOf(Raster& raster, u32 x, u32 y)
{
    const u32 size = PixelSize(InfoOf(raster).depth);
    const std::vector<u8> row = RowOf(raster, static_cast<i32>(y));
    raster.UnlockAll();
    const auto first = row.begin() + static_cast<std::ptrdiff_t>(x * size);
    return {first, first + static_cast<std::ptrdiff_t>(size)};
}

/// As Twin::Refuse for a raster whose line 0 sits in its file, where it waits to show what an
/// operation left locked.
inline void RefuseBesideLine0(Twin& twin, u32 line)
{
    ASSERT_NE(line, 0u);
    ASSERT_TRUE(twin.plain.out[0]);
    ASSERT_NO_FATAL_FAILURE(twin.Refuse(line));
    // With two lines away the table that a line needs to come in is one shorter.
    const u32 table = (twin.plain.height - 1) * static_cast<u32>(sizeof(void*));
    ASSERT_NE(twin.plain.stride, table);
    twin.allocator.fails = [table](int, u32 size) { return size == table; };
}

/// Adds `count` lines that lock as lost: the height grows, and there is no memory for the lines.
inline void AddLostLines(Twin& twin, u32 count)
{
    twin.allocator.fails = [](int, u32) { return true; };
    ASSERT_EQ(twin.raster.InsertLines(static_cast<i32>(twin.plain.height), &count), NoMemory);
    twin.allocator.fails = nullptr;
    u8* row = nullptr;
    ASSERT_EQ(twin.raster.LockLines(-1, &row, nullptr), NothingDone);
    ASSERT_EQ(twin.raster.UnlockAll(), Done);
}
