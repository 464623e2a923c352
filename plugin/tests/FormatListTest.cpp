// The list of file formats and its two helpers on pattern text.

#include "plugin/FormatList.h"

#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using tavrix::testing::Utf8;

TEST(FormatList, StartsEmpty)
{
    const FormatList list;
    i32 plugin = 77;
    EXPECT_EQ(list.Count(), 0u);
    EXPECT_EQ(list.GetPluginIndex(0, &plugin), 0);
    EXPECT_EQ(plugin, 77);
    EXPECT_EQ(list.GetDescription(0), nullptr);
    EXPECT_EQ(list.GetPatterns(0), nullptr);
}

TEST(FormatList, KeepsCopiesOfWhatIsAdded)
{
    FormatList list;
    WCHAR description[] = u"Picture";
    WCHAR patterns[] = u"*.pic";
    ASSERT_EQ(list.Add(5, description, patterns), 1);
    description[0] = u'X';
    patterns[0] = u'X';
    ASSERT_EQ(list.Add(6, u"Empty", u""), 1);

    EXPECT_EQ(list.Count(), 2u);
    EXPECT_EQ(Utf8(list.GetDescription(0)), "Picture");
    EXPECT_EQ(Utf8(list.GetPatterns(0)), "*.pic");
    EXPECT_EQ(Utf8(list.GetPatterns(1)), "");
    i32 plugin = 0;
    EXPECT_EQ(list.GetPluginIndex(0, &plugin), 1);
    EXPECT_EQ(plugin, 5);
    EXPECT_EQ(list.GetPluginIndex(1, &plugin), 1);
    EXPECT_EQ(plugin, 6);
}

TEST(FormatList, RefusesNullTexts)
{
    FormatList list;
    EXPECT_EQ(list.Add(0, nullptr, u"*.a"), -4);
    EXPECT_EQ(list.Add(0, u"a", nullptr), -4);
    EXPECT_EQ(list.GetPluginIndex(0, nullptr), -4);
    EXPECT_EQ(list.Count(), 0u);
}

TEST(FormatList, TakesNoMoreThanItsCells)
{
    FormatList list;
    for (int i = 0; i < 1024; ++i)
        ASSERT_EQ(list.Add(i, u"d", u"*.p"), 1) << i;
    EXPECT_EQ(list.Add(1024, u"d", u"*.p"), -1);
    EXPECT_EQ(list.Count(), 1024u);
    i32 plugin = 0;
    EXPECT_EQ(list.GetPluginIndex(1023, &plugin), 1);
    EXPECT_EQ(plugin, 1023);
    EXPECT_EQ(list.GetPluginIndex(1024, &plugin), 0);
    EXPECT_EQ(list.GetDescription(1024), nullptr);
    EXPECT_EQ(list.GetPatterns(1024), nullptr);
}

TEST(FormatList, MatchesAnyItemOfAPatternWithoutRegardToCase)
{
    FormatList list;
    ASSERT_EQ(list.Add(0, u"d", u"*.jpg;*.jpeg;*.tar.gz;plain"), 1);
    EXPECT_EQ(list.MatchExtension(0, u"\\a.JPG"), 1);
    EXPECT_EQ(list.MatchExtension(0, u"\\a.jpeg"), 1);
    EXPECT_EQ(list.MatchExtension(0, u"\\a.png"), -1);
    // Behind the first point of the item, not the last.
    EXPECT_EQ(list.MatchExtension(0, u"\\a.gz"), -1);
    EXPECT_EQ(list.MatchExtension(0, u"\\a.tar.gz"), 1);
    // An item without a point is looked for as a whole.
    EXPECT_EQ(list.MatchExtension(0, u"\\PLAIN"), 1);
}

TEST(FormatList, MatchesAnExtensionAnywhereInTheText)
{
    FormatList list;
    ASSERT_EQ(list.Add(0, u"d", u"*.bmp"), 1);
    EXPECT_EQ(list.MatchExtension(0, u"\\bmpfolder\\a.png"), 1);
    EXPECT_EQ(list.MatchExtension(0, u""), -1);
}

TEST(FormatList, MatchesNothingByAnEmptyItem)
{
    FormatList list;
    ASSERT_EQ(list.Add(0, u"none", u""), 1);
    ASSERT_EQ(list.Add(0, u"holes", u";;*.;;*.zip"), 1);
    EXPECT_EQ(list.MatchExtension(0, u"\\a.zip"), -1);
    EXPECT_EQ(list.MatchExtension(1, u"\\a.zip"), 1);
    EXPECT_EQ(list.MatchExtension(1, u"\\a.png"), -1);
}

TEST(FormatList, TellsAnEntryPastTheCellsFromAnUnusedOne)
{
    FormatList list;
    EXPECT_EQ(list.MatchExtension(1023, u"a.zip"), -1);
    EXPECT_EQ(list.MatchExtension(1024, u"a.zip"), -4);
    EXPECT_EQ(list.MatchExtension(0, nullptr), -4);
}

TEST(FormatList, MatchFollowsTheSearchThatNeverStepsBack)
{
    FormatList list;
    ASSERT_EQ(list.Add(0, u"d", u"*.aab"), 1);
    EXPECT_EQ(list.MatchExtension(0, u"x.aab"), 1);
    EXPECT_EQ(list.MatchExtension(0, u"x.aaab"), -1);
}

TEST(FormatList, GivesTheFirstExtensionAsDefault)
{
    FormatList list;
    ASSERT_EQ(list.Add(0, u"d", u"*.jpg;*.jpeg"), 1);
    ASSERT_EQ(list.Add(0, u"d", u"*.bmp"), 1);
    ASSERT_EQ(list.Add(0, u"d", u""), 1);
    WCHAR text[16] = u"before";
    EXPECT_EQ(list.GetDefaultExtension(0, text, 16), 1);
    EXPECT_EQ(Utf8(text), ".jpg");
    EXPECT_EQ(list.GetDefaultExtension(1, text, 16), 1);
    EXPECT_EQ(Utf8(text), ".bmp");
    EXPECT_EQ(list.GetDefaultExtension(2, text, 16), 1);
    EXPECT_EQ(Utf8(text), "");
    EXPECT_EQ(list.GetDefaultExtension(3, text, 16), -1);
    EXPECT_EQ(list.GetDefaultExtension(1024, text, 16), -4);
    EXPECT_EQ(list.GetDefaultExtension(0, nullptr, 16), -4);
    EXPECT_EQ(list.GetDefaultExtension(0, text, 0), -4);
}

TEST(FormatList, CutsADefaultExtensionThatDoesNotFit)
{
    FormatList list;
    ASSERT_EQ(list.Add(0, u"d", u"*.jpeg;*.jpg"), 1);
    WCHAR text[4] = {u'#', u'#', u'#', u'#'};
    EXPECT_EQ(list.GetDefaultExtension(0, text, 3), 0);
    EXPECT_EQ(Utf8(text), ".j");
    EXPECT_EQ(text[3], u'#');
}

/// An allocator whose n-th block fails.
class FailingAllocator final : public Allocator
{
public:
    explicit FailingAllocator(int nth) : left(nth) {}
    i32 Alloc(void** out, u32 size) override
    {
        if (--left == 0) {
            *out = nullptr;
            return NoMemory;
        }
        return malloc.Alloc(out, size);
    }
    i32 Free(void* block) override { return malloc.Free(block); }

private:
    MallocAllocator malloc;
    int left;
};

TEST(FormatList, AFailingBlockAnywhereAddsNothingAndLeaksNothing)
{
    // Three arrays, two texts, one scratch item: six blocks.
    for (int nth = 1; nth <= 7; ++nth) {
        FailingAllocator allocator(nth);
        FormatList list(&allocator);
        const i32 added = list.Add(3, u"d", u"*.p");
        EXPECT_EQ(added, nth <= 5 ? -2 : 1) << nth;
        EXPECT_EQ(list.Count(), nth <= 5 ? 0u : 1u) << nth;
        const i32 matched = list.MatchExtension(0, u"a.p");
        EXPECT_EQ(matched, nth <= 5 ? -1 : nth == 6 ? -2 : 1) << nth;
    }
}

} // namespace
