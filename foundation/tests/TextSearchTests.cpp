#include "foundation/TextSearch.h"

#include <gtest/gtest.h>

namespace
{

const WCHAR* const NoWide = nullptr;
const char* const NoNarrow = nullptr;

} // namespace

TEST(TextLength, CountsUnits)
{
    u32 length = 9;
    EXPECT_EQ(1, TextLength(u"abc", &length));
    EXPECT_EQ(3u, length);
    EXPECT_EQ(1, TextLength("", &length));
    EXPECT_EQ(0u, length);
}

TEST(TextLength, OfNullIsZeroAndAFailure)
{
    u32 length = 9;
    EXPECT_EQ(-1, TextLength(NoWide, &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(-1, TextLength(u"abc", nullptr));
    EXPECT_EQ(-1, TextLength("abc", nullptr));
}

TEST(FindChar, FindsTheFirstPlace)
{
    const WCHAR text[] = u"a.b.c";
    const WCHAR* place = nullptr;
    EXPECT_EQ(1, FindChar(text, u'.', &place));
    EXPECT_EQ(text + 1, place);
    EXPECT_EQ(1, FindChar(text, u'.'));
    EXPECT_EQ(1, FindChar("a.b", '.'));
}

TEST(FindLastChar, FindsTheLastPlace)
{
    const WCHAR text[] = u"a.b.c";
    const WCHAR* place = nullptr;
    EXPECT_EQ(1, FindLastChar(text, u'.', &place));
    EXPECT_EQ(text + 3, place);
    const char narrow[] = "a.b.c";
    const char* narrowPlace = nullptr;
    EXPECT_EQ(1, FindLastChar(narrow, '.', &narrowPlace));
    EXPECT_EQ(narrow + 3, narrowPlace);
}

TEST(FindChar, FailsForNullEmptyAndAbsent)
{
    const WCHAR* place = NoWide;
    EXPECT_EQ(-1, FindChar(NoWide, u'.', &place));
    EXPECT_EQ(-1, FindChar(u"", u'.', &place));
    EXPECT_EQ(-1, FindChar(u"", u'\0', &place));
    EXPECT_EQ(-1, FindChar(u"abc", u'.', &place));
    EXPECT_EQ(-1, FindLastChar(NoNarrow, '.'));
    EXPECT_EQ(-1, FindLastChar("", '.'));
    EXPECT_EQ(-1, FindLastChar("abc", '.'));
    EXPECT_EQ(nullptr, place);
}

TEST(FindTextNoCase, FindsAnExtension)
{
    const WCHAR text[] = u"A.PNG";
    const WCHAR* place = nullptr;
    EXPECT_EQ(1, FindTextNoCase(text, u".png", &place));
    EXPECT_EQ(text + 1, place);
    EXPECT_EQ(1, FindTextNoCase("A.PNG", ".png"));
    EXPECT_EQ(1, FindTextNoCase(u"a.png", u".PNG"));
}

TEST(FindTextNoCase, NeverStepsBack)
{
    EXPECT_EQ(0, FindTextNoCase(u"aaab", u"aab"));
    EXPECT_EQ(0, FindTextNoCase("aaab", "aab"));
    // The character that broke the match is not tried as a beginning.
    EXPECT_EQ(0, FindTextNoCase(u"a..png", u".png"));
    EXPECT_EQ(1, FindTextNoCase(u"a...png", u".png"));
}

TEST(FindTextNoCase, IsNotFoundWhereItEndsTooEarly)
{
    EXPECT_EQ(0, FindTextNoCase(u"a.pn", u".png"));
    EXPECT_EQ(0, FindTextNoCase(u"", u".png"));
}

TEST(FindTextNoCase, NeverFindsAnEmptyNeedle)
{
    const WCHAR* place = NoWide;
    EXPECT_EQ(0, FindTextNoCase(u"abc", u"", &place));
    EXPECT_EQ(nullptr, place);
}

TEST(FindTextNoCase, FoldsTheLettersAToZOnly)
{
    EXPECT_EQ(1, FindTextNoCase(u"AZ", u"az"));
    EXPECT_EQ(0, FindTextNoCase(u"@", u"`"));
    EXPECT_EQ(0, FindTextNoCase(u"[", u"{"));
    EXPECT_EQ(0, FindTextNoCase(u"\u00c9", u"\u00e9"));
    EXPECT_EQ(0, FindTextNoCase("\xc9", "\xe9"));
}

TEST(FindTextNoCase, FailsForNull)
{
    EXPECT_EQ(-1, FindTextNoCase(NoWide, u"a"));
    EXPECT_EQ(-1, FindTextNoCase(u"a", NoWide));
    EXPECT_EQ(-1, FindTextNoCase(NoNarrow, "a"));
}
