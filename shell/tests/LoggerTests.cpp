#include "foundation/Result.h"
#include "platform/testing/core/TestHome.h"
#include "platform/testing/Testing.h"
#include "shell/Logger.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using namespace tavrix::testing;

namespace
{

std::u16string LogText()
{
    std::ifstream file(TestHome() + "/data/tavrix/Tavrix.log", std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    const std::string raw = bytes.str();
    return {reinterpret_cast<const char16_t*>(raw.data()), raw.size() / 2};
}

} // namespace

TEST(Logger, ALineIsUniversalTimeAndText)
{
    Scope scope;
    SYSTEMTIME time = {};
    time.wYear = 2026;
    time.wMonth = 3;
    time.wDay = 7;
    time.wHour = 8;
    time.wMinute = 9;
    time.wSecond = 5;
    SetSystemTime(time);
    Logger log;
    ASSERT_EQ(log.Begin(), Done);
    EXPECT_EQ(log.Write(TEXT("Now, run application.")), Done);
    EXPECT_EQ(log.End(), Done);
    EXPECT_EQ(LogText(), u"2026/03/07 08:09:05 : Begin logging.\r\n"
                         u"2026/03/07 08:09:05 : Now, run application.\r\n"
                         u"2026/03/07 08:09:05 : Ended.\r\n");
}

TEST(Logger, TheFileHoldsOneRunOnly)
{
    {
        Logger log;
        ASSERT_EQ(log.Begin(), Done);
        log.Write(TEXT("first"));
    }
    Logger log;
    ASSERT_EQ(log.Begin(), Done);
    log.End();
    EXPECT_EQ(LogText().find(u"first"), std::u16string::npos);
    EXPECT_NE(LogText().find(u"Begin logging."), std::u16string::npos);
}

TEST(Logger, DestructionEndsTheLog)
{
    {
        Logger log;
        ASSERT_EQ(log.Begin(), Done);
    }
    EXPECT_NE(LogText().find(u"Ended."), std::u16string::npos);
}

TEST(Logger, AnswersItsCodes)
{
    Logger log;
    EXPECT_EQ(log.Write(nullptr), BadArgument);
    EXPECT_EQ(log.Write(TEXT("not open")), Failed);
    EXPECT_EQ(log.End(), NothingDone);
    ASSERT_EQ(log.Begin(), Done);
    EXPECT_EQ(log.Write(nullptr), BadArgument);
}

TEST(Logger, ALogThatCannotBeMadeMeansNoLogging)
{
    Scope scope;
    SetFileFault([](tavrix::platform::FileOperation operation, const WCHAR* path, DWORD*) {
        return operation == tavrix::platform::FileOperation::Create &&
               Utf8(path).find(".log") != std::string::npos;
    });
    Logger log;
    EXPECT_LT(log.Begin(), 0);
    EXPECT_EQ(log.Write(TEXT("nothing")), Failed);
    EXPECT_EQ(log.End(), NothingDone);
}
