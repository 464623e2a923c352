#include "foundation/DualString.h"
#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <string>

using tavrix::testing::Scope;
using tavrix::testing::SetAllocationFault;

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

TEST(DualString, IsEmptyWhenMemoryRunsOut)
{
    Scope scope;
    DualString text;
    text.Assign(u"old");
    SetAllocationFault([](SIZE_T) { return true; });
    text.Assign(u"new");
    EXPECT_EQ(std::u16string(), text.Get());
    EXPECT_EQ(std::string(), text.GetNarrow());
}
