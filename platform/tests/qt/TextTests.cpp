#include "platform/testing/Faults.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"
#include "platform/tests/qt/TextPicture.h"

#include <gtest/gtest.h>

#include <QFontMetrics>

#include <cmath>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

using namespace tavrix::testing;
using namespace tavrix::test;

namespace
{

// A face all of whose Latin signs are as wide as each other.
constexpr const WCHAR* Fixed = TEXT("DejaVu Sans Mono");

/// The toolkit's own measure of that face at a size.
QFont FixedFont(int pixels)
{
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setPixelSize(pixels);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}
double Advance(int pixels)
{
    return QFontMetricsF(FixedFont(pixels)).horizontalAdvance(QLatin1Char('x'));
}
int LineHeight(int pixels)
{
    return QFontMetrics(FixedFont(pixels)).height();
}

class Text : public ::testing::Test
{
protected:
    Scope scope;
    TestWindow up; // the toolkit's measures need it
};

} // namespace

TEST_F(Text, OfOneBitSetsBitsAndLeavesTheGroundAsItIs)
{
    TextPicture picture(400, 100, 1);
    picture.Use(80);
    // The largest size of which a line is no higher than the cell.
    QFont font(QStringLiteral("DejaVu Sans"));
    int height = 0;
    for (int pixels = 1; height <= 80; ++pixels) {
        font.setPixelSize(pixels + 1);
        if (QFontMetrics(font).height() > 80)
            break;
        height = QFontMetrics(font).height();
    }
    EXPECT_EQ(picture.Draw(u"Hg漢字", DT_WORDBREAK), height);
    const Ink once = picture.Find();
    EXPECT_GT(once.count, 2000);
    EXPECT_LT(once.count, 400 * 100 / 3);
    // What was there stays: a second text lies over the first.
    picture.Draw(u"||||", DT_LEFT);
    EXPECT_GT(picture.Find().count, once.count);
}

TEST_F(Text, ABlockFillsItsCellWithoutAHole)
{
    TextPicture picture(200, 100, 1);
    picture.Use(-64, Fixed);
    picture.Draw(u"\x2588", DT_LEFT);
    const Ink ink = picture.Find();
    EXPECT_NEAR(ink.Width(), Advance(64), 1.5);
    EXPECT_NEAR(ink.Height(), LineHeight(64), 2);
    EXPECT_EQ(ink.count, ink.Width() * ink.Height());
    EXPECT_LE(ink.left, 1);
    EXPECT_LE(ink.top, 1);
}

TEST_F(Text, InADeepPictureHasTheTextColourAloneBesideTheGround)
{
    for (const int depth : {2, 4, 8, 24, 32}) {
        TextPicture picture(300, 80, depth);
        picture.Use(60);
        const COLORREF wanted = depth < 24 ? RGB(2, 2, 2) : RGB(250, 130, 7);
        EXPECT_EQ(SetTextColor(picture.dc, wanted), RGB(0, 0, 0));
        picture.Draw(u"Sage 漢", DT_LEFT);
        const Ink ink = picture.Find();
        EXPECT_GT(ink.count, 500) << depth;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x)
                if (picture.IsSet(x, y)) {
                    ASSERT_EQ(GetPixel(picture.dc, x, y), wanted) << depth;
                }
    }
}

TEST_F(Text, LooksTheSameInRowsFromTheBottomAndFromTheTopAndInAnyDepth)
{
    std::vector<std::string> looks;
    for (const int depth : {1, 4, 24, 32})
        for (const int height : {120, -120}) {
            TextPicture picture(333, height, depth);
            picture.Use(50);
            SetTextColor(picture.dc, depth == 1 ? RGB(0, 0, 0) : RGB(255, 255, 255));
            picture.Draw(u"Signs 日本 and more of them", DT_WORDBREAK);
            looks.push_back(picture.Rows());
        }
    for (const std::string& look : looks)
        EXPECT_EQ(look, looks.front());
    EXPECT_NE(looks.front().find('#'), std::string::npos);
}

TEST_F(Text, StaysWithinTheRectangleUnlessItNeedNot)
{
    TextPicture picture(300, 200, 1);
    picture.Use(-40, Fixed);
    const RECT room{50, 60, 111, 83};
    picture.Draw(u"█████\n█████", DT_LEFT, room);
    const Ink clipped = picture.Find();
    EXPECT_LE(clipped.left, 51);
    EXPECT_GE(clipped.left, 50);
    EXPECT_LE(clipped.top, 61);
    EXPECT_GE(clipped.top, 60);
    EXPECT_EQ(clipped.right, 111);
    EXPECT_EQ(clipped.bottom, 83);
    picture.Draw(u"█████\n█████", DT_LEFT | DT_NOCLIP, room);
    const Ink free = picture.Find();
    EXPECT_NEAR(free.right, 50 + 5 * Advance(40), 2);
    EXPECT_NEAR(free.bottom, 60 + 2 * LineHeight(40), 2);
}

TEST_F(Text, StandsLeftInTheMiddleOrRight)
{
    TextPicture picture(300, 60, 1);
    picture.Use(-40, Fixed);
    const double advance = Advance(40);
    const RECT room{30, 0, 280, 60};
    struct Case {
        UINT format;
        double left;
    };
    for (const Case& one : {Case{DT_LEFT, 30.0}, Case{DT_CENTER, 30 + (250 - 2 * advance) / 2},
                            Case{DT_RIGHT, 280 - 2 * advance}}) {
        picture.Clear();
        picture.Draw(u"██", one.format, room);
        EXPECT_NEAR(picture.Find().left, one.left, 1.5) << one.format;
    }
    // Spaces at a line's end hang where lines break, and do not push the text aside.
    picture.Clear();
    picture.Draw(u"██   ", DT_RIGHT | DT_WORDBREAK, room);
    EXPECT_NEAR(picture.Find().left, 280 - 2 * advance, 1.5);
}

TEST_F(Text, LinesBeginAtEveryEndOfALine)
{
    TextPicture picture(300, 300, 1);
    picture.Use(-30, Fixed);
    const int line = LineHeight(30);
    for (const std::u16string text : {u"█\r█", u"█\n█", u"█\r\n█"})
        EXPECT_EQ(picture.Draw(text, DT_LEFT), 2 * line);
    EXPECT_EQ(picture.Draw(u"█\n\r█", DT_LEFT), 3 * line) << "an empty line counts";
    EXPECT_EQ(picture.Draw(u"█\n", DT_LEFT), 2 * line);
    picture.Clear();
    EXPECT_EQ(picture.Draw(u"\n", DT_WORDBREAK), 2 * line);
    EXPECT_EQ(picture.Find().count, 0);
    EXPECT_EQ(picture.Draw(u"█\r\n█", DT_SINGLELINE | DT_WORDBREAK), line);
    EXPECT_NEAR(picture.Find().Width(), 4 * Advance(30), 2) << "there they are as wide as spaces";
    picture.Clear();
    picture.Draw(u"█\n\n█", DT_LEFT);
    EXPECT_GT(picture.Find({0, 0, 300, line}).count, 0);
    EXPECT_EQ(picture.Find({0, line + 2, 300, 2 * line - 2}).count, 0);
    EXPECT_GT(picture.Find({0, 2 * line + 2, 300, 3 * line}).count, 0);
}

TEST_F(Text, AmpersandsAreDrawnAsTheyStand)
{
    TextPicture picture(300, 60, 1);
    picture.Use(-30, Fixed);
    const double advance = Advance(30);
    EXPECT_EQ(picture.Measure(u"a&b&&c", DT_LEFT).right, std::ceil(6 * advance));
    EXPECT_EQ(picture.Measure(u"a&b&&c", DT_NOPREFIX).right, std::ceil(6 * advance));
}

TEST_F(Text, MeasuringGivesTheBoxThatHoldsTheInkAndDrawsNothing)
{
    TextPicture picture(600, 300, 1);
    picture.Use(-40, Fixed);
    const double advance = Advance(40);
    const int line = LineHeight(40);
    RECT box = picture.Measure(u"███ ██", DT_LEFT);
    EXPECT_EQ(picture.Find().count, 0);
    EXPECT_EQ(box.right, std::ceil(6 * advance));
    EXPECT_EQ(box.bottom, line);
    picture.Draw(u"███ ██", DT_LEFT);
    EXPECT_NEAR(picture.Find().right, box.right, 2);
    EXPECT_NEAR(picture.Find().bottom, box.bottom, 2);
    // Broken at words, the longest line counts, or a word that is longer than the room.
    box = picture.Measure(u"███ ██", DT_WORDBREAK, static_cast<int>(4.5 * advance));
    EXPECT_EQ(box.right, std::ceil(3 * advance));
    EXPECT_EQ(box.bottom, 2 * line);
    box = picture.Measure(u"a ██████ b", DT_WORDBREAK, static_cast<int>(3 * advance));
    EXPECT_EQ(box.right, std::ceil(6 * advance));
    EXPECT_EQ(box.bottom, 3 * line);
    // In the room that was measured the lines break the same, with no word longer than it.
    for (int letters = 7; letters < 25; ++letters) {
        const std::u16string text = u"one three eleven of 日本語 it";
        const RECT first = picture.Measure(text, DT_WORDBREAK, static_cast<int>(letters * advance));
        EXPECT_EQ(picture.Measure(text, DT_WORDBREAK, first.right).bottom, first.bottom);
    }
    // The corner at the upper left stays where it is.
    RECT away{-70, 900, 0, 0};
    EXPECT_EQ(DrawTextW(picture.dc, TEXT("██"), 2, &away, DT_CALCRECT), line);
    EXPECT_EQ(away.left, -70);
    EXPECT_EQ(away.top, 900);
    EXPECT_EQ(away.right, -70 + std::ceil(2 * advance));
    EXPECT_EQ(away.bottom, 900 + line);
}

TEST_F(Text, ACountOfMinusOneIsUpToTheZeroAndOthersAreTakenAsTheyAre)
{
    TextPicture picture(300, 60, 1);
    picture.Use(-30, Fixed);
    const double advance = Advance(30);
    RECT box{};
    EXPECT_GT(DrawTextW(picture.dc, TEXT("four"), -1, &box, DT_CALCRECT), 0);
    EXPECT_EQ(box.right, std::ceil(4 * advance));
    box = {};
    EXPECT_GT(DrawTextW(picture.dc, TEXT("four"), 2, &box, DT_CALCRECT), 0);
    EXPECT_EQ(box.right, std::ceil(2 * advance));
    box = {5, 6, 7, 8};
    EXPECT_EQ(DrawTextW(picture.dc, TEXT("four"), 0, &box, DT_CALCRECT), 0);
    EXPECT_EQ(box.right, 5);
    EXPECT_EQ(box.bottom, 6);
    EXPECT_EQ(DrawTextW(picture.dc, TEXT(""), -1, &box, DT_LEFT), 0);
}

TEST_F(Text, WhatCannotBeDrawnGivesZero)
{
    TextPicture picture(300, 60, 1);
    RECT room{0, 0, 300, 60};
    EXPECT_EQ(DrawTextW(picture.dc, nullptr, -1, &room, DT_LEFT), 0);
    EXPECT_EQ(DrawTextW(picture.dc, TEXT("x"), -1, nullptr, DT_LEFT), 0);
    EXPECT_EQ(DrawTextW(picture.dc, TEXT("x"), -2, &room, DT_LEFT), 0);
    EXPECT_EQ(DrawTextW(nullptr, TEXT("x"), -1, &room, DT_LEFT), 0);
    const HDC gone = CreateCompatibleDC(nullptr);
    DeleteDC(gone);
    EXPECT_EQ(DrawTextW(gone, TEXT("x"), -1, &room, DT_LEFT), 0);
    const HDC screen = GetDC(nullptr);
    EXPECT_EQ(DrawTextW(screen, TEXT("x"), -1, &room, DT_LEFT), 0);
    ReleaseDC(nullptr, screen);
    int fromAnother = -1;
    std::thread([&] { fromAnother = picture.Draw(u"x", DT_LEFT); }).join();
    EXPECT_EQ(fromAnother, 0);
    EXPECT_EQ(picture.Find().count, 0);
    EXPECT_GT(picture.Draw(u"x", DT_LEFT), 0);
}

TEST_F(Text, WithoutMemoryForItsDrawingGivesZeroAndLeavesThePicture)
{
    TextPicture picture(300, 60, 1);
    picture.Use(-30, Fixed);
    {
        const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
        EXPECT_EQ(picture.Draw(u"x", DT_LEFT), 0);
        EXPECT_TRUE(fault.Fired());
    }
    EXPECT_EQ(picture.Find().count, 0);
    EXPECT_GT(picture.Draw(u"x", DT_LEFT), 0);
}

TEST_F(Text, RectanglesFarAwayEmptyOrReversedDrawNothing)
{
    TextPicture picture(100, 60, 1);
    picture.Use(-30, Fixed);
    constexpr LONG Far = 0x7FFFFFFF;
    for (const RECT& room :
         {RECT{50, 50, 20, 20}, RECT{10, 10, 10, 10}, RECT{Far - 1, Far - 1, Far, Far},
          RECT{-Far, -Far, -Far + 9, -Far + 9}, RECT{1000, 0, 2000, 60}, RECT{0, -500, 90, -400}})
        for (const UINT format : {DT_LEFT, DT_WORDBREAK, DT_WORDBREAK | DT_CENTER, DT_RIGHT}) {
            picture.Draw(u"██ ██", format, room);
            EXPECT_EQ(picture.Find().count, 0) << room.left << " " << format;
        }
    // The whole range of the numbers is a rectangle too.
    picture.Draw(u"██", DT_WORDBREAK, {0, 0, Far, Far});
    EXPECT_NEAR(picture.Find().Width(), 2 * Advance(30), 2);
    picture.Draw(u"██", DT_WORDBREAK | DT_RIGHT, {-Far, -Far, Far, Far});
}

TEST_F(Text, LinesAboveThePictureAreCountedNotDrawn)
{
    TextPicture picture(100, 60, 1);
    picture.Use(-30, Fixed);
    const int line = LineHeight(30);
    std::u16string text;
    for (int i = 0; i < 50; ++i)
        text += i == 40 ? u"█\n" : u"\n";
    picture.Draw(text, DT_LEFT, {0, -40 * line, 100, 60});
    EXPECT_NEAR(picture.Find().top, 0, 1);
    EXPECT_NEAR(picture.Find().Height(), line, 2);
}

TEST_F(Text, AMillionSignsAndHugeFontsEndSoon)
{
    TextPicture picture(320, 240, 1);
    picture.Use(-20, Fixed);
    std::u16string words;
    while (words.size() < 200000)
        words += u"The quick brown 日本語 ";
    EXPECT_GE(picture.Draw(words, DT_WORDBREAK), 240);
    EXPECT_LE(picture.Draw(words, DT_WORDBREAK), 240 + LineHeight(20));
    EXPECT_GT(picture.Draw(std::u16string(200000, u'x'), DT_WORDBREAK), 0);
    EXPECT_GT(picture.Draw(std::u16string(200000, u'\n'), DT_WORDBREAK), 0);
    EXPECT_EQ(picture.Measure(std::u16string(200000, u'\n'), DT_WORDBREAK, 100).bottom,
              200001 * LineHeight(20));
    EXPECT_GT(picture.Measure(words, DT_WORDBREAK, 200).bottom, 1000);
    picture.Clear();
    picture.Use(10000);
    EXPECT_GT(picture.Draw(u"██ 漢", DT_WORDBREAK), 5000);
    picture.Use(-0x7FFFFFFF - 1);
    picture.Draw(u"漢", DT_WORDBREAK);
    EXPECT_GT(picture.Find().count + 1, 0);
}

TEST_F(Text, TheMiddleOfALongLineIsDrawnWhereItBelongs)
{
    TextPicture picture(200, 60, 1);
    picture.Use(-30, Fixed);
    std::u16string text(4001, u' ');
    text[2000] = u'█';
    picture.Draw(text, DT_CENTER | DT_SINGLELINE);
    EXPECT_NEAR((picture.Find().left + picture.Find().right) / 2.0, 100, 2);
    EXPECT_NEAR(picture.Find().Width(), Advance(30), 2);
}

TEST_F(Text, ATabGoesToTheNextOfTheStopsThatStandEightWidthsApart)
{
    TextPicture picture(600, 60, 1);
    picture.Use(-30, Fixed);
    const double stop = 8 * Advance(30);
    picture.Draw(u"\t█", DT_LEFT);
    EXPECT_NEAR(picture.Find().left, stop, 3);
    picture.Clear();
    picture.Draw(u"abc\t█", DT_LEFT);
    EXPECT_NEAR(picture.Find({100, 0, 600, 60}).left, stop, 3);
}

TEST_F(Text, BothKindsOfFacesHaveTheirLatinAndJapaneseSigns)
{
    std::vector<std::string> looks;
    for (const WCHAR* face : {TEXT("DejaVu Sans"), TEXT("DejaVu Serif"), TEXT("VL Gothic")}) {
        TextPicture latin(200, 60, 1);
        latin.Use(50, face);
        latin.Draw(u"Rag", DT_LEFT);
        EXPECT_GT(latin.Find().count, 300);
        looks.push_back(latin.Rows());
        TextPicture japanese(200, 60, 1);
        japanese.Use(50, face);
        japanese.Draw(u"漢字", DT_LEFT);
        EXPECT_GT(japanese.Find().count, 500);
    }
    EXPECT_NE(looks[0], looks[1]);
    EXPECT_NE(looks[0], looks[2]);
    TextPicture bold(200, 60, 1);
    bold.Use(50, TEXT("DejaVu Sans"), FW_BOLD);
    bold.Draw(u"Rag", DT_LEFT);
    EXPECT_NE(bold.Rows(), looks[0]);
}

TEST_F(Text, IsDrawnOnAWindowToo)
{
    const HDC dc = GetDC(up.handle);
    RECT room{0, 0, 200, 60};
    EXPECT_GT(DrawTextW(dc, TEXT("█"), 1, &room, DT_LEFT), 0);
    ReleaseDC(up.handle, dc);
    Pump(20);
    const Picture picture = WindowPixels(up.handle);
    size_t black = 0;
    for (const uint32_t pixel : picture.pixels)
        black += pixel == 0 ? 1 : 0;
    EXPECT_GT(black, 50u);
}
