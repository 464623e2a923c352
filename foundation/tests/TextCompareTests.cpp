#include "foundation/TextCompare.h"

#include "foundation/tests/Widths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace
{

constexpr i32 Refused = 99;

/// The place of a unit in the order of a list, straight from its rule.
u32 Entry(u32 unit)
{
    if (unit >= 'a' && unit <= 'z')
        return 76 + unit - 'a';
    if (unit >= 'A' && unit <= 'Z')
        return 76 + unit - 'A';
    if (unit >= '0' && unit <= '9')
        return 66 + unit - '0';
    if (unit >= ':' && unit <= '@')
        return 48 + unit - ':';
    if (unit >= '[' && unit <= '`')
        return 55 + unit - '[';
    if (unit >= '{' && unit <= 127)
        return 61 + unit - '{';
    return unit;
}

template <class Char>
struct Compare : ::testing::Test {
    static i32 IsSame(std::string_view a, std::string_view b)
    {
        Cells<Char> first(a);
        Cells<Char> second(b);
        const i32 result = IsSameText(first.Get(), second.Get());
        EXPECT_EQ(result, IsSameText(second.Get(), first.Get()));
        return result;
    }

    static i32 Collated(std::string_view a, std::string_view b)
    {
        Cells<Char> first(a);
        Cells<Char> second(b);
        i32 order = Refused;
        EXPECT_EQ(1, CompareCollated(first.Get(), second.Get(), &order));
        i32 reversed = Refused;
        EXPECT_EQ(1, CompareCollated(second.Get(), first.Get(), &reversed));
        EXPECT_EQ(order, -reversed);
        return order;
    }

    static i32 NoCase(std::string_view a, std::string_view b, u32 count)
    {
        Cells<Char> first(a);
        Cells<Char> second(b);
        const i32 order = CompareNoCase(first.Get(), second.Get(), count);
        EXPECT_EQ(order, -CompareNoCase(second.Get(), first.Get(), count));
        return order;
    }

    static i32 NoCaseAll(std::string_view a, std::string_view b)
    {
        Cells<Char> first(a);
        Cells<Char> second(b);
        const i32 order = CompareNoCaseAll(first.Get(), second.Get());
        EXPECT_EQ(order, -CompareNoCaseAll(second.Get(), first.Get()));
        return order;
    }

    static std::string RandomText(std::mt19937& random)
    {
        std::string text(random() % 5, ' ');
        for (char& unit : text)
            unit = static_cast<char>("aAbBzZ09!_[\x80\xE9\xFF"[random() % 14]);
        return text;
    }

    static i32 OrderOf(u32 a, u32 b) { return a < b ? -1 : a > b ? 1 : 0; }
};

} // namespace

TYPED_TEST_SUITE(Compare, Widths);

TYPED_TEST(Compare, IsSameTextTellsEqualTexts)
{
    EXPECT_EQ(1, this->IsSame("abc", "abc"));
    EXPECT_EQ(1, this->IsSame("", ""));
    EXPECT_EQ(1, this->IsSame("\xE9\xFF", "\xE9\xFF"));
}

TYPED_TEST(Compare, IsSameTextRegardsLengthCaseAndOrder)
{
    EXPECT_EQ(0, this->IsSame("abc", "ab"));
    EXPECT_EQ(0, this->IsSame("", "a"));
    EXPECT_EQ(0, this->IsSame("abc", "abC"));
    // The same sum and the same length.
    EXPECT_EQ(0, this->IsSame("abc", "acb"));
    EXPECT_EQ(0, this->IsSame("ad", "bc"));
    // The same sum at another length.
    EXPECT_EQ(0, this->IsSame("b", "11"));
}

TYPED_TEST(Compare, IsSameTextRefusesNull)
{
    Cells<TypeParam> text("abc");
    const TypeParam* const none = nullptr;
    EXPECT_EQ(-1, IsSameText(none, text.Get()));
    EXPECT_EQ(-1, IsSameText(text.Get(), none));
    EXPECT_EQ(-1, IsSameText(none, none));
}

TYPED_TEST(Compare, IsSameTextAgreesWithTheLibrary)
{
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round) {
        const std::string a = this->RandomText(random);
        const std::string b = this->RandomText(random);
        ASSERT_EQ(a == b ? 1 : 0, this->IsSame(a, b)) << a << " | " << b;
    }
}

TYPED_TEST(Compare, CollatedSortsPunctuationBeforeDigitsBeforeLetters)
{
    EXPECT_EQ(-1, this->Collated("~", "0"));
    EXPECT_EQ(-1, this->Collated("\x7F", "0"));
    EXPECT_EQ(-1, this->Collated("_", "a"));
    EXPECT_EQ(-1, this->Collated("9", "A"));
    EXPECT_EQ(-1, this->Collated("/", ":"));
    EXPECT_EQ(-1, this->Collated("@", "["));
    EXPECT_EQ(-1, this->Collated("`", "{"));
    EXPECT_EQ(-1, this->Collated("z", "\x80"));
    EXPECT_EQ(-1, this->Collated("\x80", "\xFF"));
}

TYPED_TEST(Compare, CollatedDoesNotRegardCase)
{
    EXPECT_EQ(0, this->Collated("Picture.PNG", "pICTURE.png"));
    EXPECT_EQ(-1, this->Collated("a", "B"));
    EXPECT_EQ(-1, this->Collated("A", "b"));
    // No letters but the signs around them, and a letter past 128: they do not fold.
    EXPECT_EQ(-1, this->Collated("@", "`"));
    EXPECT_EQ(-1, this->Collated("[", "{"));
    EXPECT_EQ(-1, this->Collated("\xC9", "\xE9"));
}

TYPED_TEST(Compare, CollatedComparesNumbersDigitByDigit)
{
    EXPECT_EQ(-1, this->Collated("a10", "A9"));
}

TYPED_TEST(Compare, CollatedSortsAShorterTextBeforeOneThatBeginsWithIt)
{
    EXPECT_EQ(-1, this->Collated("ab", "abc"));
    EXPECT_EQ(-1, this->Collated("", "\x01"));
    EXPECT_EQ(0, this->Collated("", ""));
    // The first difference counts before the lengths do.
    EXPECT_EQ(1, this->Collated("b", "abc"));
}

TYPED_TEST(Compare, CollatedFollowsItsTableForEveryPairOfUnits)
{
    for (u32 a = 1; a < 256; ++a) {
        for (u32 b = a; b < 256; ++b) {
            const TypeParam first[] = {static_cast<TypeParam>(a), 0};
            const TypeParam second[] = {static_cast<TypeParam>(b), 0};
            i32 order = Refused;
            ASSERT_EQ(1, CompareCollated(first, second, &order));
            ASSERT_EQ(this->OrderOf(Entry(a), Entry(b)), order) << a << " and " << b;
        }
    }
}

TYPED_TEST(Compare, CollatedRefusesNullAndLeavesTheOrder)
{
    Cells<TypeParam> text("abc");
    const TypeParam* const none = nullptr;
    i32 order = Refused;
    EXPECT_EQ(-1, CompareCollated(none, text.Get(), &order));
    EXPECT_EQ(-1, CompareCollated(text.Get(), none, &order));
    EXPECT_EQ(-1, CompareCollated(text.Get(), text.Get(), nullptr));
    EXPECT_EQ(Refused, order);
}

TYPED_TEST(Compare, CollatedAgreesWithItsRuleOnManyTexts)
{
    std::mt19937 random(4);
    for (int round = 0; round < 20000; ++round) {
        const std::string a = this->RandomText(random);
        const std::string b = this->RandomText(random);
        i32 expected = this->OrderOf(static_cast<u32>(a.size()), static_cast<u32>(b.size()));
        for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
            const u32 x = Entry(static_cast<unsigned char>(a[i]));
            const u32 y = Entry(static_cast<unsigned char>(b[i]));
            if (x != y) {
                expected = this->OrderOf(x, y);
                break;
            }
        }
        ASSERT_EQ(expected, this->Collated(a, b)) << a << " | " << b;
    }
}

TYPED_TEST(Compare, NoCaseLooksAtNoMoreThanTheCount)
{
    EXPECT_EQ(0, this->NoCase("abcX", "ABCy", 3));
    EXPECT_EQ(-1, this->NoCase("abcX", "ABCy", 4));
    EXPECT_EQ(1, this->NoCase("b", "a", 1));
}

TYPED_TEST(Compare, NoCaseEndsWithTheTexts)
{
    EXPECT_EQ(0, this->NoCase("abc", "ABC", 0xFFFFFFFF));
    EXPECT_EQ(-1, this->NoCase("ab", "ABC", 100));
    EXPECT_EQ(0, this->NoCase("ab", "ABC", 2));
    EXPECT_EQ(0, this->NoCase("", "", 5));
}

TYPED_TEST(Compare, NoCaseFoldsToSmallLetters)
{
    // "_" lies between the capitals and the small letters.
    EXPECT_EQ(1, this->NoCase("A", "_", 1));
    EXPECT_EQ(1, this->NoCase("Z", "_", 1));
    EXPECT_EQ(-1, this->NoCase("@", "a", 1));
    EXPECT_EQ(-1, this->NoCase("[", "z", 1));
    EXPECT_EQ(-1, this->NoCase("\xC9", "\xE9", 1));
    EXPECT_EQ(1, this->NoCase("\xC9", "z", 1));
}

TYPED_TEST(Compare, NoCaseOfNullOrNothingIsEqual)
{
    Cells<TypeParam> text("abc");
    const TypeParam* const none = nullptr;
    EXPECT_EQ(0, CompareNoCase(none, text.Get(), 3));
    EXPECT_EQ(0, CompareNoCase(text.Get(), none, 3));
    EXPECT_EQ(0, this->NoCase("a", "b", 0));
    EXPECT_EQ(0, CompareNoCaseAll(none, text.Get()));
    EXPECT_EQ(0, CompareNoCaseAll(text.Get(), none));
    EXPECT_EQ(0, CompareNoCaseAll(none, none));
}

TYPED_TEST(Compare, NoCaseAllComparesTheLongerTextWhole)
{
    EXPECT_EQ(0, this->NoCaseAll("Tavrix", "tAVRIX"));
    EXPECT_EQ(0, this->NoCaseAll("", ""));
    EXPECT_EQ(-1, this->NoCaseAll("abc", "abcd"));
    EXPECT_EQ(1, this->NoCaseAll("a", ""));
    EXPECT_EQ(-1, this->NoCaseAll("abcY", "abcZ"));
}

TYPED_TEST(Compare, NoCaseAgreesWithItsRuleOnManyTexts)
{
    std::mt19937 random(5);
    const auto folded = [](const std::string& text, size_t at) {
        const u32 unit = static_cast<unsigned char>(text.c_str()[at]);
        return unit >= 'A' && unit <= 'Z' ? unit + 32 : unit;
    };
    for (int round = 0; round < 20000; ++round) {
        const std::string a = this->RandomText(random);
        const std::string b = this->RandomText(random);
        const u32 count = random() % 6;
        i32 expected = 0;
        i32 expectedOfAll = 0;
        for (u32 i = 0; i <= std::min(a.size(), b.size()) && expectedOfAll == 0; ++i) {
            expectedOfAll = this->OrderOf(folded(a, i), folded(b, i));
            if (i < count)
                expected = expectedOfAll;
        }
        ASSERT_EQ(expected, this->NoCase(a, b, count)) << a << " | " << b << " | " << count;
        ASSERT_EQ(expectedOfAll, this->NoCaseAll(a, b)) << a << " | " << b;
    }
}

TEST(CompareWide, UnitsPastTheTableCompareAsTheyAre)
{
    i32 order = Refused;
    EXPECT_EQ(1, CompareCollated(u"\u0161", u"\u65E5", &order));
    EXPECT_EQ(-1, order);
    // Its low byte alone would be the "a" that sorts before the "b".
    EXPECT_EQ(1, CompareCollated(u"\u0161", u"b", &order));
    EXPECT_EQ(1, order);
    EXPECT_EQ(1, CompareCollated(u"\uFFFF", u"\u65E5", &order));
    EXPECT_EQ(1, order);
    EXPECT_EQ(1, CompareNoCaseAll(u"\u0141", u"\u0061"));
    EXPECT_EQ(-1, CompareNoCaseAll(u"\uFF21", u"\uFF41"));
    EXPECT_EQ(0, IsSameText(u"\u0161", u"a"));
}
