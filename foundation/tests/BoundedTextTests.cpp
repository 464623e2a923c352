#include "foundation/BoundedText.h"

#include "foundation/tests/Widths.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace
{

/// All cells of a target of `before.size()` cells after the call; the result is checked. Target and
/// source stand in blocks of their exact size.
template <class Char>
struct BoundedText : ::testing::Test {
    static std::basic_string<Char> Appended(const std::string& before, std::string_view source,
                                            i32 expectedResult, char terminator = 0)
    {
        Cells<Char> target(before.size(), 0);
        const std::basic_string<Char> cells = Text<Char>(before);
        std::copy(cells.begin(), cells.end(), target.Get());
        EXPECT_EQ(expectedResult, AppendText(target.Get(), target.Count(), Cells<Char>(source),
                                             Unit<Char>(terminator)))
            << source;
        return target.All();
    }
    static std::basic_string<Char> Copied(u32 capacity, std::string_view source, i32 expectedResult,
                                          char terminator = 0)
    {
        Cells<Char> target(capacity, '#');
        EXPECT_EQ(expectedResult,
                  CopyText(target.Get(), capacity, Cells<Char>(source), Unit<Char>(terminator)))
            << source;
        return target.All();
    }
    static std::basic_string<Char> Bytes(std::string_view units) { return Text<Char>(units); }
};

/// AppendText step by step, over a source that ends with its zero.
i32 Steps(std::string& target, const std::string& source, char terminator)
{
    if (target.empty())
        return -1;
    const size_t last = target.size() - 1;
    target[last] = 0;
    size_t end = target.find('\0');
    if (end == last)
        return 0;
    for (size_t at = 0;; ++at, ++end) {
        const char unit = source.c_str()[at];
        if (end == last)
            return 0;
        const bool isEnd = unit == terminator || unit == 0;
        target[end] = isEnd ? '\0' : unit;
        if (isEnd)
            return 1;
    }
}

} // namespace

TYPED_TEST_SUITE(BoundedText, Widths);

using namespace std::string_view_literals;
using namespace std::string_literals;

TYPED_TEST(BoundedText, CopyCutsWhatDoesNotFit)
{
    EXPECT_EQ(this->Bytes("abc\0"sv), this->Copied(4, "abcdef", 0));
    EXPECT_EQ(this->Bytes("abc\0"sv), this->Copied(4, "abcd", 0));
}

TYPED_TEST(BoundedText, CopyTakesAnExactFitForACut)
{
    EXPECT_EQ(this->Bytes("abc\0"sv), this->Copied(4, "abc", 0));
    EXPECT_EQ(this->Bytes("ab\0\0"sv), this->Copied(4, "ab", 1));
}

TYPED_TEST(BoundedText, CopyEndsAtTheTerminator)
{
    EXPECT_EQ(this->Bytes("key\0####\0"sv), this->Copied(9, "key=value", 1, '='));
    EXPECT_EQ(this->Bytes("\0###\0"sv), this->Copied(5, "=value", 1, '='));
    EXPECT_EQ(this->Bytes("a\0##\0"sv), this->Copied(5, "a\xE9z", 1, '\xE9'));
}

TYPED_TEST(BoundedText, ATerminatorWhereTheLastCellIsCountsAsACut)
{
    EXPECT_EQ(this->Bytes("key\0"sv), this->Copied(4, "key=value", 0, '='));
    EXPECT_EQ(this->Bytes("ke\0"sv), this->Copied(3, "key=value", 0, '='));
}

TYPED_TEST(BoundedText, ReadsNothingBehindATextWithoutTheTerminator)
{
    // The block of the source ends right behind its zero.
    EXPECT_EQ(this->Bytes("key\0###\0"sv), this->Copied(8, "key", 1, '='));
    EXPECT_EQ(this->Bytes("key\0###\0"sv), this->Copied(8, "key\0x="sv, 1, '='));
}

TYPED_TEST(BoundedText, CopyOfNothingIsTheEmptyText)
{
    EXPECT_EQ(this->Bytes("\0##\0"sv), this->Copied(4, "", 1));
    EXPECT_EQ(this->Bytes("\0"sv), this->Copied(1, "", 0));
    EXPECT_EQ(this->Bytes("\0"sv), this->Copied(1, "abc", 0));
}

TYPED_TEST(BoundedText, CopyRefusesNullAndHasNothingToDoWithoutCapacity)
{
    Cells<TypeParam> text("abc");
    TypeParam* const none = nullptr;
    EXPECT_EQ(-1, CopyText(none, 4, text.Get()));
    EXPECT_EQ(-1, CopyText(text.Get(), 4, none));
    // Null is looked at first.
    EXPECT_EQ(-1, CopyText(none, 0, text.Get()));
    EXPECT_EQ(-1, CopyText(text.Get(), 0, none));
    EXPECT_EQ(0, CopyText(text.Get(), 0, text.Get() + 1));
    EXPECT_EQ(this->Bytes("abc"), text.UpToZero());
}

TYPED_TEST(BoundedText, AppendGoesOnBehindTheText)
{
    EXPECT_EQ(this->Bytes("abcd\0##\0"sv), this->Appended("ab\0#####"s, "cd", 1));
    EXPECT_EQ(this->Bytes("ab\0##\0"sv), this->Appended("ab\0###"s, "", 1));
    EXPECT_EQ(this->Bytes("abkey\0#\0"sv), this->Appended("ab\0#####"s, "key=value", 1, '='));
}

TYPED_TEST(BoundedText, AppendToAFullTextChangesNothing)
{
    EXPECT_EQ(this->Bytes("abc\0"sv), this->Appended("abc\0"s, "d", 0));
    EXPECT_EQ(this->Bytes("abc\0"sv), this->Appended("abc\0"s, "", 0));
    EXPECT_EQ(this->Bytes("\0"sv), this->Appended("\0"s, "d", 0));
}

TYPED_TEST(BoundedText, AppendCutsAnUnterminatedTargetAtItsLastCell)
{
    EXPECT_EQ(this->Bytes("abc\0"sv), this->Appended("abcd", "x", 0));
    EXPECT_EQ(this->Bytes("\0"sv), this->Appended("a", "x", 0));
}

TYPED_TEST(BoundedText, AppendCutsWhatDoesNotFit)
{
    EXPECT_EQ(this->Bytes("abcde\0"sv), this->Appended("ab\0###"s, "cdefgh", 0));
    EXPECT_EQ(this->Bytes("abcde\0"sv), this->Appended("ab\0###"s, "cde", 0));
    EXPECT_EQ(this->Bytes("abcd\0\0"sv), this->Appended("ab\0###"s, "cd", 1));
}

TYPED_TEST(BoundedText, AppendRefusesNullAndNoCapacityAndWritesNothing)
{
    Cells<TypeParam> text("abc");
    TypeParam* const none = nullptr;
    EXPECT_EQ(-1, AppendText(none, 4, text.Get()));
    EXPECT_EQ(-1, AppendText(text.Get(), 2, none));
    EXPECT_EQ(-1, AppendText(text.Get(), 0, text.Get()));
    EXPECT_EQ(this->Bytes("abc"), text.UpToZero());
}

TYPED_TEST(BoundedText, FollowsTheStepsForManyTexts)
{
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        std::string before(1 + random() % 12, ' ');
        std::string source(random() % 12, ' ');
        for (char& unit : before)
            unit = "ab=\0\xE9"[random() % 5];
        for (char& unit : source)
            unit = "abc=\xE9"[random() % 5];
        const char terminator = "\0\0=\xE9z"[random() % 5];
        std::string expected = before;
        const i32 expectedResult = Steps(expected, source, terminator);
        ASSERT_EQ(this->Bytes(expected), this->Appended(before, source, expectedResult, terminator))
            << source;
        std::string copied(before.size(), '#');
        copied[0] = 0;
        const i32 copyResult = Steps(copied, source, terminator);
        ASSERT_EQ(this->Bytes(copied),
                  this->Copied(static_cast<u32>(before.size()), source, copyResult, terminator))
            << source;
    }
}

TEST(BoundedTextWide, ATerminatorIsComparedInItsFullWidth)
{
    WCHAR wide[8];
    EXPECT_EQ(1, CopyText(wide, 8, u"a\u013Db=c", u'='));
    EXPECT_EQ(std::u16string(u"a\u013Db"), wide);
}
