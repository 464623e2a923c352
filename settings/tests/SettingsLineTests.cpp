#include "settings/SettingsLine.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

// A line taken apart, with its parts copied out.
struct Parsed {
    explicit Parsed(std::u16string line)
    {
        const SettingsLine parsed = ParseSettingsLine(line.data());
        kind = parsed.kind;
        if (parsed.name != nullptr)
            name = parsed.name;
        hasValue = parsed.value != nullptr;
        if (hasValue)
            value = parsed.value;
    }
    SettingsLineKind kind;
    std::u16string name;
    std::u16string value;
    bool hasValue = false;
};

} // namespace

TEST(SettingsLine, BlankLinesAndCommentsAreNothing)
{
    for (const char16_t* line : {u"", u" ", u"\t \t", u";", u"; a=b", u" \t;[x]"})
        EXPECT_EQ(SettingsLineKind::Nothing, Parsed(line).kind);
}

TEST(SettingsLine, ASectionIsWhatStandsBeforeTheFirstClosingBracket)
{
    const Parsed plain(u"[Tavrix]");
    EXPECT_EQ(SettingsLineKind::Section, plain.kind);
    EXPECT_EQ(u"Tavrix", plain.name);
    const Parsed blanks(u"\t [ a b ] rest ] = ;");
    EXPECT_EQ(SettingsLineKind::Section, blanks.kind);
    EXPECT_EQ(u" a b ", blanks.name);
    EXPECT_EQ(u"", Parsed(u"[]").name);
    EXPECT_EQ(u"[a", Parsed(u"[[a]]").name);
}

TEST(SettingsLine, ASectionWithoutItsClosingBracketIsBroken)
{
    EXPECT_EQ(SettingsLineKind::Broken, Parsed(u"[").kind);
    EXPECT_EQ(SettingsLineKind::Broken, Parsed(u" [a=b").kind);
}

TEST(SettingsLine, AKeyMayStandAmongBlanks)
{
    const Parsed key(u" \tname \t= \t value  ");
    EXPECT_EQ(SettingsLineKind::Key, key.kind);
    EXPECT_EQ(u"name", key.name);
    EXPECT_EQ(u"value  ", key.value);
}

TEST(SettingsLine, AValueMayHoldAnything)
{
    EXPECT_EQ(u"b=c;[d] e", Parsed(u"a=b=c;[d] e").value);
    EXPECT_EQ(u"=", Parsed(u"a==").value);
}

TEST(SettingsLine, ANameMayBeEmpty)
{
    const Parsed key(u"=value");
    EXPECT_EQ(SettingsLineKind::Key, key.kind);
    EXPECT_EQ(u"", key.name);
    EXPECT_EQ(u"value", key.value);
}

TEST(SettingsLine, NothingBehindTheSignIsNoValue)
{
    for (const char16_t* line : {u"a=", u"a= \t", u"="}) {
        EXPECT_EQ(SettingsLineKind::Key, Parsed(line).kind);
        EXPECT_FALSE(Parsed(line).hasValue);
    }
}

TEST(SettingsLine, ANameWithoutTheSignBehindItIsNothing)
{
    for (const char16_t* line : {u"a", u"a ", u"a b=1", u"a\tb = 1", u"]", u"a ;=1"})
        EXPECT_EQ(SettingsLineKind::Nothing, Parsed(line).kind);
}

TEST(SettingsLine, LoneLineEndsAreOrdinaryCharacters)
{
    EXPECT_EQ(u"1\nb=2\r", Parsed(u"a=1\nb=2\r").value);
    EXPECT_EQ(u"\na", Parsed(u"\na=1").name);
}
