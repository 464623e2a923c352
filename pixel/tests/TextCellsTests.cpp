// Text letter by letter in cells: the pen's way, and each letter by its formula.

#include "AreaSweep.h"
#include "DrawingCalls.h"
#include "PlainText.h"
#include "platform/testing/Faults.h"

namespace
{

using Calls = std::vector<std::string>;
using tavrix::platform::CountHoldings;
using tavrix::testing::FaultKind;
using tavrix::testing::ForEveryFault;

constexpr const WCHAR* Face = TEXT("Some Face");

/// Where each letter goes by the pen's rules, with the extent that every letter has.
struct PlainPen {
    i64 left, right, bottom, cell, width;
    i64 x, y;

    /// False when the text ends before this letter.
    bool Move(WCHAR letter, bool* drawn)
    {
        *drawn = false;
        if (letter == u'\r')
            return true;
        if (letter == u'\n' || x + width > right) {
            x = left;
            y += cell;
        }
        if (y + cell > bottom)
            return false;
        *drawn = letter != u'\n';
        return true;
    }
};

class TextCells : public PagingTest
{
protected:
    TextCells() { (void)::GetStockObject(SYSTEM_FONT); }

    /// Letters that are that large in the bitmap, with ink by a formula all over it.
    void Letters(i32 width, i32 height)
    {
        extent = {width, height};
        calls.draw = [this](const DrawingCalls::Ink& ink, RECT* place, UINT format) {
            if ((format & DT_CALCRECT) != 0) {
                place->right = extent.x;
                place->bottom = extent.y;
                return static_cast<int>(extent.y);
            }
            std::mt19937 random(7);
            for (size_t i = 0; i < ink.rowBytes * static_cast<size_t>(ink.height); ++i)
                ink.bytes[i] = static_cast<u8>(random());
            return 1;
        };
    }
    /// The ink that Letters puts, for a cell.
    static PlainInk InkOf(i64 side)
    {
        PlainInk ink;
        ink.width = side;
        ink.height = side;
        ink.bytes.resize(ink.RowBytes() * static_cast<size_t>(side));
        std::mt19937 random(7);
        for (u8& byte : ink.bytes)
            byte = static_cast<u8>(random());
        return ink;
    }
    /// The whole of it, written out.
    i32 Plain(PlainRaster& plain, const std::u16string& text, u32 color, PixelRect at, u32 cell,
              u32 scale) const
    {
        const auto pixels = [&](i64 size) {
            return (std::min(size, i64{cell} * scale) + scale - 1) / scale;
        };
        const PlainInk ink = InkOf(i64{cell} * scale);
        PlainPen pen = {at.left, at.right, at.bottom, cell, pixels(extent.x), at.left, at.top};
        for (const WCHAR letter : text) {
            bool drawn = false;
            if (!pen.Move(letter, &drawn))
                break;
            if (!drawn)
                continue;
            const i32 status = PlainLayLetter(plain, ink, color, pen.x, pen.y, pen.width,
                                              pixels(extent.y), at.right, scale);
            if (status < 1)
                return status;
            pen.x += cell;
        }
        return Done;
    }

    POINT extent = {0, 0};
    DrawingCalls calls;
};

} // namespace

TEST_F(TextCells, EqualItsFormulaForEveryScaleAndPlace)
{
    const std::u16string text = u"ab\ncd\r\nefghijk\n\nl";
    Places places(91);
    for (u32 scale = 1; scale <= 8; ++scale)
        for (const u32 depth : AllDepths)
            for (int turn = 0; turn < 12; ++turn) {
                const u32 cell = 1 + places.Below(5);
                Letters(static_cast<i32>(places.Below(cell * scale + 3)),
                        static_cast<i32>(places.Below(cell * scale + 3)));
                Twin twin(1 + places.Below(20), 1 + places.Below(12), depth, places.Word());
                const PixelRect at = SomeArea(places, twin.plain.width, twin.plain.height);
                const u32 color = SomeColor(places);
                EXPECT_EQ(twin.raster.DrawTextCells(text.c_str(), color, Face, at.left, at.top,
                                                    at.right, at.bottom, cell, scale),
                          Plain(twin.plain, text, color, at, cell, scale))
                    << Tell(at);
                ExpectSame({&twin});
                ASSERT_FALSE(::testing::Test::HasFailure())
                    << Tell(twin.plain) << ", " << Tell(at) << ", " << cell << " * " << scale;
            }
}

TEST_F(TextCells, OnlyScales1To8AreThere)
{
    Raster raster;
    ASSERT_EQ(raster.Create(8, 8, 24, nullptr, nullptr), 1);
    for (const u32 scale : {0u, 9u, 0xFFFFFFFFu})
        EXPECT_EQ(raster.DrawTextCells(TEXT("a"), 255, Face, 0, 0, 7, 7, 2, scale), Failed);
    EXPECT_TRUE(calls.log.empty());
    for (const u32 scale : {1u, 8u})
        EXPECT_EQ(raster.DrawTextCells(TEXT("a"), 255, Face, 0, 0, 7, 7, 2, scale), Done);
}

TEST_F(TextCells, TheFontIsBoldAndASquareHoldsALetter)
{
    Raster raster;
    ASSERT_EQ(raster.Create(40, 40, 24, nullptr, nullptr), 1);
    Letters(20, 30);
    EXPECT_EQ(raster.DrawTextCells(TEXT("a"), 255, Face, 0, 0, 39, 39, 12, 3), Done);
    EXPECT_EQ(calls.font.lfWeight, 700);
    EXPECT_EQ(calls.font.lfHeight, 36);
    EXPECT_EQ(std::u16string(calls.font.lfFaceName), Face);
    EXPECT_EQ(calls.header.biWidth, 36);
    EXPECT_EQ(calls.header.biHeight, 36);
    ASSERT_EQ(calls.letters.size(), 2u);
    EXPECT_EQ(calls.letters[0].format & DT_CALCRECT, 1024u) << "measured first";
    EXPECT_EQ(calls.letters[0].text, u"a");
    EXPECT_EQ(calls.letters[1].format & DT_CALCRECT, 0u);
}

TEST_F(TextCells, ThePenMovesByCellsWhateverALettersWidth)
{
    // Ink in the letter's first pixel alone.
    calls.draw = [](const DrawingCalls::Ink& ink, RECT* place, UINT format) {
        if ((format & DT_CALCRECT) != 0)
            place->right = place->bottom = 1;
        else
            ink.Set(0, 0);
        return 1;
    };
    const auto drawn = [](const WCHAR* text, PixelRect at) {
        Raster raster;
        EXPECT_EQ(raster.Create(10, 8, 24, nullptr, nullptr), 1);
        EXPECT_EQ(raster.DrawTextCells(text, 0xFFFFFFFF, Face, at.left, at.top, at.right, at.bottom,
                                       3, 1),
                  Done);
        return Changed(raster, 0);
    };
    const Picture none(8, "..........");
    Picture expected = none;
    expected[1] = ".#..#..#..";
    expected[4] = ".#........";
    EXPECT_EQ(drawn(TEXT("abcd"), {1, 1, 9, 8}), expected);
    EXPECT_EQ(drawn(TEXT("ab\rcd"), {1, 1, 9, 8}), expected) << "a CR is nothing";
    expected[1] = ".#........";
    EXPECT_EQ(drawn(TEXT("a\r\nb"), {1, 1, 9, 8}), expected);
    EXPECT_EQ(drawn(TEXT("a\nb\nc"), {1, 1, 9, 8}), expected) << "7 + 3 passes the bottom";
    EXPECT_EQ(drawn(TEXT("ab"), {1, 1, 2, 7}), expected) << "the second would pass the right";
    EXPECT_EQ(drawn(TEXT("a"), {1, 1, 9, 3}), none) << "1 + 3 passes the bottom";
    expected[4] = none[4];
    EXPECT_EQ(drawn(TEXT("ab\n"), {1, 1, 2, 4}), expected);
    EXPECT_EQ(drawn(TEXT("\n"), {0, 0, 9, 7}), none);
    EXPECT_EQ(drawn(TEXT(""), {0, 0, 9, 7}), none);
    EXPECT_EQ(drawn(nullptr, {0, 0, 9, 7}), none);
    EXPECT_EQ(drawn(TEXT("abc"), {5, 1, 2, 7}), none) << "no letter fits, nor on the lines below";
}

TEST_F(TextCells, PixelsOfALetterWithoutInkLoseOnePartIn256)
{
    calls.draw = [](const DrawingCalls::Ink&, RECT* place, UINT) {
        place->right = 2;
        place->bottom = 1;
        return 1;
    };
    Raster raster;
    ASSERT_EQ(raster.Create(3, 3, 24, nullptr, nullptr), 1);
    ASSERT_EQ(raster.FillAll(0xFFFFFFFF), 1);
    EXPECT_EQ(raster.DrawTextCells(TEXT("a"), 0xFFFFFFFF, Face, 0, 0, 2, 2, 2, 1), Done);
    EXPECT_EQ(Changed(raster, 255), (Picture{"##.", "...", "..."}));
    EXPECT_EQ(PixelOf(raster, 0, 0), (Bytes{254, 254, 254}));
}

TEST_F(TextCells, WithoutLettersNothingIsDrawn)
{
    Twin twin(8, 8, 24, 5);
    EXPECT_EQ(twin.raster.DrawTextCells(TEXT("ab"), 0xFFFFFFFF, Face, 0, 0, 7, 7, 2, 8), Done);
    ExpectSame({&twin});
    EXPECT_EQ(calls.letters.size(), 2u) << "measured, and no more";
}

TEST_F(TextCells, ALineThatDoesNotComeEndsItWithItsCode)
{
    Letters(16, 16);
    for (u32 line = 0; line < 6; ++line) {
        Twin twin(10, 6, 24, 5, Storage::Paging);
        twin.Refuse(line);
        const i32 expected = Plain(twin.plain, u"abc", 0x123456FF, {0, 0, 9, 6}, 2, 8);
        EXPECT_EQ(expected, line < 2 ? NoMemory : Done);
        EXPECT_EQ(twin.raster.DrawTextCells(TEXT("abc"), 0x123456FF, Face, 0, 0, 9, 6, 2, 8),
                  expected);
        ExpectSame({&twin});
    }
}

TEST_F(TextCells, WhatCannotBeMadeFailsAndNothingIsHeld)
{
    const auto held = CountHoldings();
    Raster raster;
    ASSERT_EQ(raster.Create(8, 8, 24, nullptr, nullptr), 1);
    for (const char* call : {"context", "font", "bitmap", "brush"}) {
        calls.fails = call;
        EXPECT_EQ(raster.DrawTextCells(TEXT("a"), 255, Face, 0, 0, 7, 7, 2, 8), Failed) << call;
        EXPECT_EQ(CountHoldings().drawingObjects, held.drawingObjects) << call;
    }
    calls.fails.clear();
    for (const u32 cell : {0u, 0x10000000u, 0x20000000u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        EXPECT_EQ(raster.DrawTextCells(TEXT("a"), 255, Face, 0, 0, 7, 7, cell, 8), Failed) << cell;
    EXPECT_EQ(raster.DrawTextCells(TEXT("a"), 255, Face, 0, 0, 7, 7, 2, 8), Done);
    EXPECT_EQ(CountHoldings().drawingObjects, held.drawingObjects);
}

TEST_F(TextCells, SurviveEveryShortageOfMemory)
{
    Letters(16, 16);
    ForEveryFault(FaultKind::Allocation, [] {
        Raster raster;
        if (raster.Create(9, 4, 24, nullptr, nullptr) < Done)
            return;
        const i32 result = raster.DrawTextCells(TEXT("ab"), 255, Face, 0, 0, 8, 3, 2, 8);
        EXPECT_TRUE(result == Done || result == Failed) << result;
    });
}
