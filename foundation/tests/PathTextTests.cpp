#include "foundation/PathText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

std::u16string Resolved(const WCHAR* base, const std::u16string& path)
{
    const u32 baseLength = base != nullptr ? static_cast<u32>(std::u16string(base).size()) : 0;
    // No cell more than asked for, so that a write behind them is seen.
    std::vector<WCHAR> out(ResolvedCells(baseLength, static_cast<u32>(path.size())));
    ResolvePath(out.data(), static_cast<u32>(out.size()), base, path.c_str());
    return out.data();
}

} // namespace

TEST(ResolvePath, PutsOneSeparatorBetween)
{
    EXPECT_EQ(u"\\x", Resolved(u"\\", u"x"));
    EXPECT_EQ(u"\\Temp\\x", Resolved(u"\\Temp", u"x"));
}

TEST(ResolvePath, GluesAnAbsolutePathToTheBase)
{
    EXPECT_EQ(u"\\Temp\\x", Resolved(u"\\Temp", u"\\x"));
    EXPECT_EQ(u"\\Temp\\x", Resolved(u"\\Temp", u"/x"));
    EXPECT_EQ(u"\\\\x", Resolved(u"\\", u"\\x"));
}

TEST(ResolvePath, TurnsSlashes)
{
    EXPECT_EQ(u"\\Temp\\a\\b", Resolved(u"\\Temp", u"a/b"));
    EXPECT_EQ(u"\\Temp\\c\\a", Resolved(u"/Temp/c", u"a"));
}

TEST(ResolvePath, WithoutABaseStartsAtTheRoot)
{
    EXPECT_EQ(u"\\x", Resolved(nullptr, u"x"));
    EXPECT_EQ(u"\\x", Resolved(nullptr, u"\\x"));
    EXPECT_EQ(u"\\x", Resolved(u"", u"x"));
}

TEST(ResolvePath, ABaseWithAFinalSeparatorGetsAnother)
{
    EXPECT_EQ(u"\\Temp\\\\x", Resolved(u"\\Temp\\", u"x"));
}
