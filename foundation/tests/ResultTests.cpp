#include "foundation/Result.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

TEST(Result, EveryNamedResultHasATextOfItsOwn)
{
    std::set<std::string> texts;
    for (const i32 result : {3, 5, 1, 0, -1, -2, -3, -4, -10, -98, -99, -100, -101}) {
        const std::string text = ResultText(result);
        EXPECT_FALSE(text.empty());
        EXPECT_TRUE(texts.insert(text).second) << text;
    }
}

TEST(Result, UnnamedResultsTellSuccessFromFailure)
{
    EXPECT_STREQ("success", ResultText(2));
    EXPECT_STREQ("success", ResultText(2147483647));
    EXPECT_STREQ("unknown failure", ResultText(-5));
}

TEST(Result, NamesHaveTheNumbersOfTheContract)
{
    EXPECT_EQ(1, Done);
    EXPECT_EQ(0, NothingDone);
    EXPECT_EQ(-1, Failed);
    EXPECT_EQ(-2, NoMemory);
    EXPECT_EQ(-3, WrongState);
    EXPECT_EQ(-4, BadArgument);
    EXPECT_EQ(-10, NoSuchName);
    EXPECT_EQ(-98, RecordTooSmall);
    EXPECT_EQ(-99, UnknownType);
    EXPECT_EQ(-100, NotConvertible);
    EXPECT_EQ(-101, NoStorage);
    EXPECT_EQ(3, Added);
    EXPECT_EQ(5, Replaced);
}
