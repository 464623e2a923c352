#include "pixel/NormalizeRect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace
{

/// left, top, right, bottom.
using Corners = std::array<f64, 4>;

Corners Ordered(Corners corners)
{
    DoubleRect rect = {corners[0], corners[1], corners[2], corners[3]};
    EXPECT_EQ(NormalizeDoubleRect(&rect), 1);
    return {rect.left, rect.top, rect.right, rect.bottom};
}

Corners Selected(Corners corners, u32 width = 100, u32 height = 50)
{
    DoubleRect rect = {corners[0], corners[1], corners[2], corners[3]};
    EXPECT_EQ(NormalizeSelectionRect(&rect, width, height), 1);
    return {rect.left, rect.top, rect.right, rect.bottom};
}

/// What becomes of one pair, low and high corner, in a picture of `size` pixels.
void PlainSelect(f64* low, f64* high, u32 size)
{
    if (*low > *high) {
        const f64 high0 = *high;
        *high = *low;
        *low = std::trunc(high0);
    }
    for (f64* corner : {low, high})
        if (*corner < 0.0)
            *corner = 0;
    for (f64* corner : {low, high})
        if (*corner >= size)
            *corner = static_cast<f64>(size) - 1;
}

} // namespace

TEST(NormalizeRect, OrdersBothSidesIndependently)
{
    PixelRect rectangle = {5, -2, -7, -9};
    EXPECT_EQ(NormalizeRect(&rectangle), 1);
    EXPECT_EQ(rectangle.left, -7);
    EXPECT_EQ(rectangle.top, -9);
    EXPECT_EQ(rectangle.right, 5);
    EXPECT_EQ(rectangle.bottom, -2);
    EXPECT_EQ(NormalizeRect(&rectangle), 1);
    EXPECT_EQ(rectangle.left, -7);
    EXPECT_EQ(rectangle.bottom, -2);
    EXPECT_EQ(NormalizeRect(nullptr), -4);
}

TEST(NormalizeRect, OrdersAnyNumbersThereAre)
{
    const i32 lowest = static_cast<i32>(0x80000000);
    const i32 numbers[] = {lowest, lowest + 1, -1, 0, 1, 0x7FFFFFFE, 0x7FFFFFFF};
    for (const i32 a : numbers)
        for (const i32 b : numbers)
            for (const i32 c : numbers)
                for (const i32 d : numbers) {
                    PixelRect rectangle = {a, b, c, d};
                    ASSERT_EQ(NormalizeRect(&rectangle), 1);
                    ASSERT_EQ(rectangle.left, std::min(a, c));
                    ASSERT_EQ(rectangle.top, std::min(b, d));
                    ASSERT_EQ(rectangle.right, std::max(a, c));
                    ASSERT_EQ(rectangle.bottom, std::max(b, d));
                }
}

TEST(NormalizeRect, OrdersFractions)
{
    EXPECT_EQ(Ordered({0.75, 3.5, 0.25, 3.5}), (Corners{0.25, 3.5, 0.75, 3.5}));
    EXPECT_EQ(Ordered({-1.5, 1e300, -1.25, -1e300}), (Corners{-1.5, -1e300, -1.25, 1e300}));
    EXPECT_EQ(Ordered({1, 2, 3, 4}), (Corners{1, 2, 3, 4}));
    EXPECT_EQ(NormalizeDoubleRect(nullptr), -4);
}

TEST(NormalizeSelectionRect, LeavesAnOrderedSelectionInsideThePictureAsItIs)
{
    EXPECT_EQ(Selected({0.25, 0.5, 98.75, 48.5}), (Corners{0.25, 0.5, 98.75, 48.5}));
    EXPECT_EQ(Selected({7.5, 3.5, 7.5, 3.5}), (Corners{7.5, 3.5, 7.5, 3.5}));
    EXPECT_EQ(Selected({0, 0, 99, 49}), (Corners{0, 0, 99, 49}));
}

TEST(NormalizeSelectionRect, TruncatesOnlyTheValueThatMovesToTheLowEnd)
{
    EXPECT_EQ(Selected({20.75, 5.5, 10.75, 9.5}), (Corners{10, 5.5, 20.75, 9.5}));
    EXPECT_EQ(Selected({5.5, 20.75, 9.5, 10.75}), (Corners{5.5, 10, 9.5, 20.75}));
    EXPECT_EQ(Selected({20.75, 20.25, 10.75, 10.25}), (Corners{10, 10, 20.75, 20.25}));
    EXPECT_EQ(Selected({5.9, 0, 5.1, 0}), (Corners{5, 0, 5.9, 0}));
}

TEST(NormalizeSelectionRect, OrdersBeforeItClips)
{
    EXPECT_EQ(Selected({200.5, 90.5, -3.5, -7.5}), (Corners{0, 0, 99, 49}));
    EXPECT_EQ(Selected({-3.5, -7.5, 200.5, 90.5}), (Corners{0, 0, 99, 49}));
}

TEST(NormalizeSelectionRect, BringsEveryCornerThatIsOutsideToTheEdge)
{
    EXPECT_EQ(Selected({-0.25, -9, 0.5, -1}), (Corners{0, 0, 0.5, 0}));
    EXPECT_EQ(Selected({100, 50, 100.5, 51}), (Corners{99, 49, 99, 49}));
    // Between the last pixel's number and the size a corner stays.
    EXPECT_EQ(Selected({99.75, 49.5, 99.875, 49.75}), (Corners{99.75, 49.5, 99.875, 49.75}));
}

TEST(NormalizeSelectionRect, FourCornersAtMinusOneAreNone)
{
    EXPECT_EQ(Selected({-1, -1, -1, -1}), (Corners{-1, -1, -1, -1}));
    for (size_t other = 0; other < 4; ++other) {
        Corners corners = {-1, -1, -1, -1};
        corners[other] = -1.5;
        EXPECT_EQ(Selected(corners), (Corners{0, 0, 0, 0}));
        corners[other] = 3;
        Corners expected = {0, 0, 0, 0};
        expected[other | 2] = 3; // a low corner of 3 is moved to the high end
        EXPECT_EQ(Selected(corners), expected);
    }
}

TEST(NormalizeSelectionRect, APictureWithoutColumnsOrRowsGivesMinusOne)
{
    EXPECT_EQ(Selected({-5, 0, 5, 7}, 0, 5), (Corners{-1, 0, -1, 4}));
    EXPECT_EQ(Selected({2, -5, 3, 5}, 5, 0), (Corners{2, -1, 3, -1}));
    EXPECT_EQ(Selected({0, 0, 0, 0}, 0, 0), (Corners{-1, -1, -1, -1}));
}

TEST(NormalizeSelectionRect, TakesSizesOfAllThirtyTwoBits)
{
    EXPECT_EQ(
        Selected({4294967294.5, 4294967296.0, 4294967294.5, 4294967296.0}, 0xFFFFFFFF, 0xFFFFFFFF),
        (Corners{4294967294.5, 4294967294.0, 4294967294.5, 4294967294.0}));
}

TEST(NormalizeSelectionRect, RefusesNoRectangle)
{
    EXPECT_EQ(NormalizeSelectionRect(nullptr, 3, 3), -4);
}

TEST(NormalizeSelectionRect, IsItsFormulaForCornersOnAllSides)
{
    std::mt19937 random(5);
    const auto corner = [&random](u32 size) {
        const f64 whole = static_cast<f64>(random() % (size * 3 + 8)) - size - 4;
        return random() % 2 == 0 ? whole : whole + (random() % 16) / 16.0;
    };
    for (u32 round = 0; round < 5000; ++round) {
        const u32 width = random() % 34;
        const u32 height = random() % 34;
        const Corners given = {corner(width), corner(height), corner(width), corner(height)};
        Corners expected = given;
        if (given != Corners{-1, -1, -1, -1}) {
            PlainSelect(&expected[0], &expected[2], width);
            PlainSelect(&expected[1], &expected[3], height);
        }
        ASSERT_EQ(Selected(given, width, height), expected) << round;
    }
}
