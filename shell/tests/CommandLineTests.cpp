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

TEST(CommandLine, ACutLineLosesAClosingQuoteBehind1023Characters)
{
    // The quote would be the 1,024th character: it is cut away before it is looked for.
    EXPECT_EQ(Name("\"" + std::string(1023, 'x') + "\" y"), std::string(1023, 'x'));
    // As the 1,023rd it is still there.
    EXPECT_EQ(Name("\"" + std::string(1022, 'x') + "\" y"), std::string(1022, 'x'));
    // A line whose text fits exactly is whole.
    EXPECT_EQ(Name("\"" + std::string(1023, 'x')), std::string(1023, 'x'));
}

TEST(CommandLine, QuotesInsideStayAndOnlyTheLastIsTaken)
{
    EXPECT_EQ(Name("\"a\"b\"c\"d"), "a\"b\"c");
    EXPECT_EQ(Name("\"\"a"), "");
    EXPECT_EQ(Name("\"\"\""), "\"");
}

TEST(CommandLine, AQuoteAloneIsAnEmptyName)
{
    EXPECT_EQ(Name("\""), "");
    EXPECT_EQ(Name("\"\""), "");
}

TEST(CommandLine, OnlyAQuoteThatIsTheFirstCharacterCounts)
{
    EXPECT_EQ(Name(" \"a\""), "(as it stands)");
    EXPECT_EQ(Name("a \"b\""), "(as it stands)");
}

TEST(CommandLine, SpacesInsideAndAtTheEndsStay)
{
    EXPECT_EQ(Name("\" a  b \""), " a  b ");
}

TEST(CommandLine, JapaneseNamesPass)
{
    EXPECT_EQ(Name("\"\\\\写真 １.png\" x"), "\\\\写真 １.png");
}

TEST(CommandLine, WithoutMemoryTheLineIsUsedAsItStands)
{
    tavrix::testing::Scope scope;
    tavrix::testing::SetAllocationFault([](SIZE_T) { return true; });
    EXPECT_EQ(TakeQuotedName(u"\"a\""), nullptr);
    EXPECT_EQ(TakeQuotedName(nullptr), nullptr);
}

TEST(CommandLine, TheCopyTakesABufferOf1024Characters)
{
    tavrix::testing::Scope scope;
    SIZE_T asked = 0;
    tavrix::testing::SetAllocationFault([&asked](SIZE_T size) {
        asked = size;
        return true;
    });
    EXPECT_EQ(TakeQuotedName(u"\"a\""), nullptr);
    EXPECT_EQ(asked, 2048u);
}
