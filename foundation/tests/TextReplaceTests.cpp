#include "foundation/TextReplace.h"

#include "foundation/tests/Widths.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

template <class Char>
struct Replace : ::testing::Test {
    /// The text afterwards; the result is checked. All three stand in blocks of their exact size.
    static std::basic_string<Char> Replaced(std::string_view text, std::string_view from,
                                            std::string_view to, i32 expectedResult = 1)
    {
        Cells<Char> cells(text);
        EXPECT_EQ(expectedResult, ReplaceAll(cells.Get(), Cells<Char>(from), Cells<Char>(to)))
            << text << " | " << from << " | " << to;
        return cells.UpToZero();
    }
};

/// The plain way: one place after the other, the whole rest moved at each.
std::string Transcription(std::string text, const std::string& from, const std::string& to)
{
    const auto folded = [](char unit) {
        return unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit + 32) : unit;
    };
    size_t wanted = 0;
    for (size_t at = 0; at < text.size() && !from.empty(); ++at) {
        if (folded(text[at]) != folded(from[wanted])) {
            wanted = 0;
            continue;
        }
        if (++wanted < from.size())
            continue;
        const size_t place = at + 1 - from.size();
        text.replace(place, from.size(), to);
        at = place + to.size() - 1;
        wanted = 0;
    }
    return text;
}

} // namespace

TYPED_TEST_SUITE(Replace, Widths);

TYPED_TEST(Replace, ReplacesEveryPlace)
{
    EXPECT_EQ(Text<TypeParam>("x-x-x"), this->Replaced("ab-ab-ab", "ab", "x"));
    EXPECT_EQ(Text<TypeParam>("xyxy"), this->Replaced("abab", "ab", "xy"));
    EXPECT_EQ(Text<TypeParam>("--"), this->Replaced("ab-ab-ab", "ab", ""));
    EXPECT_EQ(Text<TypeParam>(""), this->Replaced("abab", "ab", ""));
}

TYPED_TEST(Replace, DoesNotRegardCaseAndKeepsThatOfTheRest)
{
    EXPECT_EQ(Text<TypeParam>("Q.x.Q"), this->Replaced("Q.PnG.Q", "png", "x"));
    EXPECT_EQ(Text<TypeParam>("X"), this->Replaced("png", "PNG", "X"));
}

TYPED_TEST(Replace, GoesOnBehindTheReplacement)
{
    // The "a" just written and the "b" behind it make a new place, which stays.
    EXPECT_EQ(Text<TypeParam>("ab"), this->Replaced("abb", "ab", "a"));
    EXPECT_EQ(Text<TypeParam>("aa"), this->Replaced("aa", "a", "a"));
    EXPECT_EQ(Text<TypeParam>("ba"), this->Replaced("aaa", "aa", "b"));
}

TYPED_TEST(Replace, MissesWhatTheSearchWithoutSteppingBackMisses)
{
    EXPECT_EQ(Text<TypeParam>("aaab"), this->Replaced("aaab", "aab", "x", 0));
    EXPECT_EQ(Text<TypeParam>("..png-x"), this->Replaced("..png-.png", ".png", "x"));
}

TYPED_TEST(Replace, DoesNothingWhereTheTextDoesNotOccur)
{
    EXPECT_EQ(Text<TypeParam>("abc"), this->Replaced("abc", "x", "y", 0));
    EXPECT_EQ(Text<TypeParam>(""), this->Replaced("", "x", "y", 0));
    EXPECT_EQ(Text<TypeParam>("abc"), this->Replaced("abc", "", "", 0));
}

TYPED_TEST(Replace, RefusesAReplacementThatIsLonger)
{
    EXPECT_EQ(Text<TypeParam>("abc"), this->Replaced("abc", "b", "xy", -1));
    // Also where there is nothing to replace.
    EXPECT_EQ(Text<TypeParam>("abc"), this->Replaced("abc", "x", "xy", -1));
    EXPECT_EQ(Text<TypeParam>("abc"), this->Replaced("abc", "", "x", -1));
}

TYPED_TEST(Replace, RefusesNull)
{
    Cells<TypeParam> text("abc");
    TypeParam* const none = nullptr;
    EXPECT_EQ(-1, ReplaceAll(none, text.Get(), text.Get()));
    EXPECT_EQ(-1, ReplaceAll(text.Get(), none, text.Get()));
    EXPECT_EQ(-1, ReplaceAll(text.Get(), text.Get(), none));
    EXPECT_EQ(Text<TypeParam>("abc"), text.UpToZero());
}

TYPED_TEST(Replace, TakesTextsThatAreItsOwn)
{
    Cells<TypeParam> text("abcab");
    EXPECT_EQ(1, ReplaceAll(text.Get(), text.Get() + 3, text.Get() + 4));
    EXPECT_EQ(0, text.All()[text.Count() - 1]);
    Cells<TypeParam> whole("abc");
    EXPECT_EQ(1, ReplaceAll(whole.Get(), whole.Get(), whole.Get()));
    EXPECT_EQ(Text<TypeParam>("abc"), whole.UpToZero());
}

TYPED_TEST(Replace, IsLinearInTheLengthOfTheText)
{
    // A rest moved at each of so many places would take minutes.
    const std::string text(2000000, 'a');
    EXPECT_EQ(1000000u, this->Replaced(text, "aa", "b").size());
}

TYPED_TEST(Replace, AgreesWithThePlainWay)
{
    std::mt19937 random(6);
    const auto make = [&random](size_t length) {
        std::string text(length, ' ');
        for (char& unit : text)
            unit = static_cast<char>("aAb\xE9"[random() % 4]);
        return text;
    };
    for (int round = 0; round < 20000; ++round) {
        const std::string text = make(random() % 30);
        const std::string from = make(random() % 5);
        const std::string to = make(random() % (from.size() + 1));
        // Found at all exactly when removing it would make the text shorter.
        const bool occurs = !from.empty() && Transcription(text, from, "").size() < text.size();
        ASSERT_EQ(Text<TypeParam>(Transcription(text, from, to)),
                  this->Replaced(text, from, to, occurs ? 1 : 0))
            << text << " | " << from << " | " << to;
    }
}
