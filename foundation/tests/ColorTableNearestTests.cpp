// The search for the nearest colour: every difference of a channel, ties, words that wrap, and
// what it leaves alone.

#include "foundation/ColorTable.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{

/// (77 dr^2 + 151 dg^2 + 28 db^2) >> 8, where every product and sum keeps its low 32 bits.
u32 DistanceOf(const PaletteEntry& asked, const PaletteEntry& entry)
{
    const u32 dr = asked.red - entry.red;
    const u32 dg = asked.green - entry.green;
    const u32 db = asked.blue - entry.blue;
    return (77u * dr * dr + 151u * dg * dg + 28u * db * db) >> 8;
}

/// Which entry is nearest: the first of those with the smallest distance.
size_t NearestOf(const PaletteEntry& asked, const std::vector<PaletteEntry>& entries)
{
    size_t nearest = 0;
    for (size_t at = 1; at < entries.size(); ++at)
        if (DistanceOf(asked, entries[at]) < DistanceOf(asked, entries[nearest]))
            nearest = at;
    return nearest;
}

void ExpectEntry(const PaletteEntry& expected, const PaletteEntry& got)
{
    EXPECT_EQ(expected.red, got.red);
    EXPECT_EQ(expected.green, got.green);
    EXPECT_EQ(expected.blue, got.blue);
    EXPECT_EQ(expected.fourth, got.fourth);
}

} // namespace

TEST(ColorTableNearest, EveryDifferenceOfAChannelHasItsDistanceInBothDirections)
{
    for (u32 difference = 0; difference < 256; ++difference) {
        const u32 square = difference * difference;
        const PaletteEntry near[] = {
            {difference, 0, 0, 9}, {0, difference, 0, 9}, {0, 0, difference, 9}};
        const u32 expected[] = {77 * square / 256, 151 * square / 256, 28 * square / 256};
        for (int channel = 0; channel < 3; ++channel) {
            const PaletteEntry& colour = near[channel];
            const PaletteEntry black{0, 0, 0, 9};
            ColorTable table;
            PaletteEntry best{};
            ASSERT_EQ(table.SetEntries(&colour, 1), 1);
            ASSERT_EQ(table.FindNearest(0, 0, 0, 0, &best), 1);
            EXPECT_EQ(best.fourth, expected[channel]);
            ASSERT_EQ(table.SetEntries(&black, 1), 1);
            ASSERT_EQ(table.FindNearest(colour.red, colour.green, colour.blue, 0, &best), 1);
            EXPECT_EQ(best.fourth, expected[channel]);
        }
    }
}

TEST(ColorTableNearest, OfAllColoursAtOneDistanceTheFirstWins)
{
    // One off in blue is 28 / 256 and one off in red is 77 / 256: after the shift both are 0 off.
    const PaletteEntry entries[] = {{10, 20, 31, 1}, {11, 20, 30, 2}, {10, 20, 30, 3}};
    ColorTable table;
    ASSERT_EQ(table.SetEntries(entries, 3), 1);
    PaletteEntry best{};
    ASSERT_EQ(table.FindNearest(10, 20, 30, 0, &best), 1);
    ExpectEntry({10, 20, 31, 0}, best);
    // Two off in green is 604 / 256: the exact colour behind it is nearer.
    const PaletteEntry farther[] = {{10, 22, 30, 1}, {10, 20, 30, 3}};
    ASSERT_EQ(table.SetEntries(farther, 2), 1);
    PaletteEntry second{};
    ASSERT_EQ(table.FindNearestTwo(10, 20, 30, 0, &best, &second), 1);
    ExpectEntry({10, 20, 30, 0}, best);
    ExpectEntry({10, 22, 30, 2}, second);
}

TEST(ColorTableNearest, WordsAbove255WrapIn32Bits)
{
    ColorTable table;
    PaletteEntry best{};
    // 65536 squared is 2^32 and counts as nothing; 65537 squared as 131073.
    const PaletteEntry wrapping[] = {{0x10001, 0, 0, 0}, {0x10000, 0, 0, 0}};
    ASSERT_EQ(table.SetEntries(wrapping, 2), 1);
    ASSERT_EQ(table.FindNearest(0, 0, 0, 0, &best), 1);
    ExpectEntry({0x10000, 0, 0, 0}, best);
    ASSERT_EQ(table.SetEntries(wrapping, 1), 1);
    ASSERT_EQ(table.FindNearest(0, 0, 0, 0, &best), 1);
    ExpectEntry({0x10001, 0, 0, 77u * 131073u / 256u}, best);
    // A sum above 2^31 is no negative number: 151 * 4000 * 4000 is 2416000000.
    const PaletteEntry large[] = {{0, 4000, 0, 0}, {0, 3000, 0, 0}};
    ASSERT_EQ(table.SetEntries(large, 2), 1);
    ASSERT_EQ(table.FindNearest(0, 0, 0, 0, &best), 1);
    ExpectEntry({0, 3000, 0, 151u * 9000000u / 256u}, best);
    ASSERT_EQ(table.SetEntries(large, 1), 1);
    ASSERT_EQ(table.FindNearest(0, 0, 0, 0, &best), 1);
    ExpectEntry({0, 4000, 0, 2416000000u / 256u}, best);
    // The difference of -1 is 4294967295, whose square wraps to 1.
    const PaletteEntry below{0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0};
    ASSERT_EQ(table.SetEntries(&below, 1), 1);
    ASSERT_EQ(table.FindNearest(0, 0, 0, 0, &best), 1);
    EXPECT_EQ(best.fourth, 1u);
}

TEST(ColorTableNearest, FullPalettesAreSearchedToTheEnd)
{
    std::mt19937 random(51);
    for (const u32 range : {4u, 256u, 0x20000u}) {
        std::vector<PaletteEntry> entries(256);
        for (PaletteEntry& entry : entries)
            entry = {static_cast<u32>(random()) % range, static_cast<u32>(random()) % range,
                     static_cast<u32>(random()) % range, static_cast<u32>(random())};
        ColorTable table;
        ASSERT_EQ(table.SetEntries(entries.data(), 256), 1);
        for (int round = 0; round < 300; ++round) {
            const PaletteEntry asked{static_cast<u32>(random()) % range,
                                     static_cast<u32>(random()) % range,
                                     static_cast<u32>(random()) % range, 0};
            PaletteEntry expected = entries[NearestOf(asked, entries)];
            expected.fourth = DistanceOf(asked, expected);
            PaletteEntry best{};
            ASSERT_EQ(table.FindNearest(asked.red, asked.green, asked.blue,
                                        static_cast<u32>(random()), &best),
                      1);
            ExpectEntry(expected, best);
        }
    }
}

TEST(ColorTableNearest, OnlyEntriesInUseAreSearched)
{
    ColorTable table;
    ASSERT_EQ(table.Create(8), 1); // the other seven are zeros
    ASSERT_EQ(table.Add(200, 200, 200, 0), 1);
    PaletteEntry best{};
    ASSERT_EQ(table.FindNearest(0, 0, 0, 0, &best), 1);
    ExpectEntry({200, 200, 200, 40000}, best);
}

TEST(ColorTableNearest, ATableNeverCreatedLeavesBothAlone)
{
    ColorTable table;
    PaletteEntry best{1, 2, 3, 4};
    PaletteEntry second{5, 6, 7, 8};
    EXPECT_EQ(table.FindNearestTwo(0, 0, 0, 0, &best, &second), 1);
    ExpectEntry({1, 2, 3, 4}, best);
    ExpectEntry({5, 6, 7, 8}, second);
}

TEST(ColorTableNearest, SecondTakesTheDistanceWithTheColour)
{
    // Distances of green from 0: 20 -> 235, 10 -> 58, 5 -> 14; each is best in its turn.
    const PaletteEntry entries[] = {{0, 20, 0, 1}, {0, 10, 0, 2}, {0, 5, 0, 3}, {0, 30, 0, 4}};
    ColorTable table;
    ASSERT_EQ(table.SetEntries(entries, 4), 1);
    PaletteEntry best{};
    PaletteEntry second{};
    ASSERT_EQ(table.FindNearestTwo(0, 0, 0, 0, &best, &second), 1);
    ExpectEntry({0, 5, 0, 14}, best);
    ExpectEntry({0, 10, 0, 58}, second);
    PaletteEntry data[4];
    ASSERT_EQ(table.GetEntries(data), 1);
    for (int at = 0; at < 4; ++at)
        ExpectEntry(entries[at], data[at]);
}
