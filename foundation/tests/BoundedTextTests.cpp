#include "foundation/BoundedText.h"

#include <gtest/gtest.h>

#include <string>

TEST(CopyText, CutsWhatDoesNotFit)
{
    WCHAR wide[4] = {u'#', u'#', u'#', u'#'};
    EXPECT_EQ(0, CopyText(wide, 4, u"abcdef"));
    EXPECT_EQ(std::u16string(u"abc"), wide);
    char narrow[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(0, CopyText(narrow, 4, "abcdef"));
    EXPECT_EQ(std::string("abc"), narrow);
}

TEST(CopyText, AnExactFitCountsAsACut)
{
    WCHAR wide[4];
    EXPECT_EQ(0, CopyText(wide, 4, u"abc"));
    EXPECT_EQ(std::u16string(u"abc"), wide);
    EXPECT_EQ(1, CopyText(wide, 4, u"ab"));
    EXPECT_EQ(std::u16string(u"ab"), wide);
}

TEST(CopyText, EndsAtTheTerminator)
{
    WCHAR wide[20];
    EXPECT_EQ(1, CopyText(wide, 20, u"key=value", u'='));
    EXPECT_EQ(std::u16string(u"key"), wide);
    char narrow[20];
    EXPECT_EQ(1, CopyText(narrow, 20, "key=value", '='));
    EXPECT_EQ(std::string("key"), narrow);
}

TEST(CopyText, ReadsNothingBehindATextWithoutTheTerminator)
{
    WCHAR wide[20];
    wide[4] = u'#';
    const WCHAR source[] = {u'k', u'e', u'y', 0, u'x', u'=', 0};
    EXPECT_EQ(1, CopyText(wide, 20, source, u'='));
    EXPECT_EQ(std::u16string(u"key"), wide);
    EXPECT_EQ(u'#', wide[4]);
}

TEST(CopyText, RefusesNullAndHasNothingToDoWithoutCapacity)
{
    WCHAR wide[4] = {u'#', u'#', u'#', u'#'};
    EXPECT_EQ(-1, CopyText(static_cast<WCHAR*>(nullptr), 4, u"a"));
    EXPECT_EQ(-1, CopyText(wide, 4, static_cast<const WCHAR*>(nullptr)));
    EXPECT_EQ(0, CopyText(wide, 0, u"a"));
    EXPECT_EQ(u'#', wide[0]);
}

TEST(CopyText, WithOneCellGivesTheEmptyText)
{
    WCHAR wide[2] = {u'#', u'#'};
    EXPECT_EQ(0, CopyText(wide, 1, u""));
    EXPECT_EQ(0, wide[0]);
    EXPECT_EQ(u'#', wide[1]);
}

TEST(AppendText, AppendsBehindTheText)
{
    WCHAR wide[10] = u"ab";
    EXPECT_EQ(1, AppendText(wide, 10, u"cd"));
    EXPECT_EQ(std::u16string(u"abcd"), wide);
    char narrow[10] = "ab";
    EXPECT_EQ(1, AppendText(narrow, 10, "cd"));
    EXPECT_EQ(std::string("abcd"), narrow);
}

TEST(AppendText, ToAFullTextChangesNothing)
{
    WCHAR wide[4] = u"abc";
    EXPECT_EQ(0, AppendText(wide, 4, u"d"));
    EXPECT_EQ(std::u16string(u"abc"), wide);
    EXPECT_EQ(0, AppendText(wide, 4, u""));
}

TEST(AppendText, CutsAnUnterminatedTargetAtItsLastCell)
{
    WCHAR wide[4] = {u'a', u'b', u'c', u'd'};
    EXPECT_EQ(0, AppendText(wide, 4, u"x"));
    EXPECT_EQ(std::u16string(u"abc"), wide);
}

TEST(AppendText, CutsWhatDoesNotFit)
{
    WCHAR wide[6] = u"ab";
    EXPECT_EQ(0, AppendText(wide, 6, u"cdefgh"));
    EXPECT_EQ(std::u16string(u"abcde"), wide);
}

TEST(AppendText, RefusesNullAndNoCapacity)
{
    WCHAR wide[4] = u"a";
    EXPECT_EQ(-1, AppendText(static_cast<WCHAR*>(nullptr), 4, u"a"));
    EXPECT_EQ(-1, AppendText(wide, 4, static_cast<const WCHAR*>(nullptr)));
    EXPECT_EQ(-1, AppendText(wide, 0, u"a"));
}
