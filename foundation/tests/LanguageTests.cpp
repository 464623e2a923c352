#include "foundation/Language.h"
#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <string>

TEST(Language, OnlyTheJapaneseSystemIsJapanese)
{
    tavrix::testing::Scope scope;
    for (LANGID other : {1033, 0, 17, 1042}) {
        tavrix::testing::SetLanguage(other);
        EXPECT_FALSE(IsJapanese()) << other;
        EXPECT_EQ(std::u16string(u"English"), InLanguage(u"English", u"Japanese"));
    }
    tavrix::testing::SetLanguage(1041);
    EXPECT_TRUE(IsJapanese());
    EXPECT_EQ(std::u16string(u"Japanese"), InLanguage(u"English", u"Japanese"));
}
