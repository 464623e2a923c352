// The device's language, its random numbers, its clock and its idle timer.

#include "platform/core/Language.h"
#include "platform/core/IdleTimer.h"
#include "platform/testing/Testing.h"
#include "platform/tests/core/ChildProcess.h"

#include <handheld.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <ctime>
#include <set>
#include <thread>
#include <vector>

namespace
{

using tavrix::platform::LanguageFor;
using namespace tavrix::testing;

TEST(Language, TheSettingWinsOverTheLocale)
{
    EXPECT_EQ(LanguageFor("ja", "en_US.UTF-8", nullptr, nullptr), 1041);
    EXPECT_EQ(LanguageFor("en", "ja_JP.UTF-8", nullptr, nullptr), 1033);
    EXPECT_EQ(LanguageFor("de", "ja_JP.UTF-8", nullptr, nullptr), 1041);
}

TEST(Language, TheLocaleIsTheFirstVariableThatSaysSomething)
{
    EXPECT_EQ(LanguageFor(nullptr, "ja_JP.UTF-8", "en", "en"), 1041);
    EXPECT_EQ(LanguageFor(nullptr, "C", "ja", "ja"), 1033);
    EXPECT_EQ(LanguageFor(nullptr, "", "ja_JP", "en"), 1041);
    EXPECT_EQ(LanguageFor(nullptr, nullptr, "en", "ja"), 1033);
    EXPECT_EQ(LanguageFor(nullptr, nullptr, nullptr, "ja_JP.eucJP"), 1041);
    EXPECT_EQ(LanguageFor(nullptr, nullptr, nullptr, nullptr), 1033);
    EXPECT_EQ(LanguageFor("", "", "", ""), 1033);
    EXPECT_EQ(LanguageFor(nullptr, "fr_FR.UTF-8", nullptr, nullptr), 1033);
}

TEST(Language, AProcessReadsItFromItsEnvironment)
{
    ChildProcess japanese("language", {"TAVRIX_LANG=ja"});
    EXPECT_EQ(japanese.Line(), "1041");
    ChildProcess byLocale("language",
                          {"TAVRIX_LANG=", "LC_ALL=", "LC_MESSAGES=", "LANG=ja_JP.UTF-8"});
    EXPECT_EQ(byLocale.Line(), "1041");
    ChildProcess english("language", {"TAVRIX_LANG=", "LC_ALL=C.UTF-8"});
    EXPECT_EQ(english.Line(), "1033");
}

TEST(Language, ATestCanChangeIt)
{
    {
        const Scope scope;
        SetLanguage(1041);
        EXPECT_EQ(GetSystemDefaultLangID(), 1041);
    }
    EXPECT_EQ(GetSystemDefaultLangID(), 1033);
}

TEST(RandomNumbers, AreNeverNegativeAndHardlyEverRepeat)
{
    std::set<LONG> seen;
    for (int number = 0; number < 1000; ++number) {
        const LONG random = Random();
        EXPECT_GE(random, 0);
        seen.insert(random);
    }
    EXPECT_GT(seen.size(), 990u);
    // Large ones are among them: the top bit but one is not stuck.
    EXPECT_GT(*seen.rbegin(), 0x40000000);
}

TEST(RandomNumbers, ATestCanGiveThemAndThenTheyGoOn)
{
    const Scope scope;
    SetRandom({5, 0, 0x7FFFFFFF});
    EXPECT_EQ(Random(), 5);
    EXPECT_EQ(Random(), 0);
    EXPECT_EQ(Random(), 0x7FFFFFFF);
    std::set<LONG> seen;
    for (int number = 0; number < 20; ++number)
        seen.insert(Random());
    EXPECT_GT(seen.size(), 10u);
}

TEST(RandomNumbers, SeveralThreadsGetDifferentOnes)
{
    std::vector<LONG> first(500);
    std::vector<LONG> second(500);
    const auto fill = [](std::vector<LONG>* numbers) {
        for (LONG& number : *numbers)
            number = Random();
    };
    std::thread one(fill, &first);
    std::thread two(fill, &second);
    one.join();
    two.join();
    std::set<LONG> all(first.begin(), first.end());
    all.insert(second.begin(), second.end());
    EXPECT_GT(all.size(), 990u);
}

TEST(Time, TicksRunForwardsAndATestCanStopThem)
{
    const DWORD before = GetTickCount();
    Sleep(20);
    EXPECT_GE(GetTickCount() - before, 19u);
    const Scope scope;
    SetTickCount(0xFFFFFFFF);
    EXPECT_EQ(GetTickCount(), 0xFFFFFFFFu);
    EXPECT_EQ(GetTickCount(), 0xFFFFFFFFu);
}

TEST(Time, SystemTimeIsUniversalTime)
{
    const std::time_t before = std::time(nullptr);
    SYSTEMTIME time{};
    GetSystemTime(&time);
    const std::time_t after = std::time(nullptr);
    std::tm parts{};
    parts.tm_year = time.wYear - 1900;
    parts.tm_mon = time.wMonth - 1;
    parts.tm_mday = time.wDay;
    parts.tm_hour = time.wHour;
    parts.tm_min = time.wMinute;
    parts.tm_sec = time.wSecond;
    const std::time_t told = timegm(&parts);
    EXPECT_GE(told, before);
    EXPECT_LE(told, after);
    EXPECT_EQ(time.wDayOfWeek, (told / 86400 + 4) % 7); // the first day of 1970 was a Thursday
    EXPECT_LT(time.wMilliseconds, 1000);
}

TEST(Time, ATestCanSetTheClock)
{
    const Scope scope;
    SYSTEMTIME wanted{};
    wanted.wYear = 2003;
    wanted.wMonth = 2;
    wanted.wDay = 28;
    wanted.wHour = 23;
    SetSystemTime(wanted);
    SYSTEMTIME time{};
    GetSystemTime(&time);
    EXPECT_EQ(time.wYear, 2003);
    EXPECT_EQ(time.wMonth, 2);
    EXPECT_EQ(time.wDay, 28);
    EXPECT_EQ(time.wHour, 23);
    GetSystemTime(nullptr);
}

TEST(IdleTimer, EachResetIsCountedAndItsTimeKept)
{
    const Scope scope;
    SetTickCount(4711);
    SystemIdleTimerReset();
    SystemIdleTimerReset();
    EXPECT_EQ(tavrix::platform::Hooks().idleTimerResets, 2u);
    EXPECT_EQ(tavrix::platform::LastIdleTimerReset(), 4711u);
}

} // namespace
