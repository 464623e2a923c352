// The texts that the file dialog filters by: pairs, items, which of equal items counts, the join of
// all patterns and the name that is made to fit.

#include "view/FilePatterns.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using Text = std::u16string;
using Texts = std::vector<Text>;

/// A filter text from its parts, with the zero that ends it.
Text Filter(const Texts& parts)
{
    Text filter;
    for (const Text& part : parts)
        filter += part + u'\0';
    return filter + u'\0';
}

Texts Pairs(const WCHAR* filter)
{
    Texts found;
    FilterPairs pairs(filter);
    for (FilterPair pair; pairs.Next(&pair);)
        found.push_back(Text(pair.description) + u"|" + pair.patterns);
    return found;
}

Texts Items(const WCHAR* patterns)
{
    Texts found;
    PatternItems items(patterns);
    for (PatternItem item; items.Next(&item);)
        found.emplace_back(item.text, item.length);
    return found;
}

/// The items that are searched for: those that do not come again.
Texts Searched(const WCHAR* patterns)
{
    Texts found;
    PatternItems items(patterns);
    for (PatternItem item; items.Next(&item);)
        if (!ComesAgain(item))
            found.emplace_back(item.text, item.length);
    return found;
}

Text Joined(const Text& filter, u32 capacity = 1024)
{
    std::vector<WCHAR> out(capacity + 1, u'#');
    JoinPatterns(filter.data(), out.data(), capacity);
    EXPECT_EQ(out[capacity], u'#') << "written past the buffer";
    return out.data();
}

Text Fitted(const Text& name, const WCHAR* patterns, ForeignExtension foreign)
{
    WCHAR text[300] = {};
    name.copy(text, 256);
    const i32 result = MakeNameFit(text, 300, patterns, foreign);
    EXPECT_EQ(result == Done, name != text);
    return text;
}

Text Kept(const Text& name, const WCHAR* patterns)
{
    return Fitted(name, patterns, ForeignExtension::Keep);
}

Text Exchanged(const Text& name, const WCHAR* patterns)
{
    return Fitted(name, patterns, ForeignExtension::Replace);
}

} // namespace

TEST(FilePatterns, AFilterTextIsWalkedPairByPair)
{
    const Text filter = Filter({u"JPEG", u"*.jpg;*.jpeg", u"画像", u"*.png"});
    EXPECT_EQ(Pairs(filter.data()), (Texts{u"JPEG|*.jpg;*.jpeg", u"画像|*.png"}));
}

TEST(FilePatterns, NoFilterTextAndAnEmptyOneHoldNoPair)
{
    EXPECT_EQ(Pairs(nullptr), Texts{});
    EXPECT_EQ(Pairs(u""), Texts{});
}

TEST(FilePatterns, TwoZerosEndAFilterTextWhereverTheyStand)
{
    // A vector, so that a step behind the end is seen.
    const std::vector<WCHAR> cut = {u'A', 0, u'*', 0, u'B', 0, 0};
    EXPECT_EQ(Pairs(cut.data()), (Texts{u"A|*", u"B|"}));
    EXPECT_EQ(Text(PatternsOfPair(cut.data(), 1)), u"");
    EXPECT_EQ(PatternsOfPair(cut.data(), 2), nullptr);
}

TEST(FilePatterns, APairIsFoundByItsNumber)
{
    const Text filter = Filter({u"A", u"*.a", u"B", u"*.b", u"C", u"*.c"});
    EXPECT_EQ(Text(PatternsOfPair(filter.data(), 0)), u"*.a");
    EXPECT_EQ(Text(PatternsOfPair(filter.data(), 2)), u"*.c");
    EXPECT_EQ(PatternsOfPair(filter.data(), 3), nullptr);
    EXPECT_EQ(PatternsOfPair(filter.data(), -1), nullptr);
    EXPECT_EQ(PatternsOfPair(nullptr, 0), nullptr);
}

TEST(FilePatterns, ItemsAreWalkedAndEmptyOnesPassedOver)
{
    EXPECT_EQ(Items(u"*.a;*.b;*.c"), (Texts{u"*.a", u"*.b", u"*.c"}));
    EXPECT_EQ(Items(u";;*.a;;;*.b;"), (Texts{u"*.a", u"*.b"}));
    EXPECT_EQ(Items(u";"), Texts{});
    EXPECT_EQ(Items(u""), Texts{});
    EXPECT_EQ(Items(nullptr), Texts{});
}

TEST(FilePatterns, OnlyTheLastOfEqualItemsCounts)
{
    EXPECT_EQ(Searched(u"*.jpg;*.JPG"), (Texts{u"*.JPG"}));
    EXPECT_EQ(Searched(u"*.jpg;*.png;*.Jpg;*.gif;*.PNG"), (Texts{u"*.Jpg", u"*.gif", u"*.PNG"}));
    EXPECT_EQ(Searched(u"*.a;;*.a;"), (Texts{u"*.a"}));
}

TEST(FilePatterns, EqualItemsAreEqualAsAWhole)
{
    EXPECT_EQ(Searched(u"*.jp;*.jpg;*.jpeg"), (Texts{u"*.jp", u"*.jpg", u"*.jpeg"}));
    EXPECT_EQ(Searched(u"*.jpg;*.jp;x*.jpg"), (Texts{u"*.jpg", u"*.jp", u"x*.jpg"}));
}

TEST(FilePatterns, CaseIsThatOfTheAsciiLettersAlone)
{
    EXPECT_EQ(Searched(u"*.\u00E4;*.\u00C4"), (Texts{u"*.\u00E4", u"*.\u00C4"}));
}

TEST(FilePatterns, AllPatternsAreJoinedInOrder)
{
    EXPECT_EQ(Joined(Filter({u"A", u"*.a;*.aa", u"B", u"*.b"})), u"*.a;*.aa;*.b");
    EXPECT_EQ(Joined(Filter({u"A", u"*.a"})), u"*.a");
    EXPECT_EQ(Joined(Filter({})), u"");
}

TEST(FilePatterns, TheJoinIsCutAt1023Characters)
{
    Texts parts;
    Text whole;
    for (int i = 0; i < 150; ++i) {
        const Text pattern = Text(u"*.extension") + static_cast<WCHAR>(u'A' + i % 26);
        parts.push_back(u"D");
        parts.push_back(pattern);
        whole += (i != 0 ? u";" : u"") + pattern;
    }
    ASSERT_GT(whole.size(), 1023u);
    EXPECT_EQ(Joined(Filter(parts)), whole.substr(0, 1023));
    EXPECT_EQ(Joined(Filter({u"A", u"*.a", u"B", u"*.b"}), 5), u"*.a;");
    EXPECT_EQ(Joined(Filter({u"A", u"*.a"}), 1), u"");
}

TEST(FilePatterns, ANameThatFitsOneOfThePatternsStays)
{
    for (const WCHAR* name : {u"a.jpg", u"a.JPEG", u"a.b.Jpg", u".jpg", u"絵.jpg", u"sub\\a.jpg"}) {
        EXPECT_EQ(Kept(name, u"*.jpg;*.jpeg"), name);
        EXPECT_EQ(Exchanged(name, u"*.jpg;*.jpeg"), name);
    }
}

TEST(FilePatterns, ANameWithoutAnExtensionGetsTheFirstPatterns)
{
    EXPECT_EQ(Kept(u"a", u"*.jpg;*.jpeg"), u"a.jpg");
    EXPECT_EQ(Exchanged(u"a", u"*.jpg;*.jpeg"), u"a.jpg");
    EXPECT_EQ(Kept(u"夏の海", u";;*.png;*.jpg"), u"夏の海.png");
}

TEST(FilePatterns, AForeignExtensionIsKeptOrReplaced)
{
    EXPECT_EQ(Kept(u"a.b", u"*.jpg"), u"a.b.jpg");
    EXPECT_EQ(Exchanged(u"a.b", u"*.jpg"), u"a.jpg");
    EXPECT_EQ(Kept(u"a.tar.gz", u"*.png"), u"a.tar.gz.png");
    EXPECT_EQ(Exchanged(u"a.tar.gz", u"*.png"), u"a.tar.png");
    EXPECT_EQ(Kept(u"a.", u"*.png"), u"a..png");
    EXPECT_EQ(Exchanged(u"a.", u"*.png"), u"a.png");
}

TEST(FilePatterns, AnExtensionFitsAWholeItemAndNoPartOfOne)
{
    EXPECT_EQ(Kept(u"a.jp", u"*.jpg"), u"a.jp.jpg");
    EXPECT_EQ(Kept(u"a.jpgx", u"*.jpg"), u"a.jpgx.jpg");
    EXPECT_EQ(Kept(u"a.j", u"*.jpg;*.j"), u"a.j");
}

TEST(FilePatterns, AnEmptyNameAndAFolderStay)
{
    for (const WCHAR* name : {u"", u"\\", u"sub\\", u"sub.dir\\"}) {
        EXPECT_EQ(Kept(name, u"*.jpg"), name);
        EXPECT_EQ(Exchanged(name, u"*.jpg"), name);
    }
}

TEST(FilePatterns, ADotInAFoldersNameCountsAsAnyOther)
{
    EXPECT_EQ(Kept(u"sub.dir\\a", u"*.jpg"), u"sub.dir\\a.jpg");
    EXPECT_EQ(Exchanged(u"sub.dir\\a", u"*.jpg"), u"sub.jpg");
}

TEST(FilePatterns, APatternWithoutAStarAddsNothing)
{
    EXPECT_EQ(Kept(u"a", u"readme"), u"a");
    EXPECT_EQ(Exchanged(u"a.b", u"readme;*.jpg"), u"a.b");
    EXPECT_EQ(Exchanged(u"a.b", u""), u"a.b");
    EXPECT_EQ(Exchanged(u"a.b", u";;"), u"a.b");
}

TEST(FilePatterns, WhatStandsBehindTheFirstStarIsAdded)
{
    EXPECT_EQ(Kept(u"a", u"scan*.tif"), u"a.tif");
    EXPECT_EQ(Kept(u"a", u"*"), u"a");
    EXPECT_EQ(Exchanged(u"a.b", u"*"), u"a");
    EXPECT_EQ(Exchanged(u"a.b", u"*;*.x"), u"a") << "the first item is the one that is added";
}

TEST(FilePatterns, AnExtensionThatDoesNotFitTheBufferIsCut)
{
    WCHAR name[8] = u"abc";
    name[7] = u'#';
    EXPECT_EQ(MakeNameFit(name, 7, u"*.jpeg", ForeignExtension::Keep), Done);
    EXPECT_EQ(Text(name), u"abc.jp");
    EXPECT_EQ(name[7], u'#');
}
