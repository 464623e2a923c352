#include "plugin/PluginPathList.h"

#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using tavrix::testing::Utf8;

std::u16string PathOf(int i)
{
    return tavrix::testing::Wide("\\p\\" + std::to_string(i));
}

TEST(PluginPathList, GivesPathsByTheOrderInWhichTheyCame)
{
    PluginPathList list;
    EXPECT_EQ(list.Count(), 0u);
    EXPECT_EQ(list.Get(0), nullptr);
    EXPECT_EQ(list.Add(u"\\z.dll"), 1);
    EXPECT_EQ(list.Add(u"\\a.dll"), 1);
    EXPECT_EQ(list.Count(), 2u);
    EXPECT_EQ(Utf8(list.Get(0)), "\\z.dll");
    EXPECT_EQ(Utf8(list.Get(1)), "\\a.dll");
    EXPECT_EQ(list.Get(2), nullptr);
}

TEST(PluginPathList, KeepsTheSamePathTwice)
{
    PluginPathList list;
    EXPECT_EQ(list.Add(u"\\a.dll"), 1);
    EXPECT_EQ(list.Add(u"\\a.dll"), 1);
    EXPECT_EQ(list.Count(), 2u);
    EXPECT_EQ(Utf8(list.Get(1)), "\\a.dll");
}

TEST(PluginPathList, RefusesThePathNumber512)
{
    PluginPathList list;
    for (int i = 0; i < 512; ++i)
        ASSERT_EQ(list.Add(PathOf(i).c_str()), 1) << i;
    EXPECT_EQ(list.Add(u"\\one too many"), -1);
    EXPECT_EQ(list.Count(), 512u);
    EXPECT_EQ(Utf8(list.Get(511)), "\\p\\511");
    EXPECT_EQ(list.Get(512), nullptr);
}

TEST(PluginPathList, RefusesNull)
{
    PluginPathList list;
    EXPECT_EQ(list.Add(nullptr), -4);
    EXPECT_EQ(list.Count(), 0u);
}

TEST(PluginPathList, StartsAnewAfterAClear)
{
    PluginPathList list;
    ASSERT_EQ(list.Add(u"\\a.dll"), 1);
    EXPECT_EQ(list.Clear(), 1);
    EXPECT_EQ(list.Count(), 0u);
    EXPECT_EQ(list.Get(0), nullptr);
    ASSERT_EQ(list.Add(u"\\b.dll"), 1);
    EXPECT_EQ(Utf8(list.Get(0)), "\\b.dll");
}

} // namespace
