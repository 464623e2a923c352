// A plugin out of its mind: thousands of calls of every function of both tables in no order, with
// handles that are good, gone, made up or null and with numbers from the ends of their ranges. The
// host refuses every handle that is not good, never touches what is not its own (the sanitizers
// watch), and has everything back when the call is over.

#include "plugin/FunctionTables.h"

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"
#include "platform/testing/Testing.h"
#include "plugin/PluginHeap.h"
#include "plugin/PluginObjects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>
#include <vector>

namespace
{

constexpr u32 MostLines = 65536;
constexpr u32 MostEntries = 300;

class Walk
{
public:
    Walk(u32 seed, bool memoryIsShort, Raster* lent)
        : random(seed), isShort(memoryIsShort), lines(MostLines), entries(MostEntries + 1)
    {
        WriteRasterFunctions(&rasters);
        WritePaletteFunctions(&palettes);
        images.push_back(ToHandle(lent));
    }

    void Step()
    {
        switch (random() % 28) {
        case 0:
        case 26:
            MakeImage();
            break;
        case 1:
        case 27:
            MakePalette();
            break;
        case 2:
            DestroyImage();
            break;
        case 3:
            DestroyPalette();
            break;
        case 4:
        case 5:
            AllocImage();
            break;
        case 6:
            Judge(rasters.RasterFree(Image()));
            break;
        case 7: {
            const TavrixImageHandle target = Image();
            const bool good = isGood;
            const i32 result = rasters.RasterCopy(target, Image());
            isGood = isGood && good;
            Judge(result);
            break;
        }
        case 8: {
            u32 count = Count();
            Judge(rasters.RasterInsertLines(Image(), Line(), Chance(4) ? nullptr : &count));
            break;
        }
        case 9: {
            u32 count = Any();
            Judge(rasters.RasterDeleteLines(Image(), Line(), Chance(4) ? nullptr : &count));
            break;
        }
        case 10:
            Judge(rasters.RasterSwapLines(Image(), Line(), Line()));
            break;
        case 11: {
            RasterInfo info = {};
            info.size = Chance(2) ? sizeof(info) : Any();
            Judge(rasters.RasterGetInfo(Image(), Chance(8) ? nullptr : &info));
            break;
        }
        case 12:
        case 13:
            LockLines();
            break;
        case 14:
            Judge(rasters.RasterUnlockLines(Image(), Line(), Any()));
            break;
        case 15: {
            const TavrixImageHandle image = Image();
            const bool good = isGood;
            const TavrixPaletteHandle palette = Palette();
            const i32 result = rasters.RasterGetPalette(image, palette);
            isGood = good && (isGood || palette == nullptr);
            Judge(result);
            break;
        }
        case 16: {
            const TavrixImageHandle image = Image();
            const bool good = isGood;
            const i32 result = rasters.RasterSetPalette(image, Palette());
            isGood = isGood && good;
            Judge(result);
            break;
        }
        case 17: {
            const TavrixImageHandle source = Image();
            const bool good = isGood;
            const TavrixImageHandle target = Image();
            isGood = isGood && good;
            Judge(rasters.RasterStretch(source, target, Place(), Place(), Place(), Place(), Place(),
                                        Place(), Place(), Place()));
            break;
        }
        case 18: {
            u32 value = 0;
            Judge(rasters.RasterGetPixel(Image(), Place(), Place(), Chance(8) ? nullptr : &value));
            break;
        }
        case 19:
            Judge(rasters.RasterSetPixel(Image(), Place(), Place(), Any()));
            break;
        case 20:
            Judge(palettes.PaletteAlloc(Palette(), Capacity()));
            break;
        case 21:
            if (Chance(2)) {
                Judge(palettes.PaletteFree(Palette()));
            } else {
                const TavrixPaletteHandle target = Palette();
                const bool good = isGood;
                const i32 result = palettes.PaletteCopy(target, Palette());
                isGood = isGood && good;
                Judge(result);
            }
            break;
        case 22:
            Judge(palettes.PaletteAddEntry(Palette(), Any(), Any(), Any(), Any()));
            break;
        case 23:
            // Told of more entries than there can be room for, it stops where the room ends.
            if (Chance(2))
                Judge(palettes.PaletteAddEntries(Palette(), Entries(), Any()));
            else
                Judge(palettes.PaletteSetEntries(Palette(), Entries(), Capacity()));
            break;
        case 24:
            Judge(palettes.PaletteGetEntries(Palette(), Entries()));
            break;
        default: {
            PaletteEntry* inside = nullptr;
            const TavrixPaletteHandle palette = Palette();
            const i32 result = palettes.PaletteGetPointer(palette, Chance(8) ? nullptr : &inside);
            Judge(result);
            if (result > 0)
                for (i32 i = 0; i < palettes.PaletteGetEntries(palette, nullptr); ++i)
                    inside[i].fourth = Any();
            break;
        }
        }
    }

    u32 refused = 0;
    u32 done = 0;

private:
    bool Chance(u32 oneIn) { return random() % oneIn == 0; }

    /// What the host answered, and whether it was allowed to do anything.
    void Judge(i32 result)
    {
        if (!isGood) {
            EXPECT_LT(result, 0);
            ++refused;
        } else if (result > 0) {
            ++done;
        }
    }

    u32 Any()
    {
        static constexpr u32 ends[] = {0,          1,          2,          3,          255,
                                       65535,      65536,      0x7FFFFFFF, 0x80000000, 0xFFFFFFFE,
                                       0xFFFFFFFF, 0x55555556, 0x40000000, 0x10000001};
        return Chance(3) ? ends[random() % std::size(ends)] : static_cast<u32>(random() % 24);
    }
    i32 Line() { return Chance(4) ? static_cast<i32>(Any()) : static_cast<i32>(random() % 30) - 8; }
    i32 Place() { return Line(); }
    /// Lines to insert: few, or more than a picture may have.
    u32 Count()
    {
        const u32 count = Any();
        return count <= 255 || count > 65535 ? count : 5;
    }
    u32 Capacity()
    {
        const u32 capacity = Any();
        return capacity <= MostEntries || capacity > 0x10000000 ? capacity : MostEntries;
    }
    PaletteEntry* Entries() { return Chance(8) ? nullptr : entries.data(); }

    /// A picture's handle of any sort. `isGood` tells whether the host has to know it.
    TavrixImageHandle Image()
    {
        isGood = false;
        switch (random() % 12) {
        case 0:
            return nullptr;
        case 1:
            return reinterpret_cast<TavrixImageHandle>(Garbage());
        case 2:
            return staleImages.empty() ? nullptr : Stale(staleImages, images);
        case 3:
            return colors.empty()
                       ? nullptr
                       : reinterpret_cast<TavrixImageHandle>(colors[random() % colors.size()]);
        default:
            isGood = true;
            return images[random() % images.size()];
        }
    }
    TavrixPaletteHandle Palette()
    {
        isGood = false;
        const u32 sort = static_cast<u32>(random() % 12);
        if (sort == 0 || colors.empty())
            return nullptr;
        if (sort == 1)
            return reinterpret_cast<TavrixPaletteHandle>(Garbage());
        if (sort == 2)
            return staleColors.empty() ? nullptr : Stale(staleColors, colors);
        if (sort == 3)
            return reinterpret_cast<TavrixPaletteHandle>(images[random() % images.size()]);
        isGood = true;
        return colors[random() % colors.size()];
    }
    /// One that is gone; good all the same where a later object came to lie at its address.
    template <typename Handle>
    Handle Stale(const std::vector<Handle>& gone, const std::vector<Handle>& there)
    {
        const Handle handle = gone[random() % gone.size()];
        isGood = std::find(there.begin(), there.end(), handle) != there.end();
        return handle;
    }
    uintptr_t Garbage()
    {
        const uintptr_t near = reinterpret_cast<uintptr_t>(images[random() % images.size()]);
        return Chance(2) ? near + 1 + random() % 15 : static_cast<uintptr_t>(random()) << 17 | 1;
    }

    void MakeImage()
    {
        TavrixImageHandle made = nullptr;
        if (images.size() > 12)
            return;
        ASSERT_EQ(rasters.RasterCreate(&made), 1);
        images.push_back(made);
        // Most of them get lines, or too little would be done with them.
        if (!Chance(4))
            (void)rasters.RasterAlloc(made, 1 + random() % 20, 1 + random() % 20, 24);
    }
    void MakePalette()
    {
        TavrixPaletteHandle made = nullptr;
        if (colors.size() > 12)
            return;
        ASSERT_EQ(palettes.PaletteCreate(&made), 1);
        colors.push_back(made);
    }
    void DestroyImage()
    {
        TavrixImageHandle handle = Image();
        const TavrixImageHandle kept = handle;
        const bool hosts = handle == images.front();
        const i32 result = rasters.RasterDestroy(&handle);
        if (kept == nullptr) {
            EXPECT_EQ(result, 1);
        } else if (!isGood || hosts) {
            EXPECT_EQ(result, -1);
            EXPECT_EQ(handle, kept);
        } else {
            EXPECT_EQ(result, 1);
            EXPECT_EQ(handle, nullptr);
            images.erase(std::find(images.begin(), images.end(), kept));
            staleImages.push_back(kept);
        }
    }
    void DestroyPalette()
    {
        TavrixPaletteHandle handle = Palette();
        const TavrixPaletteHandle kept = handle;
        const i32 result = palettes.PaletteDestroy(&handle);
        if (!isGood) {
            EXPECT_EQ(result, -1);
            EXPECT_EQ(handle, kept);
        } else {
            EXPECT_EQ(result, 1);
            colors.erase(std::find(colors.begin(), colors.end(), kept));
            staleColors.push_back(kept);
        }
    }
    void AllocImage()
    {
        static constexpr u32 depths[] = {8, 16, 24, 24, 24, 32, 0, 7, 25, 0x18000018, 0xFFFFFFFF};
        static constexpr u32 lengths[] = {65535, 65536, 0x55555555, 0x7FFFFFFF, 0xFFFFFFFF};
        const u32 depth = depths[random() % std::size(depths)];
        u32 width = static_cast<u32>(random() % 24);
        u32 height = static_cast<u32>(random() % 24);
        if (Chance(6)) {
            width = lengths[random() % std::size(lengths)];
            height %= 3;
        } else if (Chance(12)) {
            height = lengths[random() % std::size(lengths)];
            width %= 3;
            // Each of its lines would be a file.
            if (isShort && height == 65535)
                height = 300;
        }
        Judge(rasters.RasterAlloc(Image(), width, height, depth));
    }
    void LockLines()
    {
        const TavrixImageHandle image = Image();
        const bool good = isGood;
        RasterInfo info = {};
        info.size = sizeof(info);
        const bool known = rasters.RasterGetInfo(image, &info) > 0;
        EXPECT_EQ(known, good);
        u32 count = Any();
        const bool one = Chance(4);
        const i32 result =
            rasters.RasterLockLines(image, Line(), lines.data(), one ? nullptr : &count);
        isGood = good;
        Judge(result);
        if (result < 1)
            return;
        const u32 locked = one ? 1 : count;
        EXPECT_LE(locked, std::max(info.height, 1u));
        for (u32 i = 0; i < locked; ++i)
            std::memset(lines[i], 0xA5, info.stride);
    }

    std::mt19937 random;
    bool isShort;
    bool isGood = false;
    std::vector<TavrixImageHandle> images; // the first is the host's
    std::vector<TavrixPaletteHandle> colors;
    std::vector<TavrixImageHandle> staleImages;
    std::vector<TavrixPaletteHandle> staleColors;
    std::vector<void*> lines;
    std::vector<PaletteEntry> entries;
    RasterFunctionTable rasters;
    PaletteFunctionTable palettes;
};

size_t LineFiles()
{
    size_t found = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(tavrix::testing::HostPath(u"\\Temp")))
        found += entry.path().extension() == ".tmp";
    return found;
}

void WalkAndLookBack(u32 seed, int steps, bool memoryIsShort)
{
    SCOPED_TRACE(seed);
    const auto before = tavrix::platform::CountHoldings();
    {
        Raster lent;
        ASSERT_EQ(lent.Create(20, 20, 24, u"\\Temp\\", nullptr), 1);
        ASSERT_EQ(MakeHeap(), 1);
        LendPluginImage(&lent);
        Walk walk(seed, memoryIsShort, &lent);
        for (int step = 0; step < steps && !::testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE(step);
            walk.Step();
        }
        EXPECT_GT(walk.refused, static_cast<u32>(steps) / 10);
        EXPECT_GT(walk.done, static_cast<u32>(steps) / 10);
        EXPECT_EQ(DropHeap(), 1);
        (void)lent.UnlockAll();
    }
    EXPECT_TRUE(tavrix::platform::CountHoldings() == before);
    EXPECT_EQ(LineFiles(), 0u);
}

class TableWalk : public ::testing::Test
{
protected:
    TableWalk() { MemoryGauge::Sample(); }
    ~TableWalk() override
    {
        tavrix::testing::Reset();
        MemoryGauge::Sample();
    }
    tavrix::testing::Scope scope;
};

TEST_F(TableWalk, NoCallsInNoOrderDoHarm)
{
    for (u32 seed = 1; seed <= 8 && !HasFailure(); ++seed)
        WalkAndLookBack(seed, 4000, false);
}

TEST_F(TableWalk, NorDoTheyWhereEveryLineLivesInAFile)
{
    tavrix::testing::SetFreeMemory(0);
    MemoryGauge::Sample();
    for (u32 seed = 11; seed <= 14 && !HasFailure(); ++seed)
        WalkAndLookBack(seed, 1500, true);
}

TEST_F(TableWalk, NorWhereBlocksFailNowAndThen)
{
    std::mt19937 random(3);
    for (u32 seed = 21; seed <= 40 && !HasFailure(); ++seed) {
        const auto before = tavrix::platform::CountHoldings();
        {
            Raster lent;
            ASSERT_EQ(lent.Create(20, 20, 24, nullptr, nullptr), 1);
            ASSERT_EQ(MakeHeap(), 1);
            LendPluginImage(&lent);
            RasterFunctionTable rasters;
            WriteRasterFunctions(&rasters);
            std::vector<TavrixImageHandle> images = {ToHandle(&lent)};
            tavrix::testing::SetAllocationFault([&](SIZE_T) { return random() % 40 == 0; });
            for (int step = 0; step < 2000; ++step) {
                const TavrixImageHandle image = images[random() % images.size()];
                u32 count = random() % 5;
                TavrixImageHandle made = nullptr;
                void* lines[256] = {};
                switch (random() % 8) {
                case 0:
                    if (images.size() < 10 && rasters.RasterCreate(&made) > 0)
                        images.push_back(made);
                    break;
                case 1:
                    (void)rasters.RasterAlloc(image, random() % 20, random() % 20, 24);
                    break;
                case 2:
                    (void)rasters.RasterInsertLines(image, static_cast<i32>(random() % 20), &count);
                    break;
                case 3:
                    (void)rasters.RasterDeleteLines(image, static_cast<i32>(random() % 20), &count);
                    break;
                case 4:
                    (void)rasters.RasterCopy(image, images[random() % images.size()]);
                    break;
                case 5:
                    (void)rasters.RasterLockLines(image, static_cast<i32>(random() % 20), lines,
                                                  &count);
                    break;
                case 6:
                    (void)rasters.RasterSwapLines(image, -1, static_cast<i32>(random() % 20));
                    break;
                default:
                    (void)rasters.RasterSetPixel(image, static_cast<i32>(random() % 20),
                                                 static_cast<i32>(random() % 20), 0x01020304);
                    break;
                }
            }
            tavrix::testing::SetAllocationFault(nullptr);
            EXPECT_EQ(DropHeap(), 1);
        }
        EXPECT_TRUE(tavrix::platform::CountHoldings() == before) << seed;
    }
}

} // namespace
