#include "foundation/TextSearch.h"

#include "foundation/tests/Widths.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

template <class Char>
struct TextSearch : ::testing::Test {
    static constexpr long NotFound = -1;
    static constexpr long Failure = -2;

    static u32 Length(std::string_view text)
    {
        u32 length = 99;
        EXPECT_EQ(1, TextLength(Cells<Char>(text), &length));
        return length;
    }

    static long First(std::string_view text, char character)
    {
        Cells<Char> cells(text);
        const Char* place = nullptr;
        const i32 result = FindChar(cells.Get(), Unit<Char>(character), &place);
        EXPECT_EQ(result, FindChar(cells.Get(), Unit<Char>(character)));
        return Place(cells.Get(), result, place);
    }

    static long Last(std::string_view text, char character)
    {
        Cells<Char> cells(text);
        const Char* place = nullptr;
        const i32 result = FindLastChar(cells.Get(), Unit<Char>(character), &place);
        EXPECT_EQ(result, FindLastChar(cells.Get(), Unit<Char>(character)));
        return Place(cells.Get(), result, place);
    }

    static long NoCase(std::string_view haystack, std::string_view needle)
    {
        Cells<Char> cells(haystack);
        Cells<Char> wanted(needle);
        const Char* place = nullptr;
        const i32 result = FindTextNoCase(cells.Get(), wanted.Get(), &place);
        EXPECT_EQ(result, FindTextNoCase(cells.Get(), wanted.Get()));
        return Place(cells.Get(), result, place);
    }

private:
    static long Place(const Char* text, i32 result, const Char* place)
    {
        if (result == 1)
            return static_cast<long>(place - text);
        EXPECT_EQ(nullptr, place) << "written though nothing was found";
        return result == 0 ? NotFound : result == -1 ? Failure : -1000;
    }
};

} // namespace

TYPED_TEST_SUITE(TextSearch, Widths);

TYPED_TEST(TextSearch, LengthCountsUnits)
{
    EXPECT_EQ(3u, this->Length("abc"));
    EXPECT_EQ(0u, this->Length(""));
    EXPECT_EQ(2u, this->Length("\xE9\xFF"));
    EXPECT_EQ(100000u, this->Length(std::string(100000, 'x')));
}

TYPED_TEST(TextSearch, LengthOfNullIsZeroAndAFailure)
{
    Cells<TypeParam> text("abc");
    const TypeParam* const none = nullptr;
    u32 length = 9;
    EXPECT_EQ(-1, TextLength(none, &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(-1, TextLength(text.Get(), nullptr));
    EXPECT_EQ(-1, TextLength(none, nullptr));
}

TYPED_TEST(TextSearch, ACharacterIsFoundAtItsFirstAndAtItsLastPlace)
{
    EXPECT_EQ(1, this->First("a.b.c", '.'));
    EXPECT_EQ(3, this->Last("a.b.c", '.'));
    EXPECT_EQ(0, this->First("abc", 'a'));
    EXPECT_EQ(0, this->Last("abc", 'a'));
    EXPECT_EQ(2, this->First("abc", 'c'));
    EXPECT_EQ(1, this->First("a\xE9z", '\xE9'));
    EXPECT_EQ(1, this->Last("a\xE9z", '\xE9'));
}

TYPED_TEST(TextSearch, ACharacterIsFoundInItsOwnCaseOnly)
{
    EXPECT_EQ(this->Failure, this->First("ABC", 'b'));
    EXPECT_EQ(this->Failure, this->Last("ABC", 'b'));
}

TYPED_TEST(TextSearch, ACharacterThatIsNotThereIsAFailure)
{
    EXPECT_EQ(this->Failure, this->First("", '.'));
    EXPECT_EQ(this->Failure, this->First("abc", '.'));
    EXPECT_EQ(this->Failure, this->Last("", '.'));
    EXPECT_EQ(this->Failure, this->Last("abc", '.'));
    const TypeParam* const none = nullptr;
    const TypeParam* place = none;
    EXPECT_EQ(-1, FindChar(none, TypeParam{'.'}, &place));
    EXPECT_EQ(-1, FindLastChar(none, TypeParam{'.'}, &place));
    EXPECT_EQ(none, place);
}

TYPED_TEST(TextSearch, TheFinalZeroIsNoCharacterOfTheText)
{
    EXPECT_EQ(this->Failure, this->First("abc", '\0'));
    EXPECT_EQ(this->Failure, this->Last("abc", '\0'));
    EXPECT_EQ(this->Failure, this->First("", '\0'));
}

TYPED_TEST(TextSearch, NoCaseFindsAnExtension)
{
    EXPECT_EQ(1, this->NoCase("A.PNG", ".png"));
    EXPECT_EQ(1, this->NoCase("a.png", ".PNG"));
    EXPECT_EQ(0, this->NoCase("png", "pNg"));
    EXPECT_EQ(1, this->NoCase("x.png.png", ".png"));
}

TYPED_TEST(TextSearch, NoCaseNeverStepsBack)
{
    EXPECT_EQ(this->NotFound, this->NoCase("aaab", "aab"));
    // The character that broke the match is not tried as a beginning.
    EXPECT_EQ(this->NotFound, this->NoCase("a..png", ".png"));
    EXPECT_EQ(3, this->NoCase("a...png", ".png"));
}

TYPED_TEST(TextSearch, NoCaseDoesNotFindWhatEndsTooEarly)
{
    EXPECT_EQ(this->NotFound, this->NoCase("a.pn", ".png"));
    EXPECT_EQ(this->NotFound, this->NoCase("", ".png"));
}

TYPED_TEST(TextSearch, NoCaseNeverFindsAnEmptyNeedle)
{
    EXPECT_EQ(this->NotFound, this->NoCase("abc", ""));
    EXPECT_EQ(this->NotFound, this->NoCase("", ""));
}

TYPED_TEST(TextSearch, NoCaseFoldsTheLettersAToZOnly)
{
    EXPECT_EQ(0, this->NoCase("ABCDEFGHIJKLMNOPQRSTUVWXYZ", "abcdefghijklmnopqrstuvwxyz"));
    EXPECT_EQ(this->NotFound, this->NoCase("@", "`"));
    EXPECT_EQ(this->NotFound, this->NoCase("[", "{"));
    EXPECT_EQ(this->NotFound, this->NoCase("\xC9", "\xE9"));
    EXPECT_EQ(0, this->NoCase("\xC9", "\xC9"));
}

TYPED_TEST(TextSearch, NoCaseRefusesNull)
{
    Cells<TypeParam> text("a");
    const TypeParam* const none = nullptr;
    EXPECT_EQ(-1, FindTextNoCase(none, text.Get()));
    EXPECT_EQ(-1, FindTextNoCase(text.Get(), none));
    // Also with an empty needle.
    EXPECT_EQ(-1, FindTextNoCase(none, text.Get() + 1));
}

TYPED_TEST(TextSearch, NoCaseAgreesWithThePlainWay)
{
    std::mt19937 random(2);
    const auto folded = [](char unit) {
        return unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit + 32) : unit;
    };
    for (int round = 0; round < 20000; ++round) {
        std::string haystack(random() % 20, ' ');
        std::string needle(random() % 5, ' ');
        for (char& unit : haystack)
            unit = "aAb.\xC9"[random() % 5];
        for (char& unit : needle)
            unit = "aBb.\xC9"[random() % 5];
        long expected = this->NotFound;
        size_t matched = 0;
        for (size_t at = 0; at < haystack.size() && matched < needle.size(); ++at) {
            matched = folded(haystack[at]) == folded(needle[matched]) ? matched + 1 : 0;
            if (matched == needle.size())
                expected = static_cast<long>(at + 1 - matched);
        }
        ASSERT_EQ(expected, this->NoCase(haystack, needle)) << haystack << " | " << needle;
    }
}

TEST(TextSearchWide, UnitsAreComparedInTheirFullWidth)
{
    const WCHAR text[] = u"\u0161\u65E5a";
    const WCHAR* place = nullptr;
    EXPECT_EQ(1, FindChar(text, u'a', &place));
    EXPECT_EQ(text + 2, place);
    EXPECT_EQ(1, FindLastChar(text, u'\u65E5', &place));
    EXPECT_EQ(text + 1, place);
    EXPECT_EQ(1, FindTextNoCase(text, u"A", &place));
    EXPECT_EQ(text + 2, place);
    // The wide capitals of the same script are not folded.
    EXPECT_EQ(0, FindTextNoCase(u"\uFF21", u"\uFF41"));
}
