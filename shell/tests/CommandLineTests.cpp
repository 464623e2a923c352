#include "platform/testing/Testing.h"
#include "shell/CommandLine.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

std::string Name(const std::string& line)
{
    WCHAR* name = TakeQuotedName(tavrix::testing::Wide(line).c_str());
    if (name == nullptr)
        return "(as it stands)";
    std::string text = tavrix::testing::Utf8(name);
    free(name);
    return text;
}

} // namespace

TEST(CommandLine, AQuotedNameDropsWhatFollows)
{
    EXPECT_EQ(Name("\"\\a b.jpg\" further"), "\\a b.jpg");
}

TEST(CommandLine, AFurtherQuotedWordKeepsEverythingUpToTheLastQuote)
{
    EXPECT_EQ(Name("\"\\a.jpg\" \"b.jpg\" c"), "\\a.jpg\" \"b.jpg");
}

TEST(CommandLine, WithoutAClosingQuoteEverythingBehindTheOpeningOneIsTheName)
{
    EXPECT_EQ(Name("\"\\a b.jpg"), "\\a b.jpg");
}

TEST(CommandLine, AnUnquotedLineIsUsedAsItStands)
{
    EXPECT_EQ(Name("\\a b c.jpg"), "(as it stands)");
    EXPECT_EQ(Name(""), "(as it stands)");
}

TEST(CommandLine, ALongQuotedLineIsCutBeforeTheSearchForTheClosingQuote)
{
    const std::string longName(1100, 'x');
    EXPECT_EQ(Name("\"" + longName + "\" y"), std::string(1023, 'x'));
    const std::string inner = std::string(500, 'x') + "\"" + std::string(600, 'x');
    EXPECT_EQ(Name("\"" + inner + "\""), std::string(500, 'x'));
}
