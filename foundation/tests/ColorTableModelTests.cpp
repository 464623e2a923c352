// The colour table and its search against their rules written out a second time.
#include "foundation/ColorTable.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{

bool Same(const PaletteEntry& a, const PaletteEntry& b)
{
    return a.red == b.red && a.green == b.green && a.blue == b.blue && a.fourth == b.fourth;
}

// The walk written out in 64 bits, each step cut to 32.
void Search(const std::vector<PaletteEntry>& entries, const PaletteEntry& asked, PaletteEntry* best,
            PaletteEntry* second)
{
    constexpr u64 Bits32 = 0xFFFFFFFF;
    u64 nearest = u64{1} << 40;
    for (const PaletteEntry& entry : entries) {
        const u64 dr = (u64{asked.red} - entry.red) & Bits32;
        const u64 dg = (u64{asked.green} - entry.green) & Bits32;
        const u64 db = (u64{asked.blue} - entry.blue) & Bits32;
        const u64 sum =
            77 * (dr * dr & Bits32) + 151 * (dg * dg & Bits32) + 28 * (db * db & Bits32);
        const u64 distance = (sum & Bits32) / 256;
        if (distance < nearest) {
            nearest = distance;
            *second = *best;
            *best = {entry.red, entry.green, entry.blue, static_cast<u32>(distance)};
        }
    }
}

PaletteEntry RandomEntry(std::mt19937& random, u32 range)
{
    const auto word = [&] { return range == 0 ? static_cast<u32>(random()) : random() % range; };
    return {static_cast<u32>(word()), static_cast<u32>(word()), static_cast<u32>(word()),
            static_cast<u32>(random())};
}

void ExpectEntries(ColorTable& table, const std::vector<PaletteEntry>& expected)
{
    ASSERT_EQ(expected.size(), table.Count());
    ASSERT_EQ(static_cast<i32>(expected.size()), table.GetEntries(nullptr));
    std::vector<PaletteEntry> copied(expected.size() + 1, PaletteEntry{9, 9, 9, 9});
    ASSERT_EQ(1, table.GetEntries(copied.data()));
    for (size_t i = 0; i < expected.size(); ++i)
        ASSERT_TRUE(Same(expected[i], copied[i])) << i;
    ASSERT_TRUE(Same({9, 9, 9, 9}, copied.back())) << "no more than the entries in use are given";
}

} // namespace

TEST(FindNearestModel, FindsWhatTheFormulaSays)
{
    std::mt19937 random(31);
    // Few different colours, for ties; all of them; and words that wrap.
    for (u32 range : {3u, 16u, 256u, 70000u, 0u}) {
        for (int round = 0; round < 400; ++round) {
            std::vector<PaletteEntry> entries(random() % 20);
            for (PaletteEntry& entry : entries)
                entry = RandomEntry(random, range);
            ColorTable table;
            ASSERT_EQ(1, table.Create(static_cast<u32>(entries.size())));
            ASSERT_EQ(1, table.AddMany(entries.data(), static_cast<u32>(entries.size())));
            const PaletteEntry asked = RandomEntry(random, range);
            PaletteEntry best{91, 92, 93, 94};
            PaletteEntry second{81, 82, 83, 84};
            PaletteEntry expected = best;
            PaletteEntry expectedSecond = second;
            Search(entries, asked, &expected, &expectedSecond);
            ASSERT_EQ(1, table.FindNearestTwo(asked.red, asked.green, asked.blue, asked.fourth,
                                              &best, &second));
            ASSERT_TRUE(Same(expected, best)) << "range " << range;
            ASSERT_TRUE(Same(expectedSecond, second)) << "range " << range;
            PaletteEntry alone{91, 92, 93, 94};
            ASSERT_EQ(1, table.FindNearest(asked.red, asked.green, asked.blue, 0, &alone));
            ASSERT_TRUE(Same(expected, alone)) << "range " << range;
        }
    }
}

TEST(FindNearestModel, DifferencesCountTheSameInBothDirections)
{
    ColorTable table;
    const PaletteEntry item{200, 100, 50, 0};
    ASSERT_EQ(1, table.SetEntries(&item, 1));
    PaletteEntry best{};
    EXPECT_EQ(1, table.FindNearest(210, 90, 60, 0, &best));
    EXPECT_EQ(100u, best.fourth); // (77 + 151 + 28) * 100 / 256
    EXPECT_EQ(1, table.FindNearest(190, 110, 40, 0, &best));
    EXPECT_EQ(100u, best.fourth);
}

TEST(FindNearestModel, TheFarthestColoursDoNotWrap)
{
    ColorTable table;
    const PaletteEntry white{255, 255, 255, 0};
    ASSERT_EQ(1, table.SetEntries(&white, 1));
    PaletteEntry best{};
    EXPECT_EQ(1, table.FindNearest(0, 0, 0, 0, &best));
    EXPECT_EQ(65025u, best.fourth); // 256 * 255 * 255 / 256
}

TEST(ColorTableModel, DoesAsItsRulesSayOnAnyRunOfOperations)
{
    std::mt19937 random(32);
    ColorTable table;
    ColorTable other;
    std::vector<PaletteEntry> model;
    bool created = false;
    u32 capacity = 0;
    for (int step = 0; step < 4000; ++step) {
        std::vector<PaletteEntry> items(random() % 5 + 1);
        for (PaletteEntry& item : items)
            item = RandomEntry(random, 0);
        const u32 count = static_cast<u32>(items.size());
        switch (random() % 8) {
        case 0:
            capacity = random() % 12;
            ASSERT_EQ(1, table.Create(capacity));
            created = true;
            model.clear();
            break;
        case 1:
            ASSERT_EQ(1, table.Destroy());
            created = false;
            capacity = 0;
            model.clear();
            break;
        case 2:
            ASSERT_EQ(1, table.SetEntries(items.data(), count));
            created = true;
            capacity = count;
            model = items;
            break;
        case 3:
            ASSERT_EQ(1, table.CopyFrom(&table));
            created = true;
            capacity = static_cast<u32>(model.size());
            break;
        case 4:
            ASSERT_EQ(1, other.CopyFrom(&table));
            ASSERT_NO_FATAL_FAILURE(ExpectEntries(other, model));
            ASSERT_EQ(-1, other.Add(0, 0, 0, 0)) << "the copy is full";
            break;
        default: {
            i32 expected = 1;
            for (const PaletteEntry& item : items) {
                expected = !created ? -3 : model.size() == capacity ? -1 : 1;
                if (expected < 0)
                    break;
                model.push_back(item);
            }
            ASSERT_EQ(expected, table.AddMany(items.data(), count));
        }
        }
        ASSERT_NO_FATAL_FAILURE(ExpectEntries(table, model));
        PaletteEntry* data = items.data();
        ASSERT_EQ(created ? 1 : -3, table.GetData(&data));
        ASSERT_EQ(created, data != nullptr);
    }
}
