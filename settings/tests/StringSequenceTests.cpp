#include "foundation/tests/FailingAllocator.h"
#include "platform/testing/Faults.h"
#include "settings/StringSequence.h"

#include <gtest/gtest.h>

#include <string>

using namespace tavrix::testing;

namespace
{

i32 GetOf(const StringSequence& sequence, u32 index)
{
    const WCHAR* text = nullptr;
    return sequence.Get(index, &text);
}

std::u16string TextOf(const StringSequence& sequence, u32 index)
{
    const WCHAR* text = sequence.GetAt(index);
    return text != nullptr ? text : u"(none)";
}

} // namespace

TEST(StringSequence, GivesTextsInTheOrderTheyCame)
{
    StringSequence sequence;
    EXPECT_EQ(1, sequence.Append(u"first"));
    EXPECT_EQ(1, sequence.Append(u""));
    EXPECT_EQ(1, sequence.Append(u"first"));
    EXPECT_EQ(u"first", TextOf(sequence, 0));
    EXPECT_EQ(u"", TextOf(sequence, 1));
    EXPECT_EQ(u"first", TextOf(sequence, 2));
    const WCHAR* text = nullptr;
    EXPECT_EQ(1, sequence.Get(0, &text));
    EXPECT_EQ(std::u16string(u"first"), text);
}

TEST(StringSequence, CopiesWhatItIsGiven)
{
    StringSequence sequence;
    WCHAR text[] = u"before";
    ASSERT_EQ(1, sequence.Append(text));
    text[0] = u'x';
    EXPECT_EQ(u"before", TextOf(sequence, 0));
}

TEST(StringSequence, CountsWhatWasAppended)
{
    StringSequence sequence;
    u32 count = 9;
    EXPECT_EQ(1, sequence.GetCount(&count));
    EXPECT_EQ(0u, count);
    ASSERT_EQ(1, sequence.Append(u"a"));
    ASSERT_EQ(1, sequence.Append(u"b"));
    EXPECT_EQ(1, sequence.GetCount(&count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ(2u, sequence.Count());
    EXPECT_EQ(-4, sequence.GetCount(nullptr));
}

TEST(StringSequence, GetAtTheCountIsABadArgument)
{
    StringSequence sequence;
    EXPECT_EQ(-4, GetOf(sequence, 0));
    ASSERT_EQ(1, sequence.Append(u"a"));
    EXPECT_EQ(-4, GetOf(sequence, 1));
    EXPECT_EQ(-4, GetOf(sequence, 0xFFFFFFFF));
    EXPECT_EQ(nullptr, sequence.GetAt(1));
}

TEST(StringSequence, GetRefusesNullAndWritesOnlyWhatItFinds)
{
    StringSequence sequence;
    ASSERT_EQ(1, sequence.Append(u"a"));
    EXPECT_EQ(-4, sequence.Get(0, nullptr));
    const WCHAR* const before = u"kept";
    const WCHAR* text = before;
    EXPECT_EQ(-4, sequence.Get(1, &text));
    EXPECT_EQ(before, text);
    ASSERT_EQ(1, sequence.Clear());
    EXPECT_EQ(-1, sequence.Get(0, &text));
    EXPECT_EQ(before, text);
}

TEST(StringSequence, ANullTextIsAFailureThatCountsNothing)
{
    StringSequence sequence;
    EXPECT_EQ(-1, sequence.Append(nullptr));
    EXPECT_EQ(0u, sequence.Count());
}

TEST(StringSequence, ClearKeepsTheCountSoThatOldIndexesFail)
{
    StringSequence sequence;
    ASSERT_EQ(1, sequence.Append(u"a"));
    ASSERT_EQ(1, sequence.Append(u"b"));
    EXPECT_EQ(1, sequence.Clear());
    EXPECT_EQ(2u, sequence.Count());
    EXPECT_EQ(-1, GetOf(sequence, 0));
    EXPECT_EQ(-1, GetOf(sequence, 1));
    EXPECT_EQ(nullptr, sequence.GetAt(0));
    EXPECT_EQ(-4, GetOf(sequence, 2));
    // Appending goes on behind them.
    EXPECT_EQ(1, sequence.Append(u"c"));
    EXPECT_EQ(u"c", TextOf(sequence, 2));
    EXPECT_EQ(-1, GetOf(sequence, 0));
}

TEST(StringSequence, RefusesThe513thText)
{
    StringSequence sequence;
    for (u32 i = 0; i < 512; ++i)
        ASSERT_EQ(1, sequence.Append(u"x"));
    EXPECT_EQ(-1, sequence.Append(u"one more"));
    EXPECT_EQ(512u, sequence.Count());
    EXPECT_EQ(u"x", TextOf(sequence, 511));
}

TEST(StringSequence, ATextThatMemoryWasLackingForHasItsIndexAndNoText)
{
    FailingAllocator allocator;
    {
        StringSequence sequence(&allocator);
        ASSERT_EQ(1, sequence.Append(u"a"));
        allocator.AllowOnly(0);
        EXPECT_EQ(1, sequence.Append(u"b")) << "the list's setters do not tell";
        allocator.AllowAll();
        ASSERT_EQ(1, sequence.Append(u"c"));
        EXPECT_EQ(u"a", TextOf(sequence, 0));
        EXPECT_EQ(-1, GetOf(sequence, 1));
        EXPECT_EQ(u"c", TextOf(sequence, 2));
    }
    EXPECT_EQ(0, allocator.Live());
}

TEST(StringSequence, WithoutItsTableRefusesEveryText)
{
    FailingAllocator allocator;
    allocator.AllowOnly(0);
    StringSequence sequence(&allocator);
    allocator.AllowAll();
    EXPECT_EQ(-1, sequence.Append(u"a"));
    EXPECT_EQ(0u, sequence.Count());
    EXPECT_EQ(-1, sequence.Clear());
    EXPECT_EQ(-4, GetOf(sequence, 0));
}

TEST(StringSequence, SurvivesEveryShortageOfMemory)
{
    ForEveryFault(FaultKind::Allocation, [] {
        StringSequence sequence;
        u32 appended = 0;
        for (const WCHAR* text : {u"first", u"second", u"third"}) {
            const i32 result = sequence.Append(text);
            EXPECT_TRUE(result == 1 || result == -1) << result;
            appended += result == 1 ? 1 : 0;
        }
        EXPECT_EQ(appended, sequence.Count());
        for (u32 i = 0; i < appended; ++i) {
            const i32 result = GetOf(sequence, i);
            EXPECT_TRUE(result == 1 || result == -1) << result;
        }
        (void)sequence.Clear();
    });
}
