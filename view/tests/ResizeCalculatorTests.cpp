// The arithmetic behind the Resolution dialog, with numbers worked out by hand.

#include "view/ResizeCalculator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

ResizeCalculator Of(u32 width, u32 height)
{
    ResizeCalculator calculator;
    calculator.baseWidth = width;
    calculator.baseHeight = height;
    return calculator;
}

} // namespace

TEST(ResizeCalculator, StartsAtThePicturesOwnSizeInPixelsWithTheAspectKept)
{
    ResizeCalculator calculator = Of(640, 480);
    EXPECT_EQ(calculator.scaleX, 1.0);
    EXPECT_EQ(calculator.scaleY, 1.0);
    EXPECT_EQ(calculator.keepAspect, 1u);
    EXPECT_EQ(calculator.widthUnit, 0u);
    EXPECT_EQ(calculator.heightUnit, 0u);
    EXPECT_EQ(calculator.widthLive, 1u);
    EXPECT_EQ(calculator.heightLive, 1u);
    EXPECT_EQ(SizeToShow(calculator, ResizeWidth), 640u);
    EXPECT_EQ(SizeToShow(calculator, ResizeHeight), 480u);
    EXPECT_EQ(calculator.widthValue, 640);
    EXPECT_EQ(calculator.heightValue, 480);
    EXPECT_EQ(WantedSize(calculator, ResizeWidth), 640u);
    EXPECT_EQ(WantedSize(calculator, ResizeHeight), 480u);
}

TEST(ResizeCalculator, PixelsAreAFractionOfTheBaseAndComeBackExactly)
{
    ResizeCalculator calculator = Of(640, 480);
    TypeSize(calculator, ResizeWidth, 160);
    EXPECT_EQ(calculator.scaleX, 0.25);
    EXPECT_EQ(calculator.scaleY, 1.0) << "each by itself";
    TypeSize(calculator, ResizeHeight, 720);
    EXPECT_EQ(calculator.scaleY, 1.5);
    EXPECT_EQ(calculator.scaleX, 0.25);
    for (const u32 base : {1u, 3u, 7u, 640u, 1021u, 65535u})
        for (const u32 typed : {0u, 1u, 2u, 3u, 97u, 639u, 641u, 99999u, 4294967295u}) {
            calculator.baseWidth = base;
            TypeSize(calculator, ResizeWidth, typed);
            EXPECT_EQ(SizeToShow(calculator, ResizeWidth), typed) << base;
            EXPECT_EQ(WantedSize(calculator, ResizeWidth), typed) << base;
        }
}

TEST(ResizeCalculator, PixelsAreWholeAndHalfAPixelIsOne)
{
    ResizeCalculator calculator = Of(10, 10);
    const struct {
        f64 typed;
        f64 scale;
    } rows[] = {{2.5, 0.3}, {2.49, 0.2}, {0.5, 0.1}, {0.4999, 0.0}, {3.0, 0.3}};
    for (const auto& row : rows) {
        TypeSize(calculator, ResizeHeight, row.typed);
        EXPECT_EQ(calculator.scaleY, row.scale) << row.typed;
    }
}

TEST(ResizeCalculator, PercentAreHundredthsAndTheSizeIsRoundedHalfUp)
{
    const struct {
        u32 base;
        f64 percent;
        u32 size;
    } rows[] = {
        {3, 50, 2},  // 1.5
        {5, 50, 3},  // 2.5
        {5, 150, 8}, // 7.5
        {3, 150, 5}, // 4.5
        {7, 33, 2},  // 2.31
        {7, 36, 3},  // 2.52
        {640, 150, 960}, {480, 150, 720}, {100, 12.5, 13}, {100, 12.4, 12},
        {1, 49, 0},      {1, 50, 1},      {9, 0, 0},       {1021, 100, 1021},
    };
    for (const auto& row : rows) {
        ResizeCalculator calculator = Of(row.base, 1);
        calculator.widthUnit = ResizeCalculator::Percent;
        TypeSize(calculator, ResizeWidth, row.percent);
        EXPECT_EQ(WantedSize(calculator, ResizeWidth), row.size)
            << row.base << " at " << row.percent;
    }
}

TEST(ResizeCalculator, EveryWholeNumberOfPercentShowsItself)
{
    ResizeCalculator calculator = Of(640, 480);
    calculator.heightUnit = ResizeCalculator::Percent;
    for (u32 percent = 0; percent <= 2000; ++percent) {
        TypeSize(calculator, ResizeHeight, percent);
        ASSERT_EQ(SizeToShow(calculator, ResizeHeight), percent);
        ASSERT_EQ(calculator.heightValue, percent);
    }
    TypeSize(calculator, ResizeHeight, 12.5);
    EXPECT_EQ(SizeToShow(calculator, ResizeHeight), 13u) << "half up";
    EXPECT_EQ(WantedSize(calculator, ResizeHeight), 60u) << "what is shown is not what counts";
}

TEST(ResizeCalculator, AnotherUnitShowsTheSameSizeInIt)
{
    ResizeCalculator calculator = Of(640, 480);
    TypeSize(calculator, ResizeWidth, 320);
    calculator.widthUnit = ResizeCalculator::Percent;
    EXPECT_EQ(SizeToShow(calculator, ResizeWidth), 50u);
    EXPECT_EQ(SizeToShow(calculator, ResizeHeight), 480u);
    EXPECT_EQ(WantedSize(calculator, ResizeWidth), 320u);
    calculator.widthUnit = ResizeCalculator::Pixels;
    EXPECT_EQ(SizeToShow(calculator, ResizeWidth), 320u);
}

TEST(ResizeCalculator, KeepingTheAspectGivesTheOtherSideTheSameFraction)
{
    ResizeCalculator calculator = Of(5, 3);
    calculator.widthUnit = ResizeCalculator::Percent;
    TypeSize(calculator, ResizeWidth, 150);
    KeepAspect(calculator, ResizeWidth);
    EXPECT_EQ(WantedSize(calculator, ResizeWidth), 8u);
    EXPECT_EQ(WantedSize(calculator, ResizeHeight), 5u);
    TypeSize(calculator, ResizeHeight, 6);
    KeepAspect(calculator, ResizeHeight);
    EXPECT_EQ(calculator.scaleX, 2.0);
    EXPECT_EQ(WantedSize(calculator, ResizeWidth), 10u);
}

TEST(ResizeCalculator, ASideOfNoPixelsStaysAtNoneInEveryUnit)
{
    ResizeCalculator calculator = Of(0, 0);
    for (const u32 unit : {ResizeCalculator::Pixels, ResizeCalculator::Percent})
        for (const f64 typed : {0.0, 1.0, 640.0, 1e300}) {
            calculator.widthUnit = unit;
            TypeSize(calculator, ResizeWidth, typed);
            EXPECT_FALSE(std::isnan(calculator.scaleX));
            EXPECT_EQ(WantedSize(calculator, ResizeWidth), 0u) << typed;
        }
    calculator = Of(0, 10);
    TypeSize(calculator, ResizeWidth, 640);
    KeepAspect(calculator, ResizeWidth);
    EXPECT_EQ(calculator.scaleX, 1.0) << "pixels of nothing are no fraction";
    EXPECT_EQ(WantedSize(calculator, ResizeHeight), 10u);
}

TEST(ResizeCalculator, WhatHasNoPlaceIn32BitsIsTheNearestThatHas)
{
    const f64 infinite = std::numeric_limits<f64>::infinity();
    for (const u32 unit : {ResizeCalculator::Pixels, ResizeCalculator::Percent})
        for (const f64 typed : {1e13, 1e300, infinite}) {
            ResizeCalculator calculator = Of(640, 0);
            calculator.widthUnit = unit;
            TypeSize(calculator, ResizeWidth, typed);
            EXPECT_EQ(SizeToShow(calculator, ResizeWidth), 4294967295u) << typed;
            EXPECT_EQ(WantedSize(calculator, ResizeWidth), 4294967295u) << typed;
            // Nothing times infinity is no number at all.
            KeepAspect(calculator, ResizeWidth);
            EXPECT_EQ(WantedSize(calculator, ResizeHeight), 0u) << typed;
            TypeSize(calculator, ResizeWidth, -typed);
            EXPECT_EQ(SizeToShow(calculator, ResizeWidth), 0u) << typed;
        }
    ResizeCalculator calculator = Of(640, 480);
    TypeSize(calculator, ResizeWidth, std::numeric_limits<f64>::quiet_NaN());
    EXPECT_EQ(SizeToShow(calculator, ResizeWidth), 0u);
    EXPECT_EQ(WantedSize(calculator, ResizeWidth), 0u);
}
