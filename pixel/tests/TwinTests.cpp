// The comparison of a raster with its twin is what the tests of the pixel operations rest on: it
// must notice every kind of difference.

#include "Twin.h"

#include <gtest/gtest-spi.h>

namespace
{

using TwinComparison = PagingTest;

u8* Locked(Twin& twin, i32 line)
{
    u8* row = nullptr;
    EXPECT_EQ(twin.raster.LockLines(line, &row, nullptr), 1);
    return row;
}

} // namespace

TEST_F(TwinComparison, FindsNothingBetweenEqualSides)
{
    for (const u32 depth : {8u, 16u, 24u, 32u})
        for (const Storage storage : {Storage::Resident, Storage::Paging}) {
            Twin twin(5, 4, depth, 1, storage);
            {
                const WithShortMemory memory;
                for (i32 y = 0; y < 4; ++y) {
                    Locked(twin, y)[0] ^= 1;
                    twin.raster.ReleaseLines(y, 1, 0);
                    EXPECT_EQ(twin.plain.Lock(y), 1);
                    twin.plain.Row(y)[0] ^= 1;
                    twin.plain.Release(y);
                }
                EXPECT_EQ(FilesIn(FirstFolder).size(), storage == Storage::Paging ? 3u : 0u);
            }
            ExpectSame({&twin});
        }
}

TEST_F(TwinComparison, NoticesAChangedByteAndAChangedPaddingByte)
{
    static Twin* twin;
    for (const u32 at : {3u, 15u}) {
        Twin made(5, 2, 24, 1); // 15 bytes of pixels and one of padding
        twin = &made;
        ASSERT_EQ(made.plain.stride, 16u);
        Locked(made, 1)[at] ^= 0x80;
        made.raster.UnlockAll();
        EXPECT_FATAL_FAILURE(twin_detail::ExpectSameBytes(*twin), "line 1 byte");
    }
}

TEST_F(TwinComparison, NoticesAForgottenLock)
{
    static Twin* twin;
    Twin made(5, 4, 24, 1, Storage::Paging);
    twin = &made;
    made.PageOut(0);
    (void)Locked(made, 2);
    EXPECT_NONFATAL_FAILURE(twin_detail::ExpectSameLocks({twin}), "other lines are locked");
    made.raster.UnlockAll();
}

TEST_F(TwinComparison, NoticesALineThatIsInItsFileOnOneSideOnly)
{
    static Twin* twin;
    Twin made(5, 4, 24, 1, Storage::Paging);
    twin = &made;
    ASSERT_EQ(made.raster.ReleaseLines(1, 1, 1), 1);
    EXPECT_NONFATAL_FAILURE(ExpectSame({twin}), "other line files");
}

TEST_F(TwinComparison, ARefusedLineDoesNotLockAndComesBackWhole)
{
    for (u32 line = 0; line < 4; ++line) {
        Twin twin(6, 4, 24, 1, Storage::Paging);
        twin.Refuse(line);
        u8* row = nullptr;
        EXPECT_EQ(twin.raster.LockLines(static_cast<i32>(line), &row, nullptr), NoMemory);
        EXPECT_EQ(twin.plain.Lock(line), NoMemory);
        const i32 other = static_cast<i32>((line + 1) % 4);
        EXPECT_EQ(twin.raster.LockLines(other, &row, nullptr), 1);
        EXPECT_EQ(twin.plain.Lock(other), 1);
        ExpectSame({&twin});
    }
}
