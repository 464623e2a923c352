// The way of a filter over a picture: what it is shown and in which order, and what is left when
// something cannot be had or the user gives up. Filters of the test's own over the strict picture.

#include "standard-plugins/common/filtering/FilterRun.h"
#include "platform/testing/Faults.h"
#include "standard-plugins/tests/effects/Effects.h"
#include "standard-plugins/tests/effects/StrictPicture.h"

using namespace effecttest;
using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;

namespace
{

/// What happened to the filter that runs; there is one at a time.
struct Log {
    std::vector<u32> looked;
    std::vector<u32> taken;
    std::vector<u32> changed;
    /// Of the rows that were looked at, the first samples.
    std::vector<u8> firsts;
    int opened = 0;
    int settled = 0;
    int closed = 0;
    bool refusesToOpen = false;
    bool stateWasZero = false;
    int progressCalls = 0;
    int refusedCall = -1;
};
Log& TheLog()
{
    static Log log;
    return log;
}

constexpr size_t stateBytes = 40;

bool Open(FilterContext* context)
{
    ++TheLog().opened;
    const auto* state = static_cast<const u8*>(context->state);
    TheLog().stateWasZero = std::all_of(state, state + stateBytes, [](u8 b) { return b == 0; });
    return !TheLog().refusesToOpen;
}

void Look(FilterContext*, const uint8_t* row)
{
    TheLog().looked.push_back(static_cast<u32>(TheLog().looked.size()));
    TheLog().firsts.push_back(row[0]);
}

void Settle(FilterContext*)
{
    ++TheLog().settled;
}

void Take(FilterContext*, uint32_t y, const uint8_t*)
{
    TheLog().taken.push_back(y);
}

void Close(FilterContext*)
{
    ++TheLog().closed;
}

// The sum of the corners of the square around a pixel, and of its middle.
void Corners(FilterContext*, const FilterRows& rows, uint8_t* out)
{
    TheLog().changed.push_back(rows.y);
    const auto reach = static_cast<int32_t>(rows.reach);
    for (int32_t i = 0; i < static_cast<int32_t>(3 * rows.width); ++i)
        out[i] = static_cast<u8>(RowAt(rows, -reach)[i - 3 * reach] +
                                 2 * RowAt(rows, -reach)[i + 3 * reach] +
                                 4 * RowAt(rows, reach)[i - 3 * reach] +
                                 8 * RowAt(rows, reach)[i + 3 * reach] + 16 * RowAt(rows, 0)[i]);
}

// Of a filter that keeps its rows itself: which rows it had by then.
void Count(FilterContext* context, const FilterRows& rows, uint8_t* out)
{
    EXPECT_EQ(rows.rows, nullptr);
    EXPECT_EQ(TheLog().taken.size(), std::min(rows.y + rows.reach + 1, context->height));
    TheLog().changed.push_back(rows.y);
    for (u32 i = 0; i < 3 * rows.width; ++i)
        out[i] = static_cast<u8>(rows.y);
}

uint32_t Reach(const uint32_t* values)
{
    return values[0];
}

FilterWork Around()
{
    return {
        .stateBytes = stateBytes, .reach = Reach, .open = Open, .change = Corners, .close = Close};
}

FilterWork TwoPasses()
{
    FilterWork work = Around();
    work.look = Look;
    work.settle = Settle;
    return work;
}

Pixels Expected(const Pixels& in, int reach)
{
    return Made(in, [&](int x, int y, u32 channel) {
        return static_cast<u8>(Nearest(in, x - reach, y - reach, channel) +
                               2 * Nearest(in, x + reach, y - reach, channel) +
                               4 * Nearest(in, x - reach, y + reach, channel) +
                               8 * Nearest(in, x + reach, y + reach, channel) +
                               16 * Nearest(in, x, y, channel));
    });
}

int32_t Progress(uint32_t, uint32_t)
{
    return TheLog().progressCalls++ == TheLog().refusedCall ? -1 : 1;
}

class FilterRun : public testing::Test
{
protected:
    FilterRun() { TheLog() = {}; }
    ~FilterRun() override { tavrix::testing::Reset(); }

    void Prepare(u32 width, u32 height, u32 depth = 24)
    {
        canvas = StrictPicture(width, height, Wild, depth);
        before = PixelsOf(width, height, Wild);
    }
    WriteProblem Run(const FilterWork& work, u32 reach, bool withProgress = true)
    {
        values[0] = reach;
        TheLog().opened = TheLog().closed = TheLog().settled = TheLog().progressCalls = 0;
        const WriteProblem problem = RunFilter(
            work, {canvas->Handle(), canvas->Table(), withProgress ? Progress : nullptr, values});
        canvas->UnlockAll();
        return problem;
    }
    Pixels After() const
    {
        Pixels pixels{canvas->width, canvas->height, {}};
        for (u32 y = 0; y < canvas->height; ++y)
            for (u32 x = 0; x < canvas->width; ++x) {
                const Pixel pixel = canvas->At(x, y);
                for (const u8 value : {pixel.red, pixel.green, pixel.blue})
                    pixels.bytes.push_back(value);
            }
        return pixels;
    }
    /// How many lines from the top are as `whole`; the others must be as they were.
    u32 LinesDone(const Pixels& whole) const
    {
        const Pixels after = After();
        const size_t bytes = size_t{3} * after.width;
        u32 done = 0;
        while (done < after.height &&
               std::equal(after.bytes.begin() + static_cast<std::ptrdiff_t>(bytes * done),
                          after.bytes.begin() + static_cast<std::ptrdiff_t>(bytes * (done + 1)),
                          whole.bytes.begin() + static_cast<std::ptrdiff_t>(bytes * done)))
            ++done;
        EXPECT_TRUE(std::equal(after.bytes.begin() + static_cast<std::ptrdiff_t>(bytes * done),
                               after.bytes.end(),
                               before.bytes.begin() + static_cast<std::ptrdiff_t>(bytes * done)))
            << "below line " << done;
        return done;
    }

    std::unique_ptr<Canvas> canvas;
    Pixels before;
    u32 values[1] = {};
};

} // namespace

TEST_F(FilterRun, ShowsEveryPixelItsNeighboursAsTheyWereAtEverySizeAndReach)
{
    for (u32 height = 1; height <= 9; ++height)
        for (u32 width = 1; width <= 9; ++width)
            for (const u32 reach : {0u, 1u, 2u, 4u, 20u}) {
                Prepare(width, height);
                ASSERT_EQ(Run(Around(), reach), WriteProblem::None);
                ASSERT_TRUE(After() == Expected(before, static_cast<int>(reach)))
                    << width << "x" << height << " by " << reach;
                ASSERT_EQ(TheLog().opened, 1);
                ASSERT_EQ(TheLog().closed, 1);
                ASSERT_TRUE(TheLog().stateWasZero);
            }
}

TEST_F(FilterRun, MakesTheSameOfAPictureInMemory)
{
    for (u32 height = 1; height <= 7; ++height)
        for (const u32 reach : {0u, 1u, 3u, 9u}) {
            const u32 values1[] = {reach};
            const Pixels in = PixelsOf(5, height, Wild);
            Pixels out = in;
            std::fill(out.bytes.begin(), out.bytes.end(), u8{77});
            ASSERT_TRUE(RunFilterInMemory(TwoPasses(), values1, in.bytes.data(), 5, height,
                                          out.bytes.data()));
            ASSERT_TRUE(out == Expected(in, static_cast<int>(reach))) << height << " by " << reach;
        }
}

TEST_F(FilterRun, LooksAtEveryRowInOrderBeforeAnyIsChanged)
{
    for (const u32 reach : {0u, 2u}) {
        TheLog() = {};
        Prepare(4, 11);
        ASSERT_EQ(Run(TwoPasses(), reach), WriteProblem::None);
        EXPECT_EQ(TheLog().looked.size(), 11u);
        for (u32 y = 0; y < 11; ++y) {
            EXPECT_EQ(TheLog().firsts[y], before.At(0, y, 2)) << y;
            EXPECT_EQ(TheLog().changed[y], y);
        }
        EXPECT_EQ(TheLog().settled, 1);
        EXPECT_TRUE(After() == Expected(before, static_cast<int>(reach)));
    }
}

TEST_F(FilterRun, FilterThatKeepsItsRowsGetsEachOnceAndNoneTooEarly)
{
    FilterWork work = Around();
    work.take = Take;
    work.change = Count;
    for (const u32 height : {1u, 2u, 5u, 12u})
        for (const u32 reach : {1u, 3u, 11u, 30u}) {
            TheLog() = {};
            Prepare(3, height);
            ASSERT_EQ(Run(work, reach), WriteProblem::None);
            ASSERT_EQ(TheLog().taken.size(), height);
            for (u32 y = 0; y < height; ++y) {
                EXPECT_EQ(TheLog().taken[y], y);
                EXPECT_EQ(After().At(2, y, 1), y);
            }
        }
}

TEST_F(FilterRun, LocksALineAtATime)
{
    Prepare(6, 40);
    canvas->mostLentAtOnce = 0;
    ASSERT_EQ(Run(TwoPasses(), 3), WriteProblem::None);
    // The last line's unlock does nothing, so that it may stay beside another one.
    EXPECT_LE(canvas->mostLentAtOnce, 2u);
}

TEST_F(FilterRun, EveryLockAndUnlockThatFailsLeavesTheLinesAboveChangedAndThoseBelowNot)
{
    for (const bool unlock : {false, true})
        for (const u32 reach : {0u, 2u}) {
            const u32 height = 9;
            const Pixels whole = Expected(PixelsOf(4, height, Wild), static_cast<int>(reach));
            const int calls = static_cast<int>(height) * (reach > 0 ? 3 : 2);
            u32 most = 0;
            for (int call = 0; call < calls; ++call) {
                Prepare(4, height);
                (unlock ? canvas->failUnlockAfter : canvas->failLockAfter) = call;
                ASSERT_EQ(Run(TwoPasses(), reach), WriteProblem::Line) << call;
                EXPECT_EQ(TheLog().closed, 1);
                const u32 done = LinesDone(whole);
                if (call < static_cast<int>(height)) {
                    EXPECT_EQ(done, 0u) << "the first pass changes nothing";
                }
                most = std::max(most, done);
            }
            EXPECT_EQ(most, unlock ? height : height - 1);
            Prepare(4, height);
            canvas->failLockAfter = calls;
            EXPECT_EQ(Run(TwoPasses(), reach), WriteProblem::None) << "there are no more calls";
        }
}

TEST_F(FilterRun, APictureWithoutFilesIsChangedWhereMemoryIsShort)
{
    for (const u32 reach : {0u, 2u}) {
        const Pixels whole = Expected(PixelsOf(4, 9, Wild), static_cast<int>(reach));
        Prepare(4, 9);
        canvas->keepsUnstored = true;
        ASSERT_EQ(Run(TwoPasses(), reach), WriteProblem::None);
        canvas->UnlockAll();
        EXPECT_EQ(LinesDone(whole), 9u);
    }
}

TEST_F(FilterRun, RefusalAtEveryCallStopsThere)
{
    for (const u32 reach : {0u, 2u}) {
        const u32 height = 13;
        const Pixels whole = Expected(PixelsOf(4, height, Wild), static_cast<int>(reach));
        for (int refused = 0; refused < 2 * static_cast<int>(height); ++refused) {
            Prepare(4, height);
            TheLog().refusedCall = refused;
            ASSERT_EQ(Run(TwoPasses(), reach), WriteProblem::Stopped) << refused;
            EXPECT_EQ(TheLog().progressCalls, refused + 1);
            EXPECT_EQ(TheLog().closed, 1);
            const int done = refused + 1 - static_cast<int>(height);
            EXPECT_EQ(static_cast<int>(LinesDone(whole)), std::max(done, 0)) << refused;
            EXPECT_EQ(TheLog().settled, refused < static_cast<int>(height) ? 0 : 1);
        }
    }
}

TEST_F(FilterRun, NobodyNeedsToBeToldOfTheProgress)
{
    Prepare(4, 5);
    EXPECT_EQ(Run(Around(), 1, false), WriteProblem::None);
    EXPECT_TRUE(After() == Expected(before, 1));
}

TEST_F(FilterRun, ShortageOfMemoryLeavesThePictureAsItWas)
{
    for (const u32 reach : {0u, 3u}) {
        const Pixels whole = Expected(PixelsOf(5, 6, Wild), static_cast<int>(reach));
        WriteProblem problem = WriteProblem::None;
        const unsigned fired = ForEveryFault(
            FaultKind::Allocation,
            [&] {
                Prepare(5, 6);
                problem = Run(Around(), reach);
            },
            [&](bool failed) {
                EXPECT_EQ(problem, failed ? WriteProblem::Memory : WriteProblem::None);
                EXPECT_EQ(LinesDone(whole), failed ? 0u : 6u);
                EXPECT_EQ(TheLog().opened > 0, !failed);
            });
        EXPECT_EQ(fired, reach > 0 ? 3u : 1u) << "the state, the ring and its pointers";
    }
}

TEST_F(FilterRun, FilterThatCannotPrepareIsClosedAndChangesNothing)
{
    Prepare(5, 6);
    TheLog().refusesToOpen = true;
    EXPECT_EQ(Run(TwoPasses(), 2), WriteProblem::Memory);
    EXPECT_EQ(TheLog().closed, 1);
    EXPECT_TRUE(After() == before);
    EXPECT_TRUE(TheLog().looked.empty());
}

TEST_F(FilterRun, OtherDepthsEmptyPicturesAndMissingTablesAreRefusedUntouched)
{
    for (const u32 depth : {8u, 16u, 32u}) {
        Prepare(5, 6, depth);
        EXPECT_EQ(Run(TwoPasses(), 1), WriteProblem::TrueColor);
        EXPECT_EQ(canvas->locks, 0);
        EXPECT_EQ(TheLog().opened, 0);
    }
    Prepare(5, 6);
    canvas->width = 0;
    EXPECT_EQ(Run(Around(), 1), WriteProblem::Empty);
    canvas->width = 5;
    EXPECT_EQ(RunFilter(Around(), {nullptr, canvas->Table(), Progress, values}),
              WriteProblem::Arguments);
    EXPECT_EQ(RunFilter(Around(), {canvas->Handle(), nullptr, Progress, values}),
              WriteProblem::Arguments);
    canvas->Table()->RasterUnlockLines = nullptr;
    EXPECT_EQ(Run(Around(), 1), WriteProblem::Arguments);
    EXPECT_EQ(canvas->locks, 0);
}
