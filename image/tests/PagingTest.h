// What the tests of rasters share: short and plentiful memory, folders for line files seen from
// outside, pictures as plain bytes, and an allocator that counts and fails.
#pragma once

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"
#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

inline constexpr const WCHAR* FirstFolder = TEXT("\\Temp\\");
inline constexpr const WCHAR* SecondFolder = TEXT("\\Second Card\\Temp\\");
inline constexpr const WCHAR* MissingFolder = TEXT("\\No Such Card\\Temp\\");

/// A line of any raster here fits into this, so that the gauge never says no by chance.
inline void PlentyOfMemory()
{
    tavrix::testing::SetFreeMemory(1u << 30);
    MemoryGauge::Sample();
}

/// Exactly the reserve: no line fits.
inline void ShortMemory()
{
    tavrix::testing::SetFreeMemory(0xA0000);
    MemoryGauge::Sample();
}

/// Line files of a folder by name, with their sizes, as the host sees them.
inline std::map<std::string, size_t> FilesIn(const WCHAR* folder)
{
    std::map<std::string, size_t> files;
    std::error_code error;
    for (const auto& entry :
         std::filesystem::directory_iterator(tavrix::testing::HostPath(folder), error))
        if (entry.path().extension() == ".tmp")
            files[entry.path().filename().string()] = entry.file_size();
    return files;
}

inline std::string HostFile(const WCHAR* folder, const std::string& name)
{
    return (std::filesystem::path(tavrix::testing::HostPath(folder)) / name).string();
}

inline std::vector<u8> ReadHostFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Fills every line with bytes that depend on `seed`, the line and the column.
inline u8 PatternByte(u32 seed, u32 line, u32 column)
{
    return static_cast<u8>((seed * 131 + line * 37 + column * 11 + (line * column) / 3) ^
                           (seed >> 3));
}

inline RasterInfo InfoOf(Raster& raster)
{
    RasterInfo info = {};
    info.size = sizeof(info);
    EXPECT_EQ(raster.GetInfo(&info), 1);
    return info;
}

inline void FillPattern(Raster& raster, u32 seed)
{
    const RasterInfo info = InfoOf(raster);
    for (u32 y = 0; y < info.height; ++y) {
        u8* row = nullptr;
        ASSERT_EQ(raster.LockLines(static_cast<i32>(y), &row, nullptr), 1);
        for (u32 x = 0; x < info.stride; ++x)
            row[x] = PatternByte(seed, y, x);
        raster.ReleaseLines(static_cast<i32>(y), 1, 0);
    }
    ASSERT_EQ(raster.UnlockAll(), 1);
}

using Rows = std::vector<std::vector<u8>>;

inline std::vector<u8> RowOf(Raster& raster, i32 line)
{
    const RasterInfo info = InfoOf(raster);
    u8* row = nullptr;
    EXPECT_EQ(raster.LockLines(line, &row, nullptr), 1) << "line " << line;
    std::vector<u8> bytes(info.stride);
    if (row != nullptr && info.stride > 0)
        std::memcpy(bytes.data(), row, info.stride);
    raster.ReleaseLines(line, 1, 0);
    return bytes;
}

inline Rows RowsOf(Raster& raster)
{
    Rows rows;
    const RasterInfo info = InfoOf(raster);
    for (u32 y = 0; y < info.height; ++y)
        rows.push_back(RowOf(raster, static_cast<i32>(y)));
    raster.UnlockAll();
    return rows;
}

inline Rows PatternRows(u32 seed, u32 height, u32 stride)
{
    Rows rows(height, std::vector<u8>(stride));
    for (u32 y = 0; y < height; ++y)
        for (u32 x = 0; x < stride; ++x)
            rows[y][x] = PatternByte(seed, y, x);
    return rows;
}

inline constexpr u32 PagedStride = 16; // of 5 pixels at 24 bits

/// A raster of 5 pixels a line with the pattern of `seed`, all in memory.
inline void MakeFilled(Raster& raster, u32 height, u32 seed, const WCHAR* primary = FirstFolder,
                       const WCHAR* secondary = SecondFolder)
{
    PlentyOfMemory();
    ASSERT_EQ(raster.Create(5, height, 24, primary, secondary), 1);
    FillPattern(raster, seed);
}

inline std::vector<u8> PatternRow(u32 seed, u32 line)
{
    return PatternRows(seed, line + 1, PagedStride)[line];
}

/// Where a line's bytes are, or null. Leaves the line locked.
inline u8* AddressOf(Raster& raster, i32 line)
{
    u8* row = nullptr;
    (void)raster.LockLines(line, &row, nullptr);
    return row;
}

/// Counts blocks and fails on demand.
class CountingAllocator final : public Allocator
{
public:
    i32 Alloc(void** out, u32 size) override
    {
        ++asked;
        bytes += size;
        *out = nullptr;
        if (fails && fails(asked, size))
            return NoMemory;
        *out = std::calloc(1, size == 0 ? 1 : size);
        if (*out == nullptr)
            return NoMemory;
        ++outstanding;
        return Done;
    }
    i32 Free(void* block) override
    {
        --outstanding;
        std::free(block);
        return Done;
    }

    std::function<bool(int number, u32 size)> fails;
    int asked = 0;
    unsigned long long bytes = 0;
    int outstanding = 0;
};

/// Both folders exist and are empty at the start; hooks rest and no line file is left at the end.
class PagingTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ::CreateDirectoryW(TEXT("\\Second Card"), nullptr);
        ::CreateDirectoryW(TEXT("\\Second Card\\Temp"), nullptr);
        PlentyOfMemory();
        ASSERT_TRUE(std::filesystem::is_directory(tavrix::testing::HostPath(FirstFolder)));
        ASSERT_TRUE(std::filesystem::is_directory(tavrix::testing::HostPath(SecondFolder)));
        Clear();
    }
    void TearDown() override
    {
        tavrix::testing::Reset();
        MemoryGauge::Sample();
        EXPECT_TRUE(FilesIn(FirstFolder).empty());
        EXPECT_TRUE(FilesIn(SecondFolder).empty());
        Clear();
    }
    static void Clear()
    {
        for (const WCHAR* folder : {FirstFolder, SecondFolder})
            for (const auto& file : FilesIn(folder))
                std::filesystem::remove(HostFile(folder, file.first));
    }

    tavrix::testing::Scope scope;
};
