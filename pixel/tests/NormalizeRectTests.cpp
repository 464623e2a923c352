#include "pixel/NormalizeRect.h"

#include <gtest/gtest.h>

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

TEST(NormalizeRect, OrdersFractions)
{
    DoubleRect rectangle = {0.75, 3.5, 0.25, 3.5};
    EXPECT_EQ(NormalizeDoubleRect(&rectangle), 1);
    EXPECT_EQ(rectangle.left, 0.25);
    EXPECT_EQ(rectangle.right, 0.75);
    EXPECT_EQ(rectangle.top, 3.5);
    EXPECT_EQ(rectangle.bottom, 3.5);
    EXPECT_EQ(NormalizeDoubleRect(nullptr), -4);
}
