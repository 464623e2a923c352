#include "foundation/Result.h"
#include "platform/testing/core/TestHome.h"
#include "platform/testing/Faults.h"
#include "shell/Logger.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

using namespace tavrix::testing;

namespace
{

std::string LogPath()
{
    return TestHome() + "/data/tavrix/Tavrix.log";
}

std::string LogBytes()
{
    std::ifstream file(LogPath(), std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::u16string LogText()
{
    const std::string raw = LogBytes();
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

TEST(Logger, TheFileIsTwoBytesACharacterWithoutAMark)
{
    Scope scope;
    SYSTEMTIME time = {};
    time.wYear = 987;
    time.wMonth = 12;
    time.wDay = 31;
    time.wHour = 23;
    time.wMinute = 59;
    time.wSecond = 58;
    SetSystemTime(time);
    {
        Logger log;
        ASSERT_EQ(log.Begin(), Done);
        EXPECT_EQ(log.Write(u"\x3042\x6F22"), Done);
    }
    std::string expected;
    const auto add = [&expected](const char* ascii) {
        for (; *ascii != 0; ++ascii)
            expected += {*ascii, '\0'};
    };
    add("0987/12/31 23:59:58 : Begin logging.\r\n");
    add("0987/12/31 23:59:58 : ");
    expected += "\x42\x30\x22\x6F";
    add("\r\n");
    add("0987/12/31 23:59:58 : Ended.\r\n");
    EXPECT_EQ(LogBytes(), expected);
}

TEST(Logger, BeginOnAnOpenLogStartsItAnew)
{
    Scope scope;
    SetSystemTime({2026, 1, 4, 1, 2, 3, 4, 0});
    Logger log;
    ASSERT_EQ(log.Begin(), Done);
    EXPECT_EQ(log.Write(TEXT("first")), Done);
    const auto held = tavrix::platform::CountHoldings();
    ASSERT_EQ(log.Begin(), Done);
    EXPECT_TRUE(tavrix::platform::CountHoldings() == held) << "the first stream is still open";
    EXPECT_EQ(log.End(), Done);
    EXPECT_EQ(LogText(), u"2026/01/01 02:03:04 : Begin logging.\r\n"
                         u"2026/01/01 02:03:04 : Ended.\r\n");
    EXPECT_EQ(log.End(), NothingDone);
}

TEST(Logger, ConstructionOpensNothing)
{
    std::filesystem::remove_all(LogPath());
    Logger log;
    EXPECT_FALSE(std::filesystem::exists(LogPath()));
}

TEST(Logger, ASecondLogEmptiesTheFirstWhichWritesOnBehindTheGap)
{
    Scope scope;
    SetSystemTime({2026, 1, 4, 1, 2, 3, 4, 0});
    // As with a second start: it empties the file that the first still holds open.
    Logger first;
    ASSERT_EQ(first.Begin(), Done);
    Logger second;
    ASSERT_EQ(second.Begin(), Done);
    EXPECT_EQ(LogText(), u"2026/01/01 02:03:04 : Begin logging.\r\n");
    EXPECT_EQ(first.Write(TEXT("x")), Done);
    EXPECT_EQ(LogText(), u"2026/01/01 02:03:04 : Begin logging.\r\n"
                         u"2026/01/01 02:03:04 : x\r\n");
}

TEST(Logger, ATextTooLongForALineIsCutAndNothingIsWrittenBehindTheBuffer)
{
    Scope scope;
    SetSystemTime({2026, 1, 4, 1, 2, 3, 4, 0});
    Logger log;
    ASSERT_EQ(log.Begin(), Done);
    const std::u16string text(5000, u'x');
    EXPECT_EQ(log.Write(text.c_str()), Done);
    EXPECT_EQ(log.End(), Done);
    const std::u16string whole = LogText();
    EXPECT_EQ(whole.substr(0, 38), u"2026/01/01 02:03:04 : Begin logging.\r\n");
    // The formatting call takes no more than 1,023 characters, and the line's end is cut, too.
    const size_t end = whole.find(u"2026/01/01 02:03:04 : Ended.\r\n");
    EXPECT_EQ(end, 38u + 1023u);
}

TEST(Logger, AnswersItsCodesWithoutItsPath)
{
    Scope scope;
    std::filesystem::remove_all(LogPath());
    // The folder's allocator, its base, and then the path.
    ArmedFault fault(FaultKind::Allocation, 3, FaultReach::Once);
    Logger log;
    ASSERT_TRUE(fault.Fired());
    fault.Disarm();
    EXPECT_EQ(log.Begin(), Failed);
    EXPECT_EQ(log.Write(nullptr), BadArgument);
    EXPECT_EQ(log.Write(TEXT("nothing")), Failed);
    EXPECT_EQ(log.End(), NothingDone);
    EXPECT_FALSE(std::filesystem::exists(LogPath()));
}

TEST(Logger, ALineWithoutABufferIsLeftOutAndTheLogGoesOn)
{
    Scope scope;
    SetSystemTime({2026, 1, 4, 1, 2, 3, 4, 0});
    Logger log;
    ASSERT_EQ(log.Begin(), Done);
    SetAllocationFault([](SIZE_T) { return true; });
    EXPECT_EQ(log.Write(TEXT("lost")), Failed);
    SetAllocationFault(nullptr);
    EXPECT_EQ(log.Write(TEXT("kept")), Done);
    SetAllocationFault([](SIZE_T size) { return size == 4096; });
    EXPECT_EQ(log.End(), Failed) << "the write's result";
    SetAllocationFault(nullptr);
    EXPECT_EQ(log.End(), NothingDone) << "closed all the same";
    EXPECT_EQ(LogText(), u"2026/01/01 02:03:04 : Begin logging.\r\n"
                         u"2026/01/01 02:03:04 : kept\r\n");
}

TEST(Logger, ALogThatCannotBeMadeMeansNoLogging)
{
    Scope scope;
    SetFileFault([](tavrix::platform::FileOperation operation, const WCHAR* path, DWORD*) {
        return operation == tavrix::platform::FileOperation::Create &&
               Utf8(path).find(".log") != std::string::npos;
    });
    Logger log;
    EXPECT_EQ(log.Begin(), Failed);
    EXPECT_EQ(log.Write(TEXT("nothing")), Failed);
    EXPECT_EQ(log.End(), NothingDone);
}

TEST(Logger, ALogThatCannotBeOpenedMeansNoLogging)
{
    Scope scope;
    SetFileFault([](tavrix::platform::FileOperation operation, const WCHAR*, DWORD*) {
        return operation == tavrix::platform::FileOperation::Open;
    });
    Logger log;
    EXPECT_EQ(log.Begin(), Failed);
    EXPECT_EQ(log.Write(TEXT("nothing")), Failed);
    EXPECT_EQ(log.End(), NothingDone);
    EXPECT_EQ(LogBytes(), "") << "made, and nothing in it";
}

TEST(Logger, AFolderInThePlaceOfTheFileMeansNoLogging)
{
    std::filesystem::remove_all(LogPath());
    std::filesystem::create_directories(LogPath());
    Logger log;
    EXPECT_EQ(log.Begin(), Failed);
    EXPECT_EQ(log.Write(TEXT("nothing")), Failed);
    EXPECT_TRUE(std::filesystem::is_directory(LogPath()));
    std::filesystem::remove(LogPath());
}

TEST(Logger, AWriteThatFailsIsNotTold)
{
    Scope scope;
    Logger log;
    ASSERT_EQ(log.Begin(), Done);
    SetFileFault([](tavrix::platform::FileOperation operation, const WCHAR*, DWORD*) {
        return operation == tavrix::platform::FileOperation::Write;
    });
    EXPECT_EQ(log.Write(TEXT("lost")), Done) << "the stream's result";
    EXPECT_EQ(log.End(), Done);
}

TEST(Logger, SurvivesEveryShortageAndEveryRefusal)
{
    Scope scope;
    SetSystemTime({2026, 1, 4, 1, 2, 3, 4, 0});
    const auto body = [] {
        Logger log;
        const i32 begun = log.Begin();
        EXPECT_TRUE(begun == Done || begun < 0) << begun;
        const i32 written = log.Write(TEXT("text"));
        EXPECT_TRUE(written == Done || written == Failed) << written;
        const i32 ended = log.End();
        EXPECT_TRUE(ended == Done || ended == Failed || ended == NothingDone) << ended;
    };
    for (const FaultKind kind :
         {FaultKind::Allocation, FaultKind::Create, FaultKind::Open, FaultKind::Write})
        ForEveryFault(kind, body);
}

TEST(LoggerLayout, FieldsStandInTheirOrder)
{
    struct Fields {
        void* table;
        WCHAR* path;
        const WCHAR* name;
        alignas(Directory) char directory[sizeof(Directory)];
        FileStream* stream;
        i32 open;
    };
    static_assert(sizeof(Fields) == sizeof(Logger));
    Logger log;
    Fields fields;
    std::memcpy(&fields, static_cast<const void*>(&log), sizeof fields);
    EXPECT_EQ(std::u16string(fields.path), u"\\Program Files\\Tavrix\\Tavrix.log");
    EXPECT_EQ(std::u16string(fields.name), u"Tavrix.log");
    EXPECT_EQ(fields.name, fields.path + 22) << "points into the path";
    EXPECT_EQ(fields.stream, nullptr);
    EXPECT_EQ(fields.open, 0);
    ASSERT_EQ(log.Begin(), Done);
    std::memcpy(&fields, static_cast<const void*>(&log), sizeof fields);
    EXPECT_NE(fields.stream, nullptr);
    EXPECT_EQ(fields.open, 1);
}
