// Sweeps that hold a copy between two rasters against its formula: all pairs of depths, all small
// widths, runs on all sides, a raster under itself, short memory, lines that do not come.
#pragma once

#include "AreaSweep.h"
#include "PlainCopy.h"

/// What a copy is asked, as the rasters take it.
struct CopyRun {
    i32 x;
    i32 y;
    i32 width;
    i32 height;
    i32 targetX;
    i32 targetY;
    operator PlainRun() const { return {x, y, width, height, targetX, targetY}; }
};

/// An operation and its formula. `draw` is a number for whatever else the operation takes.
struct Copying {
    std::function<i32(Raster& source, const CopyRun&, Raster& target, u32 draw)> real;
    std::function<i32(PlainRaster& source, const CopyRun&, PlainRaster& target, u32 draw)> formula;
};

inline std::string Tell(const CopyRun& run)
{
    return "(" + std::to_string(run.x) + ", " + std::to_string(run.y) + ") " +
           std::to_string(run.width) + " x " + std::to_string(run.height) + " to (" +
           std::to_string(run.targetX) + ", " + std::to_string(run.targetY) + ")";
}

/// Mostly a run of which something is left.
inline CopyRun SomeRun(Places& places, const PlainRaster& source, const PlainRaster& target)
{
    const auto length = [&places](u32 size) {
        return places.Below(6) == 0 ? places.Anywhere(size)
                                    : static_cast<i32>(1 + places.Below(size + 3));
    };
    // Negative only: beyond the edge nothing is left.
    const auto place = [&places](u32 size) {
        const u32 draw = places.Below(8);
        if (draw == 0)
            return places.Anywhere(size);
        if (draw < 3)
            return -static_cast<i32>(places.Below(size + 2));
        return static_cast<i32>(places.Below(size));
    };
    return {place(source.width),   place(source.height), length(source.width),
            length(source.height), place(target.width),  place(target.height)};
}

/// Both sides once; the formula's result.
inline i32 RunCopy(Twin& source, Twin& target, const Copying& copying, const CopyRun& run,
                   u32 draw = 0)
{
    const i32 result = copying.real(source.raster, run, target.raster, draw);
    const i32 meant = copying.formula(source.plain, run, target.plain, draw);
    EXPECT_EQ(result, meant) << Tell(source.plain) << " to " << Tell(target.plain) << ": "
                             << Tell(run);
    return meant;
}

/// All pairs of depths and all widths; the other raster is larger or smaller.
inline void SweepCopies(const Copying& copying, u32 seed)
{
    Places places(seed);
    for (const u32 width : SweptWidths())
        for (const u32 depth : AllDepths)
            for (const u32 targetDepth : AllDepths)
                for (int turn = 0; turn < 2; ++turn) {
                    const u32 other = places.Below(2) == 0 ? width : 1 + places.Below(40);
                    Twin source(width, 1 + places.Below(6), depth, places.Word());
                    Twin target(other, 1 + places.Below(6), targetDepth, places.Word());
                    std::string told = Tell(source.plain) + " to " + Tell(target.plain);
                    for (int call = 0; call < 3; ++call) {
                        const CopyRun run = SomeRun(places, source.plain, target.plain);
                        told += ", " + Tell(run);
                        RunCopy(source, target, copying, run, places.Word());
                    }
                    ExpectSame({&source, &target});
                    ASSERT_FALSE(::testing::Test::HasFailure()) << told;
                }
}

/// A raster copied under itself, so that runs overlap.
inline void SweepCopiesUnderItself(const Copying& copying, u32 seed)
{
    Places places(seed);
    for (const u32 depth : AllDepths)
        for (const u32 width : {1u, 2u, 5u, 8u, 13u, 24u, 33u, 70u})
            for (int turn = 0; turn < 6; ++turn) {
                const bool pages = turn == 0;
                Twin twin(width, 1 + places.Below(6), depth, places.Word(),
                          pages ? Storage::Paging : Storage::Resident);
                std::string told = Tell(twin.plain);
                for (int call = 0; call < 3; ++call) {
                    CopyRun run = SomeRun(places, twin.plain, twin.plain);
                    if (call == 0) // along one row
                        run.targetY = run.y;
                    told += ", " + Tell(run);
                    const u32 draw = places.Word();
                    if (pages) {
                        const WithShortMemory memory;
                        RunCopy(twin, twin, copying, run, draw);
                    } else {
                        RunCopy(twin, twin, copying, run, draw);
                    }
                }
                ExpectSame({&twin});
                ASSERT_FALSE(::testing::Test::HasFailure()) << told;
            }
}

/// Every combination of the numbers that arithmetic goes wrong on.
inline void SweepExtremeCopies(const Copying& copying, u32 depth, u32 targetDepth)
{
    constexpr i32 Smallest = static_cast<i32>(0x80000000);
    constexpr i32 Largest = 0x7FFFFFFF;
    constexpr i32 Numbers[] = {Smallest, -1, 1, Largest};
    for (const i32 x : Numbers)
        for (const i32 targetX : Numbers) {
            Twin source(4, 3, depth, 5);
            Twin target(3, 3, targetDepth, 6);
            for (const i32 y : Numbers)
                for (const i32 targetY : Numbers)
                    for (const i32 width : Numbers)
                        for (const i32 height : Numbers)
                            RunCopy(source, target, copying,
                                    {x, y, width, height, targetX, targetY});
            ExpectSame({&source, &target});
            ASSERT_FALSE(::testing::Test::HasFailure()) << x << ' ' << targetX;
        }
}

/// On rasters whose lines go to files as soon as they are released.
inline void SweepPagedCopies(const Copying& copying, u32 seed)
{
    Places places(seed);
    for (const u32 width : {1u, 5u, 12u})
        for (const u32 depth : AllDepths)
            for (const u32 targetDepth : AllDepths)
                for (const int pages : {1, 2, 3}) {
                    Twin source(width, 1 + places.Below(6), depth, places.Word(),
                                (pages & 1) != 0 ? Storage::Paging : Storage::Resident);
                    Twin target(width + 1, 1 + places.Below(6), targetDepth, places.Word(),
                                (pages & 2) != 0 ? Storage::Paging : Storage::Resident);
                    {
                        const WithShortMemory memory;
                        RunCopy(source, target, copying,
                                SomeRun(places, source.plain, target.plain), places.Word());
                        RunCopy(source, target, copying, {0, 0, 99, 99, 0, 0}, places.Word());
                        RunCopy(source, target, copying,
                                SomeRun(places, source.plain, target.plain), places.Word());
                    }
                    ExpectSame({&source, &target});
                    ASSERT_FALSE(::testing::Test::HasFailure())
                        << Tell(source.plain) << " to " << Tell(target.plain);
                }
}

/// With every line of either raster refused in turn, and of both. Line 0 of each takes no part: it
/// sits in its file, so that fetching it shows what was left locked.
inline void SweepRefusedCopies(const Copying& copying)
{
    constexpr u32 Height = 6;
    const CopyRun runs[] = {
        {0, 1, 14, 5, 0, 1}, {2, 1, 3, 4, 5, 2}, {1, 3, 9, 9, -1, 1}, {4, 1, 20, 20, 1, 3}};
    u32 turn = 0;
    for (const u32 depth : AllDepths)
        for (const u32 targetDepth : AllDepths) {
            bool refused = false; // the pair of depths: once is enough
            for (u32 line = 1; line < Height && !refused; ++line)
                for (const int which : {1, 2, 3}) {
                    const CopyRun& run = line < 3 ? runs[0] : runs[turn++ % 4];
                    Twin source(14, Height, depth, line + 1, Storage::Paging);
                    Twin target(14, Height, targetDepth, line + 2, Storage::Paging);
                    source.PageOut(0);
                    target.PageOut(0);
                    if ((which & 1) != 0)
                        RefuseBesideLine0(source, line);
                    if ((which & 2) != 0)
                        RefuseBesideLine0(target, line);
                    refused = RunCopy(source, target, copying, run) == Failed;
                    ExpectSame({&source, &target});
                    ASSERT_FALSE(::testing::Test::HasFailure())
                        << Tell(source.plain) << " to " << Tell(target.plain) << ", line " << line
                        << ", " << Tell(run);
                }
        }
}
