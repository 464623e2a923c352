// Taking over another raster ends as the plain road does, with memory plentiful, short and
// changing, and with every kind of failure at every place.

#include "TakeFromTest.h"

using namespace taking;

namespace
{

using TakeFromTest = PagingTest;

} // namespace

TEST_F(TakeFromTest, EndsAsLineByLine)
{
    for (u32 height : {0u, 1u, 2u, 32u, 33u, 49u})
        for (int out : {0, 2, 4})
            for (bool room : {true, false}) {
                Case c;
                c.height = height;
                c.seed = height + static_cast<unsigned>(out);
                c.out = out;
                c.room = room;
                c.pinned = (height + static_cast<u32>(out) / 2) % 2 == 0;
                SCOPED_TRACE(Describe(c));
                ASSERT_EQ(ExpectSame(c).status, 1);
                ASSERT_FALSE(HasFailure());
            }
}

TEST_F(TakeFromTest, EndsAsLineByLineWhenMemoryComesAndGoes)
{
    for (unsigned seed = 1; seed <= 16; ++seed) {
        Case c;
        c.height = 33 + seed % 20;
        c.seed = seed;
        c.out = static_cast<int>(seed % 4);
        c.pinned = seed % 3 == 0;
        c.room = seed % 2 == 0;
        // At the blocks of some lines the gauge's figure turns over.
        c.prepare = [seed](Memory& memory) {
            memory.refuses = [turns = std::mt19937(seed), room = seed % 2 == 0](u32 size) mutable {
                if (IsLine(size) && turns() % 5 == 0) {
                    room = !room;
                    room ? PlentyOfMemory() : ShortMemory();
                }
                return false;
            };
        };
        SCOPED_TRACE(Describe(c));
        (void)ExpectSame(c);
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(TakeFromTest, EveryBlockOfALineThatIsRefusedEndsItAsLineByLine)
{
    for (bool onward : {false, true})
        for (int variant = 0; variant < 3; ++variant) {
            Case c;
            c.height = 35;
            c.out = variant * 2;
            c.room = variant == 0;
            c.probed = !c.room && !onward;
            i32 status = NoMemory;
            int number = 1;
            for (; status < 0; number += c.room ? 2 : 11) {
                c.prepare = Refusing(IsLine, number, onward);
                SCOPED_TRACE(Describe(c) + ", block " + std::to_string(number));
                status = ExpectSame(c, onward).status;
                ASSERT_FALSE(HasFailure());
            }
            EXPECT_GT(number, 35);
        }
}

TEST_F(TakeFromTest, EveryNameThatIsRefusedEndsItAsLineByLine)
{
    for (bool onward : {false, true}) {
        Case c;
        c.height = 35;
        c.out = 2;
        c.room = false;
        c.probed = !onward;
        i32 status = NoMemory;
        int number = 1;
        for (; status < 0; number += 9) {
            c.prepare = Refusing(IsName, number, onward);
            SCOPED_TRACE(Describe(c) + ", name " + std::to_string(number));
            status = ExpectSame(c, onward).status;
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_GT(number, 35);
    }
}

TEST_F(TakeFromTest, ATableThatIsRefusedHasAStandIn)
{
    const auto isTable = [](u32 size) { return !IsLine(size) && !IsName(size); };
    for (bool room : {true, false}) {
        Case c;
        c.height = 35;
        c.out = room ? 0 : 4;
        c.room = room;
        c.probed = false;
        // No line can go out for another, which would take single lines.
        c.spoil = [](OpenRaster& source) { (void)AddressOf(source, -1); };
        const Outcome whole = Go(PlainRoad, c);
        int stoodIn = 0;
        bool fired = true;
        for (int number = 1; fired; number += room ? 2 : 6) {
            fired = false;
            c.prepare = [&](Memory& memory) {
                memory.refuses = [&, seen = 0](u32 size) mutable {
                    if (!isTable(size) || ++seen != number)
                        return false;
                    fired = true;
                    return true;
                };
            };
            const Outcome taken = Go(TakingRoad, c);
            SCOPED_TRACE(Describe(c) + ", table " + std::to_string(number));
            if (taken.status > 0) {
                ASSERT_EQ(taken.target.rows, whole.target.rows);
                ASSERT_EQ(taken.source.rows, whole.source.rows);
                ASSERT_EQ(taken.steps, whole.steps);
                stoodIn += fired ? 1 : 0;
                continue;
            }
            // While the target is created, and at the last line, which goes by itself.
            ASSERT_EQ(taken.status, -2);
            ASSERT_TRUE(taken.target.height == 0u || taken.target.height == 35u);
            ASSERT_EQ(taken.source.height, taken.target.height == 0u ? 35u : 1u);
        }
        EXPECT_GT(stoodIn, room ? 30 : 10);
    }
}

TEST_F(TakeFromTest, ItComesThroughWithWhatLineByLineNeeds)
{
    for (bool room : {true, false}) {
        Case c;
        c.height = 64;
        c.out = room ? 0 : 2;
        c.room = room;
        c.probed = false;
        c.leaks = true;
        u64 base = 0;
        c.prepare = [&base](Memory& memory) { base = memory.live; };
        const Outcome whole = Go(PlainRoad, c);
        ASSERT_EQ(whole.status, 1);
        EXPECT_LE(Go(TakingRoad, c).peak, whole.peak);
        // Allowances from nothing beyond the source to all that the plain road used.
        const u64 first = std::max(base, whole.peak - 3000);
        for (u64 most = first; most <= whole.peak; most += room ? 97 : 701) {
            c.prepare = [most](Memory& memory) {
                memory.refuses = [&memory, most](u32 size) { return memory.live + size > most; };
            };
            const Outcome plain = Go(PlainRoad, c);
            if (plain.status < 1 || plain.target.rows != whole.target.rows)
                continue;
            const Outcome taken = Go(TakingRoad, c);
            ASSERT_EQ(taken.status, 1) << "at most " << most << " of " << whole.peak;
            ASSERT_EQ(taken.target.rows, whole.target.rows);
        }
    }
}

TEST_F(TakeFromTest, EveryFileThatFailsLeavesWhatLineByLineLeaves)
{
    for (FileOperation operation :
         {FileOperation::Create, FileOperation::Open, FileOperation::Read, FileOperation::Write})
        for (const WCHAR* second : {SecondFolder, static_cast<const WCHAR*>(nullptr)}) {
            Outcome plain;
            plain.failed = true;
            for (size_t step = 1; plain.failed; step += 71) {
                Case c;
                c.height = 33;
                c.out = 2;
                c.room = false;
                c.secondary = second;
                c.leaks = true;
                c.failing = operation;
                c.failingFrom = step;
                SCOPED_TRACE(Describe(c) + ", step " + std::to_string(step));
                plain = ExpectSame(c);
                ASSERT_FALSE(HasFailure());
            }
        }
}

TEST_F(TakeFromTest, ADamagedSourceIsTakenAsLineByLine)
{
    const std::vector<std::function<void(OpenRaster&)>> damages = {
        [](OpenRaster& source) { // lines that could not be written out are lost
            tavrix::testing::SetDiskSpace(0);
            EXPECT_EQ(source.ReleaseLines(5, 1, 1), 0);
            EXPECT_EQ(source.ReleaseLines(20, 1, 1), 0);
            tavrix::testing::SetDiskSpace(1ull << 40);
        },
        [](OpenRaster& source) { // the index of the first of two lines is freed twice
            u32 count = 2;
            EXPECT_EQ(source.RemoveLines(4, &count), 1);
        }};
    for (const auto& damage : damages)
        for (bool room : {true, false}) {
            Case c;
            c.height = 48;
            c.room = room;
            c.spoil = damage;
            c.leaks = true;
            SCOPED_TRACE(Describe(c));
            (void)ExpectSame(c);
            ASSERT_FALSE(HasFailure());
        }
}

TEST_F(TakeFromTest, APaletteThatFindsNoMemoryIsReportedWithTheLinesTakenOver)
{
    Raster source;
    MakeFilled(source, 3, 1);
    ColorTable* palette = nullptr;
    ASSERT_EQ(source.GetPalette(&palette), 1);
    ASSERT_EQ(palette->Create(300), 1);
    for (u32 i = 0; i < 300; ++i)
        ASSERT_EQ(palette->Add(i, i, i, 0), 1);
    CountingAllocator allocator;
    allocator.fails = [](int, u32 size) { return size >= 300 * sizeof(PaletteEntry); };
    Raster target(&allocator);
    EXPECT_EQ(target.TakeFrom(&source), -2);
    EXPECT_EQ(RowsOf(target), PatternRows(1, 3, PagedStride));
    EXPECT_EQ(InfoOf(target).colorCount, 0u);
}

TEST_F(TakeFromTest, ATallPictureTakesOneAllocationALineAndAFewMore)
{
    Memory memory;
    SharedAllocator allocator(memory);
    Raster source(&allocator);
    Raster target(&allocator);
    ASSERT_EQ(source.Create(1, 65535, 24, nullptr, nullptr), 1);
    *AddressOf(source, 65533) = 9;
    memory.asked = 0;
    ASSERT_EQ(target.TakeFrom(&source), 1);
    EXPECT_LT(memory.asked, 65535u + 200);
    EXPECT_EQ(*AddressOf(target, 65533), 9);
    EXPECT_EQ(InfoOf(source).height, 1u);
}

/// Of a table of exactly so many lines.
static std::multiset<u32> BlocksOf(u32 lines)
{
    std::multiset<u32> sizes = {lines == 0 ? 1u : lines * static_cast<u32>(sizeof(u8*))};
    for (u32 i = 0; i < lines; ++i)
        sizes.insert(LineBytes);
    return sizes;
}

TEST(LineTableTaking, EveryBlockThatIsRefusedLeavesTheSameLinesOnEitherSide)
{
    for (u32 count : {0u, 1u, 5u, 31u, 32u, 33u, 50u})
        for (u32 refused = 0; refused <= count; ++refused) {
            Memory memory;
            SharedAllocator ofSource(memory);
            SharedAllocator ofTarget(memory);
            {
                OpenTable source(&ofSource);
                OpenTable target(&ofTarget);
                ASSERT_EQ(source.Create(Width, count, 24), 1);
                for (u32 i = 0; i < count; ++i)
                    *source.Physical()[i] = static_cast<u8>(i);
                Refusing(IsLine, static_cast<int>(refused), false)(memory);
                ASSERT_EQ(target.TakeFrom(&source), refused > 0 ? -2 : 1);
                memory.refuses = nullptr;
                const u32 moved = refused > 0 ? refused - 1 : count;
                ASSERT_EQ(target.Physical().size(), moved);
                ASSERT_EQ(source.Physical().size(), count - moved);
                for (u32 i = 0; i < count; ++i)
                    ASSERT_EQ(i < count - moved ? *source.Physical()[i]
                                                : *target.Physical()[i - (count - moved)],
                              i);
                ASSERT_EQ(ofTarget.Sizes(), BlocksOf(moved));
                ASSERT_EQ(ofSource.Sizes(), BlocksOf(count - moved));
            }
            ASSERT_EQ(memory.live, 0u);
        }
}
