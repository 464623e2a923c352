// Where lines break, by rows of blocks and spaces that are read back from the picture's own ink.
#include "platform/qt/TextBreaks.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"
#include "platform/tests/qt/TextPicture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace tavrix::testing;
using namespace tavrix::test;
using tavrix::platform::NextStretch;
using tavrix::platform::SignEnd;
using tavrix::platform::Stretch;

namespace
{

using Pieces = std::vector<std::u16string>;

/// A text cut into its stretches, each with the spaces behind it.
Pieces Cut(const std::u16string& text)
{
    Pieces pieces;
    for (size_t at = 0; at < text.size();) {
        const Stretch stretch = NextStretch(text, at);
        pieces.push_back(text.substr(at, stretch.end - at));
        at = stretch.end;
    }
    return pieces;
}

class Wrapping : public ::testing::Test
{
protected:
    /// How many lines a text has in a room of that many signs of a fixed width.
    int Lines(const std::u16string& text, double signs, const WCHAR* face)
    {
        TextPicture picture(8, 8, 1);
        picture.Use(-40, face);
        const double one = picture.Measure(u"漢漢漢漢漢漢漢漢漢漢", DT_LEFT).right / 10.0;
        const double letter = picture.Measure(u"xxxxxxxxxx", DT_LEFT).right / 10.0;
        const double width = text.front() < 0x100 ? letter : one;
        const RECT box =
            picture.Measure(text, DT_WORDBREAK, static_cast<int>(std::ceil(signs * width)));
        return box.bottom / picture.Measure(u"x", DT_LEFT).bottom;
    }

    Scope scope;
    TestWindow up;
};

} // namespace

TEST(TextBreaks, AreBehindSpacesAndNowhereElseInLatin)
{
    EXPECT_EQ(Cut(u"one two  three"), (Pieces{u"one ", u"two  ", u"three"}));
    EXPECT_EQ(Cut(u"a-b/c,d.e (f) .NET"), (Pieces{u"a-b/c,d.e ", u"(f) ", u".NET"}));
    EXPECT_EQ(Cut(u"  lead"), (Pieces{u"  ", u"lead"}));
    EXPECT_EQ(Cut(u"tab\tnext"), (Pieces{u"tab\t", u"next"}));
    EXPECT_EQ(Cut(u"not\u00A0here"), (Pieces{u"not\u00A0here"}));
    EXPECT_EQ(Cut(u"end   "), (Pieces{u"end   "}));
    const Stretch stretch = NextStretch(u"end   x", 0);
    EXPECT_EQ(stretch.shown, 3u);
    EXPECT_EQ(stretch.end, 6u);
}

TEST(TextBreaks, AreBetweenSignsOfJapaneseAndBesideThem)
{
    EXPECT_EQ(Cut(u"日本語"), (Pieces{u"日", u"本", u"語"}));
    EXPECT_EQ(Cut(u"カnaひ12字"), (Pieces{u"カ", u"na", u"ひ", u"12", u"字"}));
    EXPECT_EQ(Cut(u"字　字"), (Pieces{u"字　", u"字"}));
    EXPECT_EQ(Cut(u"ｱｲ한국말"), (Pieces{u"ｱ", u"ｲ", u"한국말"})) << "Korean has spaces";
}

TEST(TextBreaks, NeverPutASignWhereItMustNotStand)
{
    EXPECT_EQ(Cut(u"日、本。語"), (Pieces{u"日、", u"本。", u"語"}));
    EXPECT_EQ(Cut(u"「日」（本）"), (Pieces{u"「日」", u"（本）"}));
    EXPECT_EQ(Cut(u"ちょっとコーヒー"), (Pieces{u"ちょっ", u"と", u"コー", u"ヒー"}));
    EXPECT_EQ(Cut(u"人々の"), (Pieces{u"人々", u"の"}));
    EXPECT_EQ(Cut(u"字(a)字"), (Pieces{u"字", u"(a)", u"字"}));
    EXPECT_EQ(Cut(u"字,字!"), (Pieces{u"字,", u"字!"}));
    EXPECT_EQ(Cut(u"字 。字"), (Pieces{u"字 。", u"字"})) << "not even behind a space";
    EXPECT_EQ(Cut(u"（ 字"), (Pieces{u"（ 字"}));
    EXPECT_EQ(Cut(u"ﾊﾟｯﾄ｡"), (Pieces{u"ﾊﾟｯ", u"ﾄ｡"}));
}

TEST(TextBreaks, NeverPartAPairOrASignFromItsMarks)
{
    EXPECT_EQ(SignEnd(u"\xD840\xDC0B\xD840\xDC0B", 0), 2u);
    EXPECT_EQ(Cut(u"\xD840\xDC0B\xD840\xDC0B"), (Pieces{u"\xD840\xDC0B", u"\xD840\xDC0B"}));
    EXPECT_EQ(Cut(u"か\u3099か"), (Pieces{u"か\u3099", u"か"}));
    EXPECT_EQ(SignEnd(u"e\u0301\u0302x", 0), 3u);
    EXPECT_EQ(SignEnd(u"\xD83D\xDC69\u200D\xD83D\xDCBBx", 0), 5u) << "what a joiner ties";
    EXPECT_EQ(Cut(u"a \u0301b"), (Pieces{u"a \u0301b"})) << "a space with a mark is none";
    EXPECT_EQ(SignEnd(u"\xD840", 0), 1u) << "half a pair";
    EXPECT_EQ(SignEnd(u"\xDC0Bx", 0), 1u);
    const std::u16string marks = u"a" + std::u16string(100000, u'\u0301');
    EXPECT_LE(SignEnd(marks, 0), 300u);
}

TEST_F(Wrapping, FillsEachLineAsFarAsWholeWordsGo)
{
    const WCHAR* fixed = TEXT("DejaVu Sans Mono");
    EXPECT_EQ(Lines(u"aaa bbb ccc", 11, fixed), 1);
    EXPECT_EQ(Lines(u"aaa bbb ccc", 10, fixed), 2);
    EXPECT_EQ(Lines(u"aaa bbb ccc", 7, fixed), 2);
    EXPECT_EQ(Lines(u"aaa bbb ccc", 6, fixed), 3);
    EXPECT_EQ(Lines(u"aaa bbb ccc", 3, fixed), 3);
    EXPECT_EQ(Lines(u"aaa bbb ccc", 1, fixed), 3) << "words are never parted";
    EXPECT_EQ(Lines(u"aaa          bbb", 3, fixed), 2) << "the spaces hang";
    EXPECT_EQ(Lines(u"aaa     ", 3, fixed), 1);
    EXPECT_EQ(Lines(u"a\n\nbbb b", 3, fixed), 4);
    EXPECT_EQ(Lines(u"a looooooooong b", 4, fixed), 3) << "a long word has a line of its own";
}

TEST_F(Wrapping, BreaksJapaneseBetweenSignsButNotBeforeItsStops)
{
    const WCHAR* face = TEXT("VL Gothic");
    EXPECT_EQ(Lines(u"日本語日本語", 6, face), 1);
    EXPECT_EQ(Lines(u"日本語日本語", 5, face), 2);
    EXPECT_EQ(Lines(u"日本語日本語", 3, face), 2);
    EXPECT_EQ(Lines(u"日本語日本語", 2, face), 3);
    // 日本 / 語。日 / 本: the stop takes the sign before it along.
    EXPECT_EQ(Lines(u"日本語。日本", 3, face), 3);
    EXPECT_EQ(Lines(u"日本語日。本", 3, face), 2);
}

TEST_F(Wrapping, PutsTheWordsOnTheLinesWhereTheyAreDrawn)
{
    TextPicture picture(200, 200, 1);
    picture.Use(-30, TEXT("DejaVu Sans Mono"));
    const double letter = picture.Measure(u"xxxxxxxxxx", DT_LEFT).right / 10.0;
    const int line = picture.Measure(u"x", DT_LEFT).bottom;
    picture.Draw(u"██ ███ █", DT_WORDBREAK, {0, 0, static_cast<LONG>(5 * letter + 1), 200});
    const auto width = [&](int index) {
        return picture.Find({0, index * line + 3, 200, (index + 1) * line - 3}).Width() / letter;
    };
    EXPECT_NEAR(width(0), 2, 0.1);
    EXPECT_NEAR(width(1), 5, 0.1) << "three blocks, a space and one";
    EXPECT_EQ(width(2), 0);
    EXPECT_LE(picture.Find({0, line + 3, 200, 2 * line - 3}).left, 1) << "no space begins a line";
}
