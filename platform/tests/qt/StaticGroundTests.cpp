// Bitmaps in static controls, and the ground that a parent gives them.
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/Bytes.h"
#include "platform/tests/qt/ControlResources.h"
#include "platform/tests/qt/TestWindow.h"

#include "platform/qt/BitmapResource.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using namespace tavrix::testing;
using tavrix::platform::ParseBitmapResource;
using tavrix::test::TestWindow;

namespace
{

std::function<INT_PTR(HWND, UINT, WPARAM, LPARAM)> onMessage;

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    return onMessage ? onMessage(dialog, message, wParam, lParam) : 0;
}

class StaticGround : public ::testing::Test
{
protected:
    ~StaticGround() override
    {
        onMessage = nullptr;
        DestroyWindow(dialog);
        DeleteObject(brush);
    }

    void Make()
    {
        dialog = CreateDialogIndirectParamW(ControlResources(), DialogResource(220), nullptr,
                                            Procedure, 0);
        ASSERT_NE(dialog, nullptr);
        ShowWindow(dialog, SW_SHOW);
        Settle();
    }
    void Settle()
    {
        Pump(30);
        PumpUntil([this] { return !GetUpdateRect(dialog, nullptr, FALSE); });
    }
    Picture Look(int id) { return WindowPixels(GetDlgItem(dialog, id)); }

    /// Answers a brush for one control and counts the questions.
    void AnswerFor(int id, COLORREF color)
    {
        DeleteObject(brush);
        brush = CreateSolidBrush(color);
        onMessage = [this, id](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
            if (message != WM_CTLCOLORSTATIC)
                return 0;
            EXPECT_NE(wParam, 0u);
            if (reinterpret_cast<HWND>(lParam) != GetDlgItem(window, id))
                return 0;
            ++asked;
            return reinterpret_cast<INT_PTR>(brush);
        };
    }

    Scope scope;
    HWND dialog = nullptr;
    HBRUSH brush = nullptr;
    int asked = 0;
};

/// A header of a resource, ready to have its pixels appended.
Bytes Header(unsigned width, unsigned height, unsigned depth, unsigned colors = 0,
             unsigned length = 40, unsigned packing = 0, unsigned planes = 1)
{
    Bytes bytes;
    bytes.Double(length).Double(width).Double(height).Word(planes).Word(depth).Double(packing);
    bytes.Double(0).Double(0).Double(0).Double(colors).Double(0);
    return bytes;
}

std::vector<uint32_t> PixelsOf(const Bytes& bytes)
{
    const auto picture = ParseBitmapResource(bytes.Data(), bytes.Size());
    return picture ? picture->pixels : std::vector<uint32_t>{};
}

} // namespace

TEST(BitmapResource, EveryDepthIsReadFromTheTop)
{
    using Pixels = std::vector<uint32_t>;
    const Bytes colors =
        Bytes().Double(0x000000).Double(0x112233).Double(0x445566).Double(0x778899);
    // Nine pixels of one bit: 1 0 1 0 0 0 0 0 1.
    Bytes one = Header(9, 1, 1);
    one.Append(Bytes().Double(0xFF0000).Double(0x0000FF).Byte(0xA0).Byte(0x80).Word(0));
    const uint32_t off = 0xFFFF0000;
    const uint32_t on = 0xFF0000FF;
    EXPECT_EQ(PixelsOf(one), (Pixels{on, off, on, off, off, off, off, off, on}));
    // Four bits with four colours; a fifth has none.
    Bytes four = Header(3, 1, 4, 4);
    four.Append(colors).Byte(0x31).Byte(0x50).Word(0);
    EXPECT_EQ(PixelsOf(four), (Pixels{0xFF778899, 0xFF112233, 0xFF000000}));
    Bytes eight = Header(2, 2, 8, 4);
    eight.Append(colors).Byte(1).Byte(2).Word(0).Byte(3).Byte(0).Word(0);
    EXPECT_EQ(PixelsOf(eight), (Pixels{0xFF778899, 0xFF000000, 0xFF112233, 0xFF445566}))
        << "the last row is the top one";
    Bytes down = Header(1, 0xFFFFFFFE, 24);
    down.Append(Bytes().Double(0x010203).Double(0x040506));
    EXPECT_EQ(PixelsOf(down), (Pixels{0xFF010203, 0xFF040506})) << "a negative height is top-down";
    Bytes whole = Header(2, 1, 32, 0, 124);
    for (int i = 40; i < 124; ++i)
        whole.Byte(0xEE);
    whole.Double(0x00ABCDEF).Double(0x80123456);
    EXPECT_EQ(PixelsOf(whole), (Pixels{0xFFABCDEF, 0xFF123456}));
}

TEST(BitmapResource, WhatItsBytesCannotBeIsRefused)
{
    Bytes good = Header(2, 2, 24);
    good.Append(Bytes().Double(1).Double(2).Double(3).Double(4));
    ASSERT_EQ(PixelsOf(good).size(), 4u);
    for (size_t cut = 0; cut < good.Size(); ++cut)
        EXPECT_FALSE(ParseBitmapResource(good.Data(), cut)) << cut;
    EXPECT_FALSE(ParseBitmapResource(nullptr, 100));

    const Bytes pixels = Bytes().Double(1).Double(2).Double(3).Double(4);
    const Bytes bad[] = {Header(0, 2, 24),
                         Header(0xFFFFFFFE, 2, 24),
                         Header(2, 0, 24),
                         Header(2, 0x80000000, 24),
                         Header(0x7FFFFFFF, 1, 1),
                         Header(1, 0x7FFFFFFF, 1),
                         Header(0x40000000, 4, 32),
                         Header(2, 2, 16),
                         Header(2, 2, 0),
                         Header(2, 2, 24, 0, 39),
                         Header(2, 2, 24, 0, 12),
                         Header(2, 2, 24, 0, 0xFFFFFFF0),
                         Header(2, 2, 8, 0, 40, 1),
                         Header(2, 2, 24, 0, 40, 3),
                         Header(2, 2, 24, 0, 40, 0, 2),
                         Header(2, 2, 24, 0xFFFFFFFF)};
    for (const Bytes& header : bad) {
        Bytes bytes = header;
        bytes.Append(pixels);
        EXPECT_FALSE(ParseBitmapResource(bytes.Data(), bytes.Size())) << &header - bad;
    }
}

TEST_F(StaticGround, ABitmapGivesItsControlItsSizeAndIsDrawnPixelByPixel)
{
    Make();
    const Picture picture = Look(1048);
    ASSERT_EQ(picture.width, 3);
    ASSERT_EQ(picture.height, 2);
    EXPECT_EQ(picture.pixels,
              (std::vector<uint32_t>{0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF, 0x000000, 0xFFFF00}));
    const Picture striped = Look(1049);
    ASSERT_EQ(striped.width, 10);
    ASSERT_EQ(striped.height, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 10; ++x)
            EXPECT_EQ(striped.At(x, y), y % 2 == 1 && x < 9 ? 0xFF8000u : 0x204060u);
}

TEST_F(StaticGround, ABitmapThatIsBrokenOrMissingShowsNothing)
{
    Make();
    const uint32_t around = WindowPixels(dialog).At(4, 40);
    for (const int id : {1050, 1051}) {
        const Picture picture = Look(id);
        ASSERT_GT(picture.width, 5) << "the size of the template";
        for (const uint32_t pixel : picture.pixels)
            ASSERT_EQ(pixel, around) << id;
    }
}

TEST_F(StaticGround, ABitmapTellsOfClicksOnlyIfItAsksForThem)
{
    std::vector<int> commands;
    int presses = 0;
    onMessage = [&](HWND, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_COMMAND)
            commands.push_back(LOWORD(wParam));
        presses += message == WM_LBUTTONDOWN;
        return 0;
    };
    Make();
    ClickControl(dialog, 1048);
    Pump(10);
    EXPECT_EQ(presses, 1) << "the pointer goes through to the dialog";
    EXPECT_TRUE(commands.empty());
    ClickControl(dialog, 1049);
    Pump(10);
    EXPECT_EQ(presses, 1);
    EXPECT_EQ(commands, (std::vector<int>{1049}));
}

TEST_F(StaticGround, TheBrushThatTheDialogAnswersFillsTheControlBelowItsContent)
{
    AnswerFor(1052, RGB(10, 20, 200));
    Make();
    for (const uint32_t pixel : Look(1052).pixels)
        ASSERT_EQ(pixel, 0x0A14C8u);
    const int before = asked;
    EXPECT_LE(before, 2) << "when it is drawn, and when the dialog below it is";
    Pump(50);
    EXPECT_EQ(asked, before);
    const uint32_t plain = WindowPixels(dialog).At(4, 40);
    EXPECT_EQ(Look(1053).At(Look(1053).width - 1, 1), plain) << "another control has none";

    AnswerFor(1053, RGB(1, 200, 30));
    InvalidateRect(GetDlgItem(dialog, 1053), nullptr, TRUE);
    Pump(30);
    const Picture text = Look(1053);
    EXPECT_EQ(text.At(text.width - 1, 1), 0x01C81Eu);
    size_t other = 0;
    for (const uint32_t pixel : text.pixels)
        other += pixel != 0x01C81E;
    EXPECT_GT(other, 20u) << "the text lies over it";
    EXPECT_EQ(Look(1052).At(2, 2), 0x0A14C8u) << "not asked again";
}

TEST_F(StaticGround, InvalidatingTheControlOrTheDialogAsksAgainAndAHollowBrushIsNone)
{
    AnswerFor(1052, RGB(10, 20, 200));
    Make();
    const uint32_t plain = WindowPixels(dialog).At(4, 40);
    const HWND control = GetDlgItem(dialog, 1052);
    AnswerFor(1052, RGB(200, 20, 10));
    Pump(30);
    EXPECT_EQ(Look(1052).At(2, 2), 0x0A14C8u);
    InvalidateRect(control, nullptr, TRUE);
    EXPECT_EQ(Look(1052).At(2, 2), 0xC8140Au);
    AnswerFor(1052, RGB(3, 4, 5));
    InvalidateRect(dialog, nullptr, TRUE);
    Settle();
    EXPECT_EQ(Look(1052).At(2, 2), 0x030405u);
    onMessage = [](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
        return message == WM_CTLCOLORSTATIC ? reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH))
                                            : 0;
    };
    InvalidateRect(control, nullptr, TRUE);
    EXPECT_EQ(Look(1052).At(2, 2), plain);
}

TEST_F(StaticGround, ADialogThatDrawsOnTheControlWhileItIsAskedComesToRest)
{
    int paints = 0;
    HDC dc = nullptr;
    onMessage = [&](HWND window, UINT message, WPARAM, LPARAM lParam) -> INT_PTR {
        if (message == WM_PAINT) {
            ++paints;
            const RECT area{0, 0, 5, 5};
            FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
            return FALSE;
        }
        if (message != WM_CTLCOLORSTATIC)
            return FALSE;
        ++asked;
        if (dc == nullptr)
            dc = GetDC(GetDlgItem(window, 1052));
        SendMessageW(window, WM_PAINT, 0, 0);
        return reinterpret_cast<HWND>(lParam) == GetDlgItem(window, 1052)
                   ? reinterpret_cast<INT_PTR>(brush)
                   : 0;
    };
    brush = CreateSolidBrush(RGB(0, 255, 0));
    dialog =
        CreateDialogIndirectParamW(ControlResources(), DialogResource(220), nullptr, Procedure, 0);
    dc = GetDC(GetDlgItem(dialog, 1052));
    ShowWindow(dialog, SW_SHOW);
    Pump(100);
    const Picture picture = Look(1052);
    EXPECT_EQ(picture.At(4, 4), 0x000000u);
    EXPECT_EQ(picture.At(5, 5), 0x00FF00u);
    const int before = asked;
    const int paintsBefore = paints;
    Pump(100);
    EXPECT_EQ(asked, before);
    EXPECT_EQ(paints, paintsBefore);
    EXPECT_LE(asked, 14) << "six controls, each at most twice and the one drawn on once more";
    ReleaseDC(GetDlgItem(dialog, 1052), dc);
}
