#include "foundation/DualString.h"

#include "foundation/tests/Widths.h"
#include "platform/core/Heaps.h"
#include "platform/testing/Faults.h"

#include <gtest/gtest.h>

#include <string>

using tavrix::testing::ArmedFault;
using tavrix::testing::FaultKind;
using tavrix::testing::FaultReach;
using tavrix::testing::ForEveryFault;
using tavrix::testing::Scope;
using tavrix::testing::SetLanguage;

TEST(DualString, IsBornEmpty)
{
    DualString text;
    EXPECT_EQ(std::u16string(), text.Get());
    EXPECT_EQ(std::string(), text.GetNarrow());
}

TEST(DualString, AssignedNullGivesTheEmptyText)
{
    DualString text;
    text.Assign(u"abc");
    text.Assign(nullptr);
    ASSERT_NE(nullptr, text.Get());
    EXPECT_EQ(std::u16string(), text.Get());
    text.AssignNarrow("abc");
    text.AssignNarrow(nullptr);
    ASSERT_NE(nullptr, text.Get());
    EXPECT_EQ(std::u16string(), text.Get());
}

TEST(DualString, KeepsACopyOfItsOwn)
{
    WCHAR source[] = u"abc";
    DualString text;
    text.Assign(source);
    source[0] = u'x';
    EXPECT_EQ(std::u16string(u"abc"), text.Get());
}

TEST(DualString, ConvertsBothWays)
{
    DualString text;
    text.AssignNarrow("file.png");
    EXPECT_EQ(std::u16string(u"file.png"), text.Get());
    text.Assign(u"other");
    EXPECT_EQ(std::string("other"), text.GetNarrow());
}

TEST(DualString, NarrowAndBackKeepsWhatTheCodePageHolds)
{
    DualString text;
    text.Assign(u"caf\u00e9");
    DualString back;
    back.AssignNarrow(text.GetNarrow());
    EXPECT_EQ(std::u16string(u"caf\u00e9"), back.Get());
}

TEST(DualString, ConvertsTheNarrowCopyAnewAfterAChange)
{
    DualString text;
    text.Assign(u"one");
    EXPECT_EQ(std::string("one"), text.GetNarrow());
    text.Assign(u"three");
    EXPECT_EQ(std::string("three"), text.GetNarrow());
    text.Clear();
    EXPECT_EQ(std::string(), text.GetNarrow());
}

TEST(DualString, WideTextReadAsBytesYieldsItsFirstCharacter)
{
    DualString text;
    text.AssignNarrow(reinterpret_cast<const char*>(u"abc"));
    EXPECT_EQ(std::u16string(u"a"), text.Get());
}

TEST(DualString, MayBeAssignedItsOwnText)
{
    DualString text;
    text.Assign(u"abc");
    text.Assign(text.Get());
    EXPECT_EQ(std::u16string(u"abc"), text.Get());
    text.AssignNarrow(text.GetNarrow());
    EXPECT_EQ(std::u16string(u"abc"), text.Get());
}

TEST(DualString, UsesTheCodePageOfTheLanguageBothWays)
{
    Scope scope;
    SetLanguage(1041);
    DualString text;
    text.AssignNarrow("\x93\xFA\x96\x7B\xB1\x5C"); // two pairs, a half-width letter, a backslash
    EXPECT_EQ(std::u16string(u"\u65E5\u672C\uFF71\\"), text.Get());
    EXPECT_EQ(std::string("\x93\xFA\x96\x7B\xB1\x5C"), text.GetNarrow());
    text.Assign(u"\u30BD\u00FC"); // a katakana letter, and one that the page lacks
    EXPECT_EQ(std::string("\x83\x5C?"), text.GetNarrow());

    SetLanguage(1033);
    text.AssignNarrow("\x93\xFA");
    EXPECT_EQ(std::u16string(u"\u201C\u00FA"), text.Get());
    EXPECT_EQ(std::string("\x93\xFA"), text.GetNarrow());
    text.Assign(u"\u30BD\u00FC");
    EXPECT_EQ(std::string("?\xFC"), text.GetNarrow());
}

TEST(DualString, KeepsATextThatEndsInHalfACharacter)
{
    Scope scope;
    SetLanguage(1041);
    DualString text;
    text.AssignNarrow("a\x93");
    EXPECT_EQ(std::u16string(u"a\u30FB"), text.Get());
    const WCHAR half[] = {u'a', 0xD83D, 0};
    text.Assign(half);
    EXPECT_EQ(std::u16string(half), text.Get());
    EXPECT_EQ(std::string("a?"), text.GetNarrow());
}

TEST(DualString, ReadsNoFurtherThanTheTextsEnd)
{
    for (const LANGID language : {1033, 1041}) {
        Scope scope;
        SetLanguage(language);
        for (const char* source : {"", "a", "abcdefg", "\xB1", "\x93\xFA\x93"}) {
            DualString text;
            text.AssignNarrow(Cells<char>(source));
            DualString copy;
            copy.Assign(Cells<WCHAR>(source));
            EXPECT_EQ(Text<WCHAR>(source), copy.Get());
            EXPECT_NE(nullptr, copy.GetNarrow());
        }
    }
}

TEST(DualString, HoldsVeryLongTexts)
{
    Scope scope;
    SetLanguage(1041);
    const std::u16string long16(300000, u'\u65E5');
    DualString text;
    text.Assign(long16.c_str());
    EXPECT_TRUE(long16 == text.Get());
    DualString back;
    back.AssignNarrow(text.GetNarrow());
    EXPECT_TRUE(long16 == back.Get());
}

TEST(DualString, KeepsTheNarrowCopyUntilTheNextOne)
{
    DualString text;
    text.Assign(u"one");
    const char* const narrow = text.GetNarrow();
    EXPECT_EQ(std::u16string(u"one"), text.Get());
    EXPECT_STREQ("one", narrow);
}

TEST(DualString, MayBeClearedTwice)
{
    DualString text;
    text.Clear();
    text.Assign(u"abc");
    (void)text.GetNarrow();
    text.Clear();
    text.Clear();
    EXPECT_EQ(std::u16string(), text.Get());
    EXPECT_EQ(std::string(), text.GetNarrow());
}

TEST(DualString, GivesBackEveryTextThatAnotherOneReplaces)
{
    const size_t before = tavrix::platform::HeldBytes();
    {
        DualString text;
        for (int round = 0; round < 3; ++round) {
            text.Assign(u"abc");
            (void)text.GetNarrow();
            (void)text.GetNarrow();
            text.AssignNarrow("abcdef");
            (void)text.GetNarrow();
            text.Assign(nullptr);
            EXPECT_EQ(before, tavrix::platform::HeldBytes());
        }
        text.Assign(u"abc");
        (void)text.GetNarrow();
        EXPECT_LT(before, tavrix::platform::HeldBytes());
    }
    EXPECT_EQ(before, tavrix::platform::HeldBytes());
}

TEST(DualString, IsEmptyAfterAnyAllocationThatFailed)
{
    for (const LANGID language : {1033, 1041}) {
        SetLanguage(language);
        const unsigned faults = ForEveryFault(FaultKind::Allocation, [language] {
            ASSERT_EQ(language, GetSystemDefaultLangID());
            const std::u16string whole = u"abc";
            DualString text;
            text.Assign(u"abc");
            ASSERT_NE(nullptr, text.Get());
            EXPECT_TRUE(whole == text.Get() || *text.Get() == 0);
            const char* narrow = text.GetNarrow();
            ASSERT_NE(nullptr, narrow);
            EXPECT_TRUE(std::string("abc") == narrow || *narrow == 0);
            text.AssignNarrow("x\xB1");
            ASSERT_NE(nullptr, text.Get());
            EXPECT_TRUE(std::u16string(text.Get()).size() == 2 || *text.Get() == 0);
            narrow = text.GetNarrow();
            ASSERT_NE(nullptr, narrow);
            EXPECT_TRUE(std::string("x\xB1") == narrow || *narrow == 0);
        });
        // One for each of the four operations.
        EXPECT_EQ(4u, faults);
    }
    tavrix::testing::Reset();
}

TEST(DualString, LosesItsOldTextWhenThereIsNoRoomForTheNewOne)
{
    DualString text;
    text.Assign(u"old");
    EXPECT_STREQ("old", text.GetNarrow());
    {
        const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
        text.Assign(u"new");
        EXPECT_EQ(0, *text.Get());
        EXPECT_EQ(0, *text.GetNarrow());
    }
    text.Assign(u"old");
    {
        const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
        text.AssignNarrow("new");
        EXPECT_EQ(0, *text.Get());
    }
    // It goes on where memory is back.
    text.Assign(u"new");
    EXPECT_EQ(std::u16string(u"new"), text.Get());
    {
        const ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Once);
        EXPECT_EQ(0, *text.GetNarrow());
        EXPECT_EQ(std::u16string(u"new"), text.Get());
    }
    EXPECT_STREQ("new", text.GetNarrow());
}
