// Sweeps that hold an operation on a rectangle of one raster against its formula: all depths, all
// small widths, rectangles on all sides, short memory, lines that do not come.
#pragma once

#include "Pictures.h"

using AreaOnRaster = std::function<i32(Raster&, u32 color, PixelRect)>;
using AreaOnPlain = std::function<i32(PlainRaster&, u32 color, PixelRect)>;

inline constexpr u32 AllDepths[] = {8, 16, 24, 32};

/// 1 to 33 and two large ones.
inline std::vector<u32> SweptWidths()
{
    std::vector<u32> widths;
    for (u32 width = 1; width <= 33; ++width)
        widths.push_back(width);
    widths.push_back(257);
    widths.push_back(1000);
    return widths;
}

/// Any colour, often opaque or without any alpha.
inline u32 SomeColor(Places& places)
{
    const u32 color = places.Word();
    const u32 draw = places.Below(8);
    return draw < 3 ? color | 255 : draw == 3 ? color & ~255u : color;
}

/// Every second one inside the raster, else anywhere.
inline i32 SomePlace(Places& places, u32 size)
{
    return size != 0 && places.Below(2) == 0 ? static_cast<i32>(places.Below(size))
                                             : places.Anywhere(size);
}

inline PixelRect SomeArea(Places& places, u32 width, u32 height)
{
    return {SomePlace(places, width), SomePlace(places, height), SomePlace(places, width),
            SomePlace(places, height)};
}

inline std::string Tell(const PixelRect& area)
{
    return "{" + std::to_string(area.left) + ", " + std::to_string(area.top) + ", " +
           std::to_string(area.right) + ", " + std::to_string(area.bottom) + "}";
}

inline std::string Tell(const PlainRaster& plain)
{
    return std::to_string(plain.width) + " x " + std::to_string(plain.height) + " at " +
           std::to_string(plain.depth);
}

/// Runs both sides once.
inline void RunArea(Twin& twin, const AreaOnRaster& real, const AreaOnPlain& formula, u32 color,
                    PixelRect area)
{
    EXPECT_EQ(real(twin.raster, color, area), formula(twin.plain, color, area))
        << Tell(twin.plain) << ", colour " << std::hex << color << std::dec << ", " << Tell(area);
}

/// All depths, the refused ones too, and all widths.
inline void SweepAreas(const AreaOnRaster& real, const AreaOnPlain& formula, u32 seed)
{
    Places places(seed);
    for (const u32 width : SweptWidths())
        for (const u32 depth : AllDepths)
            for (int turn = 0; turn < 3; ++turn) {
                const u32 height = 1 + places.Below(7);
                Twin twin(width, height, depth, places.Word());
                std::string told = Tell(twin.plain);
                for (int call = 0; call < 3; ++call) {
                    const PixelRect area = SomeArea(places, width, height);
                    told += ", " + Tell(area);
                    RunArea(twin, real, formula, SomeColor(places), area);
                }
                ExpectSame({&twin});
                ASSERT_FALSE(::testing::Test::HasFailure()) << told;
            }
}

/// Every combination of the numbers that arithmetic goes wrong on.
inline void SweepExtremeAreas(const AreaOnRaster& real, const AreaOnPlain& formula)
{
    constexpr i32 Smallest = static_cast<i32>(0x80000000);
    constexpr i32 Largest = 0x7FFFFFFF;
    constexpr i32 Numbers[] = {Smallest, Smallest + 1, -1, 0, 1, 3, Largest};
    for (const u32 depth : {24u, 32u}) {
        for (const i32 left : Numbers)
            for (const i32 top : Numbers) {
                Twin twin(4, 3, depth, 5);
                for (const i32 right : Numbers)
                    for (const i32 bottom : Numbers)
                        RunArea(twin, real, formula, 0x12345670, {left, top, right, bottom});
                ExpectSame({&twin});
                ASSERT_FALSE(::testing::Test::HasFailure()) << left << ' ' << top;
            }
    }
}

/// On rasters whose lines go to files as soon as they are released.
inline void SweepPagedAreas(const AreaOnRaster& real, const AreaOnPlain& formula, u32 seed)
{
    Places places(seed);
    for (const u32 width : {1u, 2u, 5u, 12u, 33u})
        for (const u32 height : {1u, 2u, 6u})
            for (const u32 depth : AllDepths) {
                Twin twin(width, height, depth, places.Word(), Storage::Paging);
                for (int call = 0; call < 3; ++call) {
                    {
                        const WithShortMemory memory;
                        RunArea(twin, real, formula, SomeColor(places),
                                SomeArea(places, width, height));
                        RunArea(twin, real, formula, SomeColor(places),
                                {0, 0, static_cast<i32>(width) - 1, static_cast<i32>(height) - 1});
                    }
                    ExpectSame({&twin});
                    ASSERT_FALSE(::testing::Test::HasFailure()) << Tell(twin.plain);
                }
            }
}

/// With every line refused in turn.
inline void SweepRefusedAreas(const AreaOnRaster& real, const AreaOnPlain& formula, u32 seed)
{
    constexpr u32 Width = 10;
    constexpr u32 Height = 6;
    Places places(seed);
    std::vector<PixelRect> areas = {
        {0, 0, 9, 5}, {-1, -1, 10, 6}, {2, 1, 7, 4}, {2, -1, 7, 4}, {2, 1, 7, 6}};
    for (int i = 0; i < 4; ++i)
        areas.push_back(SomeArea(places, Width, Height));
    bool opaque = false;
    for (const u32 depth : AllDepths)
        for (u32 line = 0; line < (depth < 24 ? 1 : Height); ++line)
            for (const PixelRect& area : areas) {
                Twin twin(Width, Height, depth, line + 1, Storage::Paging);
                twin.Refuse(line);
                RunArea(twin, real, formula, opaque ? 0x123456FF : 0x1234567F, area);
                ExpectSame({&twin});
                ASSERT_FALSE(::testing::Test::HasFailure())
                    << Tell(twin.plain) << ", line " << line << ", " << Tell(area);
                opaque = !opaque;
            }
}

/// A lost line ends the work with 0; the rows above it are done.
inline void ExpectLostLineEndsTheWork(const AreaOnRaster& real, const AreaOnPlain& formula)
{
    for (const u32 depth : {24u, 32u}) {
        Twin twin(4, 3, depth, 5);
        // A frame that goes on below is what the rows above the lost one show.
        PlainRaster taller;
        taller.Make(4, 5, depth);
        for (u32 y = 0; y < 3; ++y)
            taller.rows[y] = twin.plain.rows[y];
        AddLostLines(twin, 2);
        EXPECT_EQ(real(twin.raster, 0x12345670, {0, 0, 2, 4}), NothingDone);
        EXPECT_EQ(formula(taller, 0x12345670, {0, 0, 2, 4}), Done);
        for (u32 y = 0; y < 3; ++y)
            EXPECT_EQ(RowOf(twin.raster, static_cast<i32>(y)), taller.rows[y]) << "line " << y;
    }
}
