// The table of functions on palettes, called as a plugin calls it.

#include "plugin/FunctionTables.h"

#include "foundation/ColorTable.h"
#include "platform/testing/Testing.h"
#include "plugin/PluginHeap.h"

#include <gtest/gtest.h>

namespace
{

class PaletteFunctions : public ::testing::Test
{
protected:
    PaletteFunctions()
    {
        EXPECT_EQ(MakeHeap(), 1);
        WritePaletteFunctions(&table);
    }
    ~PaletteFunctions() override { EXPECT_EQ(DropHeap(), 1); }

    TavrixPaletteHandle Make(u32 capacity)
    {
        TavrixPaletteHandle palette = nullptr;
        EXPECT_EQ(table.PaletteCreate(&palette), 1);
        EXPECT_EQ(table.PaletteAlloc(palette, capacity), 1);
        return palette;
    }

    tavrix::testing::Scope scope;
    PaletteFunctionTable table;
};

TEST_F(PaletteFunctions, TheTableBeginsWithItsSize)
{
    EXPECT_EQ(table.size, sizeof(void*) == 8 ? 88u : 44u);
}

TEST_F(PaletteFunctions, EachRefusesANullPalette)
{
    PaletteEntry entry = {};
    PaletteEntry* entries = nullptr;
    EXPECT_EQ(table.PaletteCreate(nullptr), -1);
    EXPECT_EQ(table.PaletteDestroy(nullptr), -1);
    EXPECT_EQ(table.PaletteAlloc(nullptr, 1), -1);
    EXPECT_EQ(table.PaletteFree(nullptr), -1);
    EXPECT_EQ(table.PaletteCopy(nullptr, nullptr), -1);
    EXPECT_EQ(table.PaletteAddEntry(nullptr, 0, 0, 0, 0), -1);
    EXPECT_EQ(table.PaletteAddEntries(nullptr, &entry, 1), -1);
    EXPECT_EQ(table.PaletteSetEntries(nullptr, &entry, 1), -1);
    EXPECT_EQ(table.PaletteGetEntries(nullptr, &entry), -1);
    EXPECT_EQ(table.PaletteGetPointer(nullptr, &entries), -1);
}

TEST_F(PaletteFunctions, DestroyingClearsTheHandleAndRefusesANullOne)
{
    TavrixPaletteHandle palette = Make(2);
    TavrixPaletteHandle again = palette;
    EXPECT_EQ(table.PaletteDestroy(&palette), 1);
    EXPECT_EQ(palette, nullptr);
    EXPECT_EQ(table.PaletteDestroy(&palette), -1);
    EXPECT_EQ(table.PaletteDestroy(&again), -1);
}

TEST_F(PaletteFunctions, CreatingWithoutMemoryGivesANullHandle)
{
    tavrix::testing::SetAllocationFault([](SIZE_T) { return true; });
    TavrixPaletteHandle palette = reinterpret_cast<TavrixPaletteHandle>(&table);
    EXPECT_EQ(table.PaletteCreate(&palette), -2);
    EXPECT_EQ(palette, nullptr);
}

TEST_F(PaletteFunctions, TakesAsManyEntriesAsWereReserved)
{
    TavrixPaletteHandle palette = nullptr;
    ASSERT_EQ(table.PaletteCreate(&palette), 1);
    EXPECT_EQ(table.PaletteAddEntry(palette, 1, 2, 3, 4), -3);
    ASSERT_EQ(table.PaletteAlloc(palette, 2), 1);
    EXPECT_EQ(table.PaletteGetEntries(palette, nullptr), 0);
    EXPECT_EQ(table.PaletteAddEntry(palette, 1, 2, 3, 4), 1);
    EXPECT_EQ(table.PaletteAddEntry(palette, 5, 6, 7, 8), 1);
    EXPECT_EQ(table.PaletteAddEntry(palette, 9, 9, 9, 9), -1);
    PaletteEntry got[2] = {};
    EXPECT_EQ(table.PaletteGetEntries(palette, got), 1);
    EXPECT_EQ(got[0].red, 1u);
    EXPECT_EQ(got[0].fourth, 4u);
    EXPECT_EQ(got[1].green, 6u);
    EXPECT_EQ(got[1].blue, 7u);
    EXPECT_EQ(table.PaletteAlloc(palette, 1), 1);
    EXPECT_EQ(table.PaletteGetEntries(palette, nullptr), 0);
}

TEST_F(PaletteFunctions, AppendingManyStopsAtTheFirstFailure)
{
    TavrixPaletteHandle palette = Make(2);
    const PaletteEntry entries[3] = {{1, 0, 0, 0}, {2, 0, 0, 0}, {3, 0, 0, 0}};
    EXPECT_EQ(table.PaletteAddEntries(palette, entries, 3), -1);
    EXPECT_EQ(table.PaletteGetEntries(palette, nullptr), 2);
    EXPECT_EQ(table.PaletteAddEntries(palette, nullptr, 1), -4);
    EXPECT_EQ(table.PaletteAddEntries(palette, entries, 0), 1);
}

TEST_F(PaletteFunctions, SettingEntriesMakesRoomForExactlyThose)
{
    TavrixPaletteHandle palette = Make(9);
    const PaletteEntry entries[2] = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    EXPECT_EQ(table.PaletteSetEntries(palette, entries, 2), 1);
    EXPECT_EQ(table.PaletteGetEntries(palette, nullptr), 2);
    EXPECT_EQ(table.PaletteAddEntry(palette, 0, 0, 0, 0), -1);
    EXPECT_EQ(table.PaletteSetEntries(palette, nullptr, 2), -4);
}

TEST_F(PaletteFunctions, AbsurdSizesFindNoMemory)
{
    TavrixPaletteHandle palette = Make(1);
    const PaletteEntry entry = {};
    // 16 bytes an entry: these counts come to 16 and to 0 bytes in 32 bits.
    EXPECT_EQ(table.PaletteAlloc(palette, 0x10000001), -2);
    EXPECT_EQ(table.PaletteAddEntry(palette, 0, 0, 0, 0), -3);
    EXPECT_EQ(table.PaletteAlloc(palette, 0x10000000), -2);
    EXPECT_EQ(table.PaletteSetEntries(palette, &entry, 0x10000001), -2);
    EXPECT_EQ(table.PaletteAlloc(palette, 0xFFFFFFFF), -2);
}

TEST_F(PaletteFunctions, CopiesEntriesFromAnotherPalette)
{
    TavrixPaletteHandle source = Make(3);
    TavrixPaletteHandle target = Make(1);
    ASSERT_EQ(table.PaletteAddEntry(source, 1, 2, 3, 4), 1);
    ASSERT_EQ(table.PaletteAddEntry(source, 5, 6, 7, 8), 1);
    EXPECT_EQ(table.PaletteCopy(target, nullptr), -4);
    EXPECT_EQ(table.PaletteCopy(target, source), 1);
    EXPECT_EQ(table.PaletteGetEntries(target, nullptr), 2);
    EXPECT_EQ(table.PaletteCopy(target, target), 1);
    PaletteEntry got[2] = {};
    EXPECT_EQ(table.PaletteGetEntries(target, got), 1);
    EXPECT_EQ(got[1].red, 5u);
}

TEST_F(PaletteFunctions, GivesItsOwnArray)
{
    TavrixPaletteHandle palette = nullptr;
    ASSERT_EQ(table.PaletteCreate(&palette), 1);
    PaletteEntry* entries = reinterpret_cast<PaletteEntry*>(&table);
    EXPECT_EQ(table.PaletteGetPointer(palette, nullptr), -4);
    EXPECT_EQ(table.PaletteGetPointer(palette, &entries), -3);
    EXPECT_EQ(entries, nullptr);
    ASSERT_EQ(table.PaletteAlloc(palette, 1), 1);
    ASSERT_EQ(table.PaletteAddEntry(palette, 1, 2, 3, 4), 1);
    EXPECT_EQ(table.PaletteGetPointer(palette, &entries), 1);
    entries[0].blue = 99;
    PaletteEntry got = {};
    EXPECT_EQ(table.PaletteGetEntries(palette, &got), 1);
    EXPECT_EQ(got.blue, 99u);
    EXPECT_EQ(table.PaletteFree(palette), 1);
    EXPECT_EQ(table.PaletteGetPointer(palette, &entries), -3);
}

} // namespace
