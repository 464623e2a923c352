#include "foundation/TextFind.h"

#include "foundation/tests/Widths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace
{

template <class Char>
struct FindTextInBothWidths : ::testing::Test {
    static constexpr long NotFound = -1;
    static constexpr long TooShort = -2;

    /// The place as a distance; the result is checked to be the one that belongs to it.
    static long Place(std::string_view haystack, std::string_view needle)
    {
        Cells<Char> cells(haystack);
        Cells<Char> wanted(needle);
        const Char* const untouched = wanted.Get();
        const Char* place = untouched;
        const i32 result = FindText(cells.Get(), wanted.Get(), &place);
        // Without a place to write to the result is the same.
        EXPECT_EQ(result, FindText(cells.Get(), wanted.Get()));
        if (result == 1)
            return static_cast<long>(place - cells.Get());
        EXPECT_EQ(untouched, place) << "written though nothing was found";
        return result == 0 ? NotFound : result == -1 ? TooShort : -1000;
    }
};

} // namespace

TYPED_TEST_SUITE(FindTextInBothWidths, Widths);

TYPED_TEST(FindTextInBothWidths, FindsTheFirstPlace)
{
    EXPECT_EQ(0, this->Place("abc", "abc"));
    EXPECT_EQ(0, this->Place("abcabc", "abc"));
    EXPECT_EQ(2, this->Place("xxabcabc", "abc"));
    EXPECT_EQ(3, this->Place("abcd", "d"));
}

TYPED_TEST(FindTextInBothWidths, FailsWhereTheHaystackIsShorterThanTheNeedle)
{
    EXPECT_EQ(this->TooShort, this->Place("abc", "abcd"));
    EXPECT_EQ(this->TooShort, this->Place("", "a"));
}

TYPED_TEST(FindTextInBothWidths, FindsNothingWhereTheNeedleIsNot)
{
    EXPECT_EQ(this->NotFound, this->Place("abcd", "x"));
    EXPECT_EQ(this->NotFound, this->Place("abcd", "abce"));
}

TYPED_TEST(FindTextInBothWidths, FindsAnEmptyNeedleAtTheStart)
{
    EXPECT_EQ(0, this->Place("abc", ""));
    EXPECT_EQ(0, this->Place("", ""));
}

TYPED_TEST(FindTextInBothWidths, IsNotMisledByWindowsOfTheSameSum)
{
    // "ad", "da" and "bc" all sum up alike.
    EXPECT_EQ(4, this->Place("cbbdad", "ad"));
    EXPECT_EQ(this->NotFound, this->Place("bcda", "ad"));
}

TYPED_TEST(FindTextInBothWidths, RegardsCase)
{
    EXPECT_EQ(this->NotFound, this->Place("ABC", "abc"));
}

TYPED_TEST(FindTextInBothWidths, StepsBackAsASearchWithoutRegardToCaseDoesNot)
{
    EXPECT_EQ(1, this->Place("aaab", "aab"));
    EXPECT_EQ(2, this->Place("a..png", ".png"));
}

TYPED_TEST(FindTextInBothWidths, FindsUnitsPastTheAsciiOnes)
{
    EXPECT_EQ(1, this->Place("a\xFF\x80z", "\xFF\x80"));
    EXPECT_EQ(this->NotFound, this->Place("a\xFF\x80z", "\x80\xFF"));
}

TYPED_TEST(FindTextInBothWidths, RefusesNull)
{
    Cells<TypeParam> text("abc");
    const TypeParam* const none = nullptr;
    const TypeParam* place = text.Get();
    EXPECT_EQ(-1, FindText(none, text.Get(), &place));
    EXPECT_EQ(-1, FindText(text.Get(), none, &place));
    EXPECT_EQ(-1, FindText(none, none, &place));
    EXPECT_EQ(text.Get(), place);
}

TYPED_TEST(FindTextInBothWidths, AgreesWithTheLibrarysSearch)
{
    std::mt19937 random(8);
    for (int round = 0; round < 20000; ++round) {
        // Few letters, so that many windows sum up alike.
        std::string haystack(random() % 40, 'a');
        std::string needle(random() % 6, 'a');
        for (char& unit : haystack)
            unit = static_cast<char>("abc\xE9"[random() % 4]);
        for (char& unit : needle)
            unit = static_cast<char>("abc\xE9"[random() % 4]);
        const auto found =
            std::search(haystack.begin(), haystack.end(), needle.begin(), needle.end());
        long expected = found - haystack.begin();
        if (haystack.size() < needle.size())
            expected = this->TooShort;
        else if (found == haystack.end() && !needle.empty())
            expected = this->NotFound;
        ASSERT_EQ(expected, this->Place(haystack, needle)) << haystack << " | " << needle;
    }
}

TEST(FindText, FindsWideUnitsOfAnyNumber)
{
    const WCHAR text[] = u"\u65E5\u672C\uFFFF\u0001";
    const WCHAR* place = nullptr;
    EXPECT_EQ(1, FindText(text, u"\uFFFF\u0001", &place));
    EXPECT_EQ(text + 2, place);
    // Equal in their low bytes alone.
    EXPECT_EQ(0, FindText(u"\u6161", u"a"));
}

TEST(FindText, SumsOfLongTextsWrapWithoutHarm)
{
    // 70,000 times 0xFFFF is more than 32 bits hold.
    const std::u16string needle(70000, u'\uFFFF');
    const std::u16string haystack = u"x" + needle + u"y";
    const WCHAR* place = nullptr;
    EXPECT_EQ(1, FindText(haystack.c_str(), needle.c_str(), &place));
    EXPECT_EQ(haystack.c_str() + 1, place);
}

TEST(FindBytes, FindsBytesAmongZeros)
{
    const char data[] = "a\0b\0c";
    const void* place = nullptr;
    EXPECT_EQ(1, FindBytes(data, 5, "\0c", 2, &place));
    EXPECT_EQ(data + 3, place);
    EXPECT_EQ(1, FindBytes(data, 5, "\0", 1, &place));
    EXPECT_EQ(data + 1, place);
    EXPECT_EQ(1, FindBytes(data, 5, "\0", 1));
}

TEST(FindBytes, FindsAnEmptyNeedleAtTheStart)
{
    const char data[] = "abc";
    const void* place = nullptr;
    EXPECT_EQ(1, FindBytes(data, 3, "x", 0, &place));
    EXPECT_EQ(data, place);
    EXPECT_EQ(1, FindBytes(data, 0, "x", 0));
}

TEST(FindBytes, TellsTooShortFromNotThere)
{
    const char data[] = "abc";
    const void* place = data;
    EXPECT_EQ(-1, FindBytes(data, 2, "abc", 3, &place));
    EXPECT_EQ(0, FindBytes(data, 3, "cba", 3, &place));
    EXPECT_EQ(0, FindBytes(data, 2, "c", 1, &place));
    EXPECT_EQ(data, place);
}

TEST(FindBytes, RefusesNullWhateverTheLengths)
{
    EXPECT_EQ(-1, FindBytes(nullptr, 3, "a", 1));
    EXPECT_EQ(-1, FindBytes("abc", 3, nullptr, 1));
    EXPECT_EQ(-1, FindBytes(nullptr, 0, "a", 0));
    EXPECT_EQ(-1, FindBytes("abc", 3, nullptr, 0));
}

TEST(FindBytes, AgreesWithTheLibrarysSearchAndReadsJustTheBytesCounted)
{
    std::mt19937 random(9);
    for (int round = 0; round < 20000; ++round) {
        const size_t dataLength = random() % 40;
        const size_t needleLength = random() % 6;
        const std::unique_ptr<unsigned char[]> data(new unsigned char[dataLength]);
        const std::unique_ptr<unsigned char[]> needle(new unsigned char[needleLength]);
        for (size_t i = 0; i < dataLength; ++i)
            data[i] = static_cast<unsigned char>(random() % 3 * 127);
        for (size_t i = 0; i < needleLength; ++i)
            needle[i] = static_cast<unsigned char>(random() % 3 * 127);
        const void* place = nullptr;
        const i32 result = FindBytes(data.get(), static_cast<u32>(dataLength), needle.get(),
                                     static_cast<u32>(needleLength), &place);
        const unsigned char* const end = data.get() + dataLength;
        const unsigned char* const found = std::search(data.get(), data.get() + dataLength,
                                                       needle.get(), needle.get() + needleLength);
        if (dataLength < needleLength) {
            ASSERT_EQ(-1, result);
        } else if (found == end && needleLength != 0) {
            ASSERT_EQ(0, result);
        } else {
            ASSERT_EQ(1, result);
            ASSERT_EQ(found, place);
        }
    }
}
