// The short ways of locking and releasing lines, beside the long ones: two rasters that go through
// the same, each in a folder of its own.

#include "PagingTest.h"

#include <algorithm>
#include <random>
#include <set>

namespace
{

using LineShortcuts = PagingTest;

constexpr u32 Lines = 9;

/// What each line file of a folder holds: no two lines are alike.
std::multiset<std::vector<u8>> LinesOut(const WCHAR* folder)
{
    std::multiset<std::vector<u8>> lines;
    for (const auto& [name, size] : FilesIn(folder))
        lines.insert(ReadHostFile(HostFile(folder, name)));
    return lines;
}

/// Two like rasters, to be worked on the long way and the short one.
struct Twins {
    Raster plain;
    Raster quick;

    Twins()
    {
        MakeFilled(plain, Lines, 1, FirstFolder, nullptr);
        MakeFilled(quick, Lines, 1, SecondFolder, nullptr);
    }

    void LockAndRelease(i32 line)
    {
        u8* expected = nullptr;
        u8* row = nullptr;
        const i32 status = plain.LockLines(line, &expected, nullptr);
        ASSERT_EQ(quick.LockLine(line, &row), status);
        if (status == 1) {
            ASSERT_EQ(std::memcmp(row, expected, PagedStride), 0);
        }
        ASSERT_EQ(quick.ReleaseLine(line), plain.ReleaseLines(line, 1, 0));
    }

    void LockAndKeep(i32 line)
    {
        u8* row = nullptr;
        ASSERT_EQ(quick.LockLine(line, &row), plain.LockLines(line, &row, nullptr));
    }

    void WorkOnRun(i32 line, u32 count)
    {
        u8* rows[Lines] = {};
        if (!quick.GetKeptLines(line, count, rows))
            return;
        for (u32 i = 0; i < count; ++i) {
            u8* row = nullptr;
            ASSERT_EQ(plain.LockLines(line + static_cast<i32>(i), &row, nullptr), 1);
            ASSERT_EQ(std::memcmp(row, rows[i], PagedStride), 0);
            ASSERT_EQ(plain.ReleaseLines(line + static_cast<i32>(i), 1, 0), 1);
        }
        quick.PassKeptLines(line, count);
    }

    void SendOut(i32 line)
    {
        ASSERT_EQ(quick.ReleaseLines(line, 1, 1), plain.ReleaseLines(line, 1, 1));
    }
};

} // namespace

TEST_F(LineShortcuts, ComeToTheSameAsTheLongWays)
{
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        PlentyOfMemory();
        Twins twins;
        for (int step = 0; step < 40; ++step) {
            const i32 line = static_cast<i32>(random() % (Lines + 4)) - 2;
            switch (random() % 7) {
            case 0:
                PlentyOfMemory();
                break;
            case 1:
                ShortMemory();
                break;
            case 2:
                twins.LockAndKeep(line);
                break;
            case 3:
                twins.SendOut(line);
                break;
            case 4:
                twins.WorkOnRun(line, static_cast<u32>(random() % (Lines + 1)));
                break;
            case 5:
                ASSERT_EQ(twins.quick.UnlockAll(), twins.plain.UnlockAll());
                break;
            default:
                twins.LockAndRelease(line);
            }
            ASSERT_EQ(LinesOut(SecondFolder), LinesOut(FirstFolder))
                << "round " << round << ", step " << step;
        }
    }
}

TEST_F(LineShortcuts, RefuseARasterThatWasNotCreated)
{
    Raster raster;
    u8* row = nullptr;
    EXPECT_EQ(raster.LockLine(0, &row), -3);
    EXPECT_EQ(raster.ReleaseLine(0), -3);
    EXPECT_FALSE(raster.GetKeptLines(0, 1, &row));
}

TEST_F(LineShortcuts, KeptLinesAreThoseThatAreThereAndWouldStay)
{
    Raster raster;
    MakeFilled(raster, 4, 1);
    u8* rows[5] = {};
    EXPECT_TRUE(raster.GetKeptLines(0, 4, rows));
    for (i32 line = 0; line < 4; ++line)
        EXPECT_EQ(rows[line], AddressOf(raster, line));
    EXPECT_TRUE(raster.GetKeptLines(3, 1, rows));
    EXPECT_FALSE(raster.GetKeptLines(3, 2, rows)) << "one behind the last";
    EXPECT_FALSE(raster.GetKeptLines(-1, 1, rows)) << "numbers do not count from the end here";
    EXPECT_FALSE(raster.GetKeptLines(i64{1} << 32, 1, rows));
    ASSERT_EQ(raster.UnlockAll(), 1);
    ASSERT_EQ(raster.ReleaseLines(1, 1, 1), 1);
    EXPECT_FALSE(raster.GetKeptLines(0, 4, rows)) << "one is in its file";
    EXPECT_TRUE(raster.GetKeptLines(2, 2, rows));
    ShortMemory();
    EXPECT_FALSE(raster.GetKeptLines(2, 2, rows)) << "released, they would go to their files";
}

TEST_F(LineShortcuts, KeptLinesOfARasterWithoutFoldersStayWhenMemoryIsShort)
{
    Raster raster;
    MakeFilled(raster, 3, 1, nullptr, nullptr);
    ShortMemory();
    u8* rows[3] = {};
    EXPECT_TRUE(raster.GetKeptLines(0, 3, rows));
}
