// The table of functions on pictures, called as a plugin calls it.

#include "plugin/FunctionTables.h"

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"
#include "platform/testing/Testing.h"
#include "plugin/PluginHeap.h"
#include "plugin/PluginObjects.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace
{

class RasterFunctions : public ::testing::Test
{
protected:
    RasterFunctions()
    {
        MemoryGauge::Sample();
        EXPECT_EQ(MakeHeap(), 1);
        WriteRasterFunctions(&table);
        WritePaletteFunctions(&palettes);
    }
    ~RasterFunctions() override
    {
        EXPECT_EQ(DropHeap(), 1);
        tavrix::testing::Reset();
        MemoryGauge::Sample();
    }

    TavrixImageHandle Make(u32 width, u32 height, u32 depth)
    {
        TavrixImageHandle image = nullptr;
        EXPECT_EQ(table.RasterCreate(&image), 1);
        EXPECT_EQ(table.RasterAlloc(image, width, height, depth), 1);
        return image;
    }
    RasterInfo InfoOf(TavrixImageHandle image)
    {
        RasterInfo info = {};
        info.size = 24;
        EXPECT_EQ(table.RasterGetInfo(image, &info), 1);
        return info;
    }
    /// Writes `value` into the first byte of a line.
    void Mark(TavrixImageHandle image, i32 line, u8 value)
    {
        void* bytes = nullptr;
        ASSERT_EQ(table.RasterLockLines(image, line, &bytes, nullptr), 1);
        *static_cast<u8*>(bytes) = value;
        EXPECT_EQ(table.RasterUnlockLines(image, line, 1), 1);
    }
    u8 MarkOf(TavrixImageHandle image, i32 line)
    {
        void* bytes = nullptr;
        EXPECT_EQ(table.RasterLockLines(image, line, &bytes, nullptr), 1);
        const u8 value = *static_cast<u8*>(bytes);
        EXPECT_EQ(table.RasterUnlockLines(image, line, 1), 1);
        return value;
    }
    std::string Marks(TavrixImageHandle image)
    {
        std::string marks;
        for (u32 i = 0; i < InfoOf(image).height; ++i)
            marks += static_cast<char>(MarkOf(image, static_cast<i32>(i)));
        return marks;
    }
    /// A picture whose lines are marked with the characters of `marks`.
    TavrixImageHandle MakeMarked(const std::string& marks)
    {
        TavrixImageHandle image = Make(2, static_cast<u32>(marks.size()), 24);
        for (size_t i = 0; i < marks.size(); ++i)
            Mark(image, static_cast<i32>(i), static_cast<u8>(marks[i]));
        return image;
    }

    tavrix::testing::Scope scope;
    RasterFunctionTable table;
    PaletteFunctionTable palettes;
};

TEST_F(RasterFunctions, TheTableBeginsWithItsSize)
{
    EXPECT_EQ(table.size, sizeof(void*) == 8 ? 136u : 68u);
}

TEST_F(RasterFunctions, EachRefusesANullPicture)
{
    u32 count = 1;
    u32 value = 0;
    void* line = nullptr;
    RasterInfo info = {};
    TavrixImageHandle other = Make(1, 1, 24);
    EXPECT_EQ(table.RasterCreate(nullptr), -1);
    EXPECT_EQ(table.RasterDestroy(nullptr), -1);
    EXPECT_EQ(table.RasterAlloc(nullptr, 1, 1, 24), -1);
    EXPECT_EQ(table.RasterFree(nullptr), -1);
    EXPECT_EQ(table.RasterCopy(nullptr, other), -1);
    EXPECT_EQ(table.RasterCopy(other, nullptr), -1);
    EXPECT_EQ(table.RasterInsertLines(nullptr, 0, &count), -1);
    EXPECT_EQ(table.RasterDeleteLines(nullptr, 0, &count), -1);
    EXPECT_EQ(table.RasterSwapLines(nullptr, 0, 0), -1);
    EXPECT_EQ(table.RasterGetInfo(nullptr, &info), -1);
    EXPECT_EQ(table.RasterLockLines(nullptr, 0, &line, &count), -1);
    EXPECT_EQ(table.RasterUnlockLines(nullptr, 0, 1), -1);
    EXPECT_EQ(table.RasterGetPalette(nullptr, nullptr), -1);
    EXPECT_EQ(table.RasterSetPalette(nullptr, nullptr), -1);
    EXPECT_EQ(table.RasterSetPalette(other, nullptr), -1);
    EXPECT_EQ(table.RasterStretch(nullptr, other, 0, 0, 0, 0, 0, 0, 0, 0), -1);
    EXPECT_EQ(table.RasterStretch(other, nullptr, 0, 0, 0, 0, 0, 0, 0, 0), -1);
    EXPECT_EQ(table.RasterGetPixel(nullptr, 0, 0, &value), -1);
    EXPECT_EQ(table.RasterSetPixel(nullptr, 0, 0, 0), -1);
}

TEST_F(RasterFunctions, DestroyingClearsTheHandleAndTakesANullOne)
{
    TavrixImageHandle image = Make(3, 3, 24);
    EXPECT_EQ(table.RasterDestroy(&image), 1);
    EXPECT_EQ(image, nullptr);
    EXPECT_EQ(table.RasterDestroy(&image), 1);
}

TEST_F(RasterFunctions, APictureIsDestroyedOnce)
{
    TavrixImageHandle image = Make(3, 3, 24);
    TavrixImageHandle again = image;
    EXPECT_EQ(table.RasterDestroy(&image), 1);
    EXPECT_EQ(table.RasterDestroy(&again), -1);
    EXPECT_NE(again, nullptr);
}

TEST_F(RasterFunctions, ThePictureOfTheHostIsNotDestroyed)
{
    Raster hosts;
    ASSERT_EQ(hosts.Create(4, 2, 24, nullptr, nullptr), 1);
    LendPluginImage(&hosts);
    TavrixImageHandle handle = ToHandle(&hosts);
    EXPECT_EQ(table.RasterDestroy(&handle), -1);
    EXPECT_EQ(handle, ToHandle(&hosts));
    EXPECT_EQ(InfoOf(handle).width, 4u);
}

TEST_F(RasterFunctions, CreatingWithoutMemoryGivesANullHandle)
{
    tavrix::testing::SetAllocationFault([](SIZE_T) { return true; });
    TavrixImageHandle image = reinterpret_cast<TavrixImageHandle>(&table);
    EXPECT_EQ(table.RasterCreate(&image), -2);
    EXPECT_EQ(image, nullptr);
}

TEST_F(RasterFunctions, APictureThatFoundNoMemoryForItsPaletteTakesNoLines)
{
    // The second block of a picture is its palette's.
    int blocks = 0;
    tavrix::testing::SetAllocationFault([&](SIZE_T) { return ++blocks == 2; });
    TavrixImageHandle image = nullptr;
    ASSERT_EQ(table.RasterCreate(&image), 1);
    tavrix::testing::SetAllocationFault(nullptr);
    ASSERT_EQ(table.RasterGetPalette(image, nullptr), -2);
    EXPECT_EQ(table.RasterAlloc(image, 20, 2, 24), -2);
    u32 count = 3;
    EXPECT_EQ(table.RasterInsertLines(image, 0, &count), -3);
    EXPECT_EQ(table.RasterSetPixel(image, 5, 0, 0x01020304), -1);
    EXPECT_EQ(table.RasterDestroy(&image), 1);
}

TEST_F(RasterFunctions, CreatingBetweenCallsGivesANullHandle)
{
    ASSERT_EQ(DropHeap(), 1);
    TavrixImageHandle image = reinterpret_cast<TavrixImageHandle>(&table);
    EXPECT_EQ(table.RasterCreate(&image), -2);
    EXPECT_EQ(image, nullptr);
    ASSERT_EQ(MakeHeap(), 1);
}

TEST_F(RasterFunctions, AllocTakesTheFourDepthsAndTheirStrides)
{
    const struct {
        u32 depth;
        u32 stride;
    } cases[] = {{8, 8}, {16, 12}, {24, 16}, {32, 20}}; // 5 pixels
    for (const auto& each : cases) {
        const RasterInfo info = InfoOf(Make(5, 3, each.depth));
        EXPECT_EQ(info.size, 24u);
        EXPECT_EQ(info.width, 5u);
        EXPECT_EQ(info.height, 3u);
        EXPECT_EQ(info.depth, each.depth);
        EXPECT_EQ(info.stride, each.stride) << each.depth;
        EXPECT_EQ(info.colorCount, 0u);
    }
    TavrixImageHandle image = Make(1, 1, 8);
    for (u32 depth : {0u, 1u, 4u, 12u, 23u, 25u, 64u})
        EXPECT_EQ(table.RasterAlloc(image, 5, 3, depth), -1) << depth;
}

TEST_F(RasterFunctions, AllocReplacesOldLinesByBlankOnes)
{
    TavrixImageHandle image = MakeMarked("abc");
    ASSERT_EQ(table.RasterAlloc(image, 2, 2, 24), 1);
    EXPECT_EQ(Marks(image), std::string(2, '\0'));
}

TEST_F(RasterFunctions, AllocRefusesASideBeyondSixteenBits)
{
    TavrixImageHandle image = MakeMarked("abc");
    EXPECT_EQ(table.RasterAlloc(image, 65536, 1, 24), -1);
    EXPECT_EQ(InfoOf(image).height, 0u);
    EXPECT_EQ(table.RasterAlloc(image, 1, 65536, 8), -1);
    EXPECT_EQ(table.RasterAlloc(image, 0xFFFFFFFF, 0xFFFFFFFF, 32), -1);
    EXPECT_EQ(table.RasterAlloc(image, 0x80000000, 1, 8), -1);
    EXPECT_EQ(table.RasterAlloc(image, 65535, 1, 32), 1);
    EXPECT_EQ(InfoOf(image).stride, 262140u);
}

TEST_F(RasterFunctions, AFreedPictureTakesLinesAgain)
{
    TavrixImageHandle image = MakeMarked("ab");
    void* line = nullptr;
    EXPECT_EQ(table.RasterFree(image), 1);
    EXPECT_EQ(table.RasterLockLines(image, 0, &line, nullptr), -3);
    EXPECT_EQ(table.RasterAlloc(image, 1, 1, 8), 1);
    EXPECT_EQ(table.RasterLockLines(image, 0, &line, nullptr), 1);
}

TEST_F(RasterFunctions, LinesOfAFreshPictureLieInFilesWhenMemoryIsShort)
{
    namespace fs = std::filesystem;
    tavrix::testing::SetFreeMemory(0);
    MemoryGauge::Sample();
    const fs::path folder = tavrix::testing::HostPath(u"\\Temp");
    const auto files = [&folder] {
        int found = 0;
        for (const auto& entry : fs::directory_iterator(folder))
            found += entry.path().extension() == ".tmp";
        return found;
    };
    TavrixImageHandle image = Make(4, 3, 24);
    EXPECT_EQ(files(), 3);
    Mark(image, 0, 'q');
    EXPECT_EQ(files(), 3);
    EXPECT_EQ(MarkOf(image, 0), 'q');
    EXPECT_EQ(table.RasterFree(image), 1);
    EXPECT_EQ(files(), 0);
}

TEST_F(RasterFunctions, CopyGivesSizeDepthLinesAndPalette)
{
    TavrixImageHandle source = MakeMarked("abcd");
    TavrixImageHandle target = Make(9, 9, 8);
    TavrixPaletteHandle palette = nullptr;
    ASSERT_EQ(palettes.PaletteCreate(&palette), 1);
    ASSERT_EQ(palettes.PaletteAlloc(palette, 2), 1);
    ASSERT_EQ(palettes.PaletteAddEntry(palette, 1, 2, 3, 4), 1);
    ASSERT_EQ(table.RasterSetPalette(source, palette), 1);

    EXPECT_EQ(table.RasterCopy(target, source), 1);
    const RasterInfo info = InfoOf(target);
    EXPECT_EQ(info.width, 2u);
    EXPECT_EQ(info.height, 4u);
    EXPECT_EQ(info.depth, 24u);
    EXPECT_EQ(info.colorCount, 1u);
    EXPECT_EQ(Marks(target), "abcd");
    // The lines are moved, not doubled: one stays behind.
    EXPECT_EQ(InfoOf(source).height, 1u);
    EXPECT_EQ(table.RasterDestroy(&source), 1);
    EXPECT_EQ(Marks(target), "abcd");
}

TEST_F(RasterFunctions, CopyingAPictureOntoItselfChangesNothing)
{
    TavrixImageHandle image = MakeMarked("abcd");
    EXPECT_EQ(table.RasterCopy(image, image), 1);
    EXPECT_EQ(Marks(image), "abcd");
}

TEST_F(RasterFunctions, InsertsLinesAlsoBehindTheLast)
{
    TavrixImageHandle image = MakeMarked("ab");
    u32 two = 2;
    EXPECT_EQ(table.RasterInsertLines(image, 1, nullptr), 1);
    EXPECT_EQ(Marks(image), std::string("a\0b", 3));
    EXPECT_EQ(table.RasterInsertLines(image, 3, &two), 1);
    EXPECT_EQ(Marks(image), std::string("a\0b\0\0", 5));
    EXPECT_EQ(table.RasterInsertLines(image, 6, nullptr), -1);
    EXPECT_EQ(table.RasterInsertLines(image, -5, nullptr), 1);
    EXPECT_EQ(Marks(image), std::string("\0a\0b\0\0", 6));
}

TEST_F(RasterFunctions, InsertRefusesMoreLinesThanAPictureMayHave)
{
    TavrixImageHandle image = MakeMarked("ab");
    for (u32 count : {65534u, 0x7FFFFFFFu, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        u32 wanted = count;
        EXPECT_EQ(table.RasterInsertLines(image, 0, &wanted), -1) << count;
    }
    EXPECT_EQ(Marks(image), "ab");
}

TEST_F(RasterFunctions, LineFunctionsNeedAllocatedLines)
{
    TavrixImageHandle image = nullptr;
    ASSERT_EQ(table.RasterCreate(&image), 1);
    u32 many = 0xFFFFFFFF;
    void* line = nullptr;
    EXPECT_EQ(table.RasterInsertLines(image, 0, nullptr), -3);
    EXPECT_EQ(table.RasterInsertLines(image, 0, &many), -3);
    EXPECT_EQ(table.RasterDeleteLines(image, 0, nullptr), -3);
    EXPECT_EQ(table.RasterSwapLines(image, 0, 0), -3);
    EXPECT_EQ(table.RasterLockLines(image, 0, &line, nullptr), -3);
    EXPECT_EQ(table.RasterUnlockLines(image, 0, 1), -3);
}

TEST_F(RasterFunctions, DeletesAndSwapsLines)
{
    TavrixImageHandle image = MakeMarked("abcdef");
    u32 two = 2;
    EXPECT_EQ(table.RasterDeleteLines(image, 1, nullptr), 1);
    EXPECT_EQ(Marks(image), "acdef");
    EXPECT_EQ(table.RasterDeleteLines(image, 0, &two), 1);
    EXPECT_EQ(Marks(image), "def");
    EXPECT_EQ(table.RasterDeleteLines(image, 3, nullptr), -1);
    EXPECT_EQ(table.RasterSwapLines(image, 0, -1), 1);
    EXPECT_EQ(Marks(image), "fed");
    EXPECT_EQ(table.RasterSwapLines(image, 0, 3), -1);
}

TEST_F(RasterFunctions, AbsurdDeleteCountsStayInsideThePicture)
{
    for (u32 count : {3u, 4u, 100u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        TavrixImageHandle image = MakeMarked("abc");
        u32 wanted = count;
        (void)table.RasterDeleteLines(image, 0, &wanted);
        EXPECT_LE(InfoOf(image).height, 3u) << count;
        (void)Marks(image);
        EXPECT_EQ(table.RasterDestroy(&image), 1);
    }
}

TEST_F(RasterFunctions, GetInfoFillsNoMoreThanWasAsked)
{
    TavrixImageHandle image = Make(5, 3, 24);
    RasterInfo info = {12, 77, 77, 77, 77, 77};
    EXPECT_EQ(table.RasterGetInfo(image, &info), 1);
    EXPECT_EQ(info.size, 24u);
    EXPECT_EQ(info.width, 5u);
    EXPECT_EQ(info.height, 3u);
    EXPECT_EQ(info.depth, 77u);
    EXPECT_EQ(info.stride, 77u);
    EXPECT_EQ(info.colorCount, 77u);
    EXPECT_EQ(table.RasterGetInfo(image, nullptr), -4);
}

TEST_F(RasterFunctions, LocksAreCutAtTheEndOfThePicture)
{
    TavrixImageHandle image = MakeMarked("abcde");
    void* lines[5] = {};
    u32 count = 5;
    EXPECT_EQ(table.RasterLockLines(image, 3, lines, &count), 1);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(*static_cast<u8*>(lines[0]), 'd');
    EXPECT_EQ(*static_cast<u8*>(lines[1]), 'e');
    EXPECT_EQ(lines[2], nullptr);
}

TEST_F(RasterFunctions, LineNumbersCountFromTheEndWhenNegative)
{
    TavrixImageHandle image = MakeMarked("abcde");
    void* line = nullptr;
    EXPECT_EQ(table.RasterLockLines(image, -1, &line, nullptr), 1);
    EXPECT_EQ(*static_cast<u8*>(line), 'e');
    EXPECT_EQ(table.RasterLockLines(image, -5, &line, nullptr), 1);
    EXPECT_EQ(*static_cast<u8*>(line), 'a');
    EXPECT_EQ(table.RasterLockLines(image, 5, &line, nullptr), -1);
    EXPECT_EQ(table.RasterUnlockLines(image, 5, 1), -1);
    EXPECT_EQ(table.RasterLockLines(image, -6, &line, nullptr), -1);
    EXPECT_EQ(table.RasterLockLines(image, 0, nullptr, nullptr), -4);
}

TEST_F(RasterFunctions, UnlockingARunThatReachesTheLastLineUnlocksFewer)
{
    tavrix::testing::SetFreeMemory(0);
    MemoryGauge::Sample();
    TavrixImageHandle image = Make(2, 3, 24);
    void* line = nullptr;
    ASSERT_EQ(table.RasterLockLines(image, 2, &line, nullptr), 1);
    // Memory is short, so that an unlocked line would leave it; this one stays where it was.
    EXPECT_EQ(table.RasterUnlockLines(image, 2, 1), 1);
    void* again = nullptr;
    ASSERT_EQ(table.RasterLockLines(image, 2, &again, nullptr), 1);
    EXPECT_EQ(again, line);
}

TEST_F(RasterFunctions, PalettesGoInAndOut)
{
    TavrixImageHandle image = Make(2, 2, 8);
    TavrixPaletteHandle in = nullptr;
    TavrixPaletteHandle out = nullptr;
    ASSERT_EQ(palettes.PaletteCreate(&in), 1);
    ASSERT_EQ(palettes.PaletteCreate(&out), 1);
    EXPECT_EQ(table.RasterGetPalette(image, nullptr), 0);
    const PaletteEntry entries[2] = {{1, 2, 3, 4}, {250, 251, 252, 253}};
    ASSERT_EQ(palettes.PaletteSetEntries(in, entries, 2), 1);
    EXPECT_EQ(table.RasterSetPalette(image, in), 1);
    EXPECT_EQ(table.RasterGetPalette(image, nullptr), 2);
    EXPECT_EQ(InfoOf(image).colorCount, 2u);
    EXPECT_EQ(table.RasterGetPalette(image, out), 1);
    PaletteEntry got[2] = {};
    EXPECT_EQ(palettes.PaletteGetEntries(out, nullptr), 2);
    EXPECT_EQ(palettes.PaletteGetEntries(out, got), 1);
    EXPECT_EQ(got[1].red, 250u);
    EXPECT_EQ(got[1].fourth, 253u);
}

TEST_F(RasterFunctions, StretchesBetweenInclusiveRectangles)
{
    // Two pixels side by side, to four: each twice.
    TavrixImageHandle source = Make(2, 1, 24);
    TavrixImageHandle target = Make(4, 1, 24);
    ASSERT_EQ(table.RasterSetPixel(source, 0, 0, 0x11223300), 1);
    ASSERT_EQ(table.RasterSetPixel(source, 1, 0, 0x44556600), 1);
    EXPECT_EQ(table.RasterStretch(source, target, 0, 0, 1, 0, 0, 0, 3, 0), 1);
    const u32 expected[4] = {0x112233FF, 0x112233FF, 0x445566FF, 0x445566FF};
    for (i32 x = 0; x < 4; ++x) {
        u32 value = 0;
        EXPECT_EQ(table.RasterGetPixel(target, x, 0, &value), 1);
        EXPECT_EQ(value, expected[x]) << x;
    }
    EXPECT_EQ(table.RasterStretch(source, Make(4, 1, 32), 0, 0, 1, 0, 0, 0, 3, 0), -1);
    EXPECT_EQ(table.RasterStretch(Make(2, 1, 8), target, 0, 0, 1, 0, 0, 0, 3, 0), -1);
}

TEST_F(RasterFunctions, PixelsAreTheStoredBytesInOrder)
{
    for (u32 depth : {24u, 32u}) {
        TavrixImageHandle image = Make(2, 1, depth);
        EXPECT_EQ(table.RasterSetPixel(image, 1, 0, 0x11223344), 1);
        void* line = nullptr;
        ASSERT_EQ(table.RasterLockLines(image, 0, &line, nullptr), 1);
        const u8* bytes = static_cast<u8*>(line) + depth / 8;
        EXPECT_EQ(bytes[0], 0x33); // bits 8 to 15
        EXPECT_EQ(bytes[1], 0x22);
        EXPECT_EQ(bytes[2], 0x11);
        if (depth == 32) {
            EXPECT_EQ(bytes[3], 0x44);
        }
        u32 value = 0;
        EXPECT_EQ(table.RasterGetPixel(image, 1, 0, &value), 1);
        EXPECT_EQ(value, depth == 32 ? 0x11223344u : 0x112233FFu);
    }
}

TEST_F(RasterFunctions, PixelsAreRefusedOutsideAndAtOtherDepths)
{
    TavrixImageHandle image = Make(2, 3, 24);
    u32 value = 7;
    EXPECT_EQ(table.RasterGetPixel(image, 0, 0, nullptr), -2);
    for (const auto& [x, y] : {std::pair{2, 0}, {0, 3}, {-1, 0}, {0, -1}}) {
        EXPECT_EQ(table.RasterGetPixel(image, x, y, &value), -1) << x << "," << y;
        EXPECT_EQ(table.RasterSetPixel(image, x, y, 0), -1) << x << "," << y;
    }
    for (u32 depth : {8u, 16u}) {
        EXPECT_EQ(table.RasterGetPixel(Make(2, 3, depth), 0, 0, &value), -1);
        EXPECT_EQ(table.RasterSetPixel(Make(2, 3, depth), 0, 0, 0), -1);
    }
    EXPECT_EQ(value, 7u);
}

} // namespace
