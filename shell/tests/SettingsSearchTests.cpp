#include "platform/testing/core/TestHome.h"
#include "platform/testing/Testing.h"
#include "shell/SettingsSearch.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace tavrix::testing;

TEST(SettingsSearch, TheFileLiesInAFolderOfTheDocumentsFolderAndIsMade)
{
    Scope scope;
    SetLanguage(1033);
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_GT(settings.SetUInt(TEXT("Tavrix"), TEXT("FaceColor"), 7), 0);
    EXPECT_EQ(settings.Close(1), Done);
    EXPECT_TRUE(
        std::filesystem::exists(TestHome() + "/config/tavrix/Configuration Files/Tavrix.ini"));

    SettingsFile again;
    FindSettings(&again);
    u32 value = 0;
    EXPECT_EQ(again.GetUInt(TEXT("Tavrix"), TEXT("FaceColor"), &value), Done);
    EXPECT_EQ(value, 7U);
}

TEST(SettingsSearch, TheFoldersNameFollowsTheLanguage)
{
    Scope scope;
    SetLanguage(1041);
    SettingsFile settings;
    FindSettings(&settings);
    settings.Close(1);
    EXPECT_TRUE(std::filesystem::exists(TestHome() + "/config/tavrix/設定ファイル/Tavrix.ini"));
}
