#include "foundation/BoundedSeek.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

constexpr i64 Least = std::numeric_limits<i64>::min();
constexpr i64 Most = std::numeric_limits<i64>::max();

struct Seek {
    i64 offset;
    u32 origin;
    i32 result;
    u32 place; // where it stands afterwards
};

/// From position 4 of 10.
void Check(const Seek& seek)
{
    u32 position = 4;
    u64 told = 0xDEAD00000000;
    EXPECT_EQ(seek.result, BoundedSeek(seek.offset, seek.origin, 10, &position, &told))
        << seek.offset << " from origin " << seek.origin;
    EXPECT_EQ(seek.place, position) << seek.offset << " from origin " << seek.origin;
    EXPECT_EQ(seek.result == 1 ? seek.place : 0xDEAD00000000, told)
        << seek.offset << " from origin " << seek.origin;
}

} // namespace

TEST(BoundedSeek, FromTheStartLandsBetween0AndTheLimit)
{
    for (const Seek& seek : {Seek{0, 0, 1, 0}, Seek{7, 0, 1, 7}, Seek{10, 0, 1, 10},
                             Seek{11, 0, -1, 4}, Seek{-1, 0, -1, 4}, Seek{0x100000004, 0, -1, 4},
                             Seek{Most, 0, -1, 4}, Seek{Least, 0, -1, 4}})
        Check(seek);
}

TEST(BoundedSeek, FromThePositionLandsBetween0AndTheLimit)
{
    for (const Seek& seek :
         {Seek{0, 1, 1, 4}, Seek{6, 1, 1, 10}, Seek{7, 1, -1, 4}, Seek{-4, 1, 1, 0},
          Seek{-5, 1, -1, 4}, Seek{0x100000000, 1, -1, 4}, Seek{-0x100000000, 1, -1, 4},
          Seek{Most, 1, -1, 4}, Seek{Least, 1, -1, 4}})
        Check(seek);
}

TEST(BoundedSeek, FromTheEndTakesNoPositiveOffset)
{
    for (const Seek& seek :
         {Seek{0, 2, 1, 10}, Seek{-1, 2, 1, 9}, Seek{-10, 2, 1, 0}, Seek{-11, 2, -1, 4},
          Seek{1, 2, -1, 4}, Seek{Most, 2, -1, 4}, Seek{Least, 2, -1, 4}})
        Check(seek);
}

TEST(BoundedSeek, AnotherOriginIsRefused)
{
    for (const u32 origin : {3u, 4u, 0x80000000u, 0xFFFFFFFFu})
        Check({0, origin, -1, 4});
}

TEST(BoundedSeek, TheNewPositionMayBeLeftOut)
{
    u32 position = 4;
    EXPECT_EQ(1, BoundedSeek(2, 1, 10, &position, nullptr));
    EXPECT_EQ(6u, position);
    EXPECT_EQ(-1, BoundedSeek(5, 1, 10, &position, nullptr));
    EXPECT_EQ(6u, position);
}

TEST(BoundedSeek, ACountIsCutAtTheLimit)
{
    EXPECT_EQ(3u, BoundedCount(3, 4, 10));
    EXPECT_EQ(6u, BoundedCount(6, 4, 10));
    EXPECT_EQ(6u, BoundedCount(7, 4, 10));
    EXPECT_EQ(0u, BoundedCount(7, 10, 10));
    EXPECT_EQ(0u, BoundedCount(0, 4, 10));
    // Where the sum of place and count would wrap around 32 bits.
    EXPECT_EQ(6u, BoundedCount(0xFFFFFFFF, 4, 10));
    EXPECT_EQ(0xFFu, BoundedCount(0x200, 0xFFFFFF00, 0xFFFFFFFF));
    EXPECT_EQ(0xFEu, BoundedCount(0xFE, 0xFFFFFF00, 0xFFFFFFFF));
    EXPECT_EQ(0u, BoundedCount(1, 0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_EQ(0xFFFFFFFFu, BoundedCount(0xFFFFFFFF, 0, 0xFFFFFFFF));
}

TEST(BoundedSeek, ReachesTheLast32BitPlace)
{
    u32 position = 0;
    u64 told = 0;
    EXPECT_EQ(1, BoundedSeek(0, 2, 0xFFFFFFFF, &position, &told));
    EXPECT_EQ(0xFFFFFFFFu, position);
    EXPECT_EQ(0xFFFFFFFFu, told);
    EXPECT_EQ(-1, BoundedSeek(1, 1, 0xFFFFFFFF, &position, &told));
    EXPECT_EQ(1, BoundedSeek(-i64{0xFFFFFFFF}, 1, 0xFFFFFFFF, &position, &told));
    EXPECT_EQ(0u, position);
}
