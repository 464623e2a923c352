#include "platform/testing/core/TestHome.h"
#include "platform/testing/Faults.h"
#include "settings/tests/SettingsText.h"
#include "shell/SettingsSearch.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

using namespace tavrix::testing;
using tavrix::platform::FileOperation;
namespace fs = std::filesystem;

namespace
{

const std::u16string OldText = u"; a comment\r\n[Tavrix]\r\nFaceColor=7\r\n[Global]\r\nx=y\r\n";
const std::u16string OldSaved = u"[Tavrix]\r\nFaceColor=7\r\n\r\n[Global]\r\nx=y\r\n\r\n";
const std::u16string NewText = u"; newer\r\n[Tavrix]\r\nFaceColor=8\r\n";

/// Starts each test without a settings file, in English.
class SettingsSearch : public ::testing::Test
{
protected:
    SettingsSearch()
    {
        Remove();
        SetLanguage(1033);
    }
    ~SettingsSearch() override { Remove(); }

    static fs::path Documents() { return fs::path(TestHome()) / "config" / "tavrix"; }
    static fs::path NewFile(const char* folder = "Configuration Files")
    {
        return Documents() / folder / "Tavrix.ini";
    }
    static fs::path OldFile() { return fs::path(TestHome()) / "data" / "tavrix" / "Tavrix.ini"; }

    static void Write(const fs::path& path, const std::u16string& text)
    {
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << FileOf(text);
    }
    static std::string Read(const fs::path& path)
    {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    static void Remove()
    {
        fs::remove_all(Documents());
        fs::remove_all(OldFile());
    }

    static u32 FaceColor(SettingsFile& settings)
    {
        u32 value = 0xFFFF;
        (void)settings.GetUInt(u"Tavrix", u"FaceColor", &value);
        return value;
    }

    Scope scope;
};

} // namespace

TEST_F(SettingsSearch, TheFileLiesInAFolderOfTheDocumentsFolderAndIsMadeEmpty)
{
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_TRUE(fs::exists(NewFile()));
    EXPECT_EQ("", Read(NewFile()));
    EXPECT_FALSE(fs::exists(OldFile()));
    EXPECT_GT(settings.SetUInt(u"Tavrix", u"FaceColor", 7), 0);
    EXPECT_EQ(settings.Close(1), Done);
    EXPECT_EQ(FileOf(u"[Tavrix]\r\nFaceColor=7\r\n\r\n"), Read(NewFile()));

    SettingsFile again;
    FindSettings(&again);
    EXPECT_EQ(7U, FaceColor(again));
}

TEST_F(SettingsSearch, TheFoldersNameFollowsTheLanguage)
{
    SetLanguage(1041);
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_TRUE(fs::exists(NewFile("設定ファイル")));
    EXPECT_FALSE(fs::exists(NewFile()));
}

TEST_F(SettingsSearch, AfterAnUpdateTheNewFileHasTheOldContentsAndTheOldFileStays)
{
    Write(OldFile(), OldText);
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_EQ(7U, FaceColor(settings));
    EXPECT_EQ(FileOf(OldSaved), Read(NewFile()));
    // Loading the new file has written the old one back, as the lost comment shows.
    EXPECT_EQ(FileOf(OldSaved), Read(OldFile()));
}

TEST_F(SettingsSearch, AfterTheMoveAllSavingGoesToTheNewPlace)
{
    Write(OldFile(), OldText);
    SettingsFile settings;
    FindSettings(&settings);
    ASSERT_GT(settings.SetUInt(u"Tavrix", u"FaceColor", 9), 0);
    EXPECT_EQ(settings.Close(1), Done);
    EXPECT_EQ(FileOf(u"[Tavrix]\r\nFaceColor=9\r\n\r\n[Global]\r\nx=y\r\n\r\n"), Read(NewFile()));
    EXPECT_EQ(FileOf(OldSaved), Read(OldFile()));

    SettingsFile again;
    FindSettings(&again);
    EXPECT_EQ(9U, FaceColor(again)) << "the old file is not moved a second time";
}

TEST_F(SettingsSearch, OfBothFilesTheOldOneIsIgnored)
{
    Write(OldFile(), OldText);
    Write(NewFile(), NewText);
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_EQ(8U, FaceColor(settings));
    EXPECT_EQ(FileOf(OldText), Read(OldFile()));
    EXPECT_EQ(FileOf(NewText), Read(NewFile())) << "nothing was loaded, so that nothing is saved";
}

TEST_F(SettingsSearch, AnEmptyNewFileIsAFileToo)
{
    Write(OldFile(), OldText);
    fs::create_directories(NewFile().parent_path());
    std::ofstream(NewFile()).flush();
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_EQ(0xFFFFU, FaceColor(settings));
    EXPECT_EQ("", Read(NewFile()));
    EXPECT_EQ(FileOf(OldText), Read(OldFile()));
}

TEST_F(SettingsSearch, TheMoveGoesIntoAFolderThatIsThereAlready)
{
    Write(OldFile(), OldText);
    fs::create_directories(NewFile().parent_path());
    std::ofstream(NewFile().parent_path() / "other") << "x";
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_EQ(FileOf(OldSaved), Read(NewFile()));
    EXPECT_TRUE(fs::exists(NewFile().parent_path() / "other"));
}

TEST_F(SettingsSearch, InJapaneseTheMoveGoesIntoTheJapaneseFolder)
{
    SetLanguage(1041);
    Write(OldFile(), OldText);
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_EQ(7U, FaceColor(settings));
    EXPECT_EQ(FileOf(OldSaved), Read(NewFile("設定ファイル")));
    EXPECT_EQ(FileOf(OldSaved), Read(OldFile()));
    EXPECT_FALSE(fs::exists(NewFile()));
}

TEST_F(SettingsSearch, TheOtherLanguagesFolderIsNotLookedInto)
{
    Write(NewFile("設定ファイル"), NewText);
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_EQ(0xFFFFU, FaceColor(settings));
    EXPECT_EQ("", Read(NewFile()));
    EXPECT_EQ(FileOf(NewText), Read(NewFile("設定ファイル")));
}

TEST_F(SettingsSearch, AnOldFileThatIsEmptyIsMovedToo)
{
    fs::create_directories(OldFile().parent_path());
    std::ofstream(OldFile()).flush();
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_EQ(FileOf(u""), Read(NewFile()));
    EXPECT_EQ(FileOf(u""), Read(OldFile()));
    EXPECT_EQ(3, settings.SetUInt(u"Tavrix", u"FaceColor", 1));
}

TEST_F(SettingsSearch, ABrokenOldFileIsNotMovedAndNotWritten)
{
    Write(OldFile(), u"[Tavrix\r\nFaceColor=7\r\n");
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_EQ("", Read(NewFile()));
    EXPECT_EQ(FileOf(u"[Tavrix\r\nFaceColor=7\r\n"), Read(OldFile()));
    EXPECT_EQ(3, settings.SetUInt(u"Tavrix", u"FaceColor", 1)) << "the new file is open";
}

TEST_F(SettingsSearch, ABrokenNewFileLeavesTheStoreClosedAndTheFileAlone)
{
    Write(OldFile(), OldText);
    Write(NewFile(), u"[Tavrix\r\n");
    {
        SettingsFile settings;
        FindSettings(&settings);
        EXPECT_EQ(-3, settings.SetUInt(u"Tavrix", u"FaceColor", 1));
    }
    EXPECT_EQ(FileOf(u"[Tavrix\r\n"), Read(NewFile()));
    EXPECT_EQ(FileOf(OldText), Read(OldFile()));
}

TEST_F(SettingsSearch, AFolderOfTheFilesNameIsNoFile)
{
    fs::create_directories(OldFile());
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_EQ("", Read(NewFile()));
    EXPECT_EQ(3, settings.SetUInt(u"Tavrix", u"FaceColor", 1));
    EXPECT_EQ(settings.Close(0), Done);

    Remove();
    Write(OldFile(), OldText);
    fs::create_directories(NewFile());
    FindSettings(&settings);
    EXPECT_EQ(-3, settings.SetUInt(u"Tavrix", u"FaceColor", 1));
    EXPECT_EQ(FileOf(OldText), Read(OldFile())) << "the only file there is stays untouched";
}

TEST_F(SettingsSearch, AKeyWithoutAValueEndsTheMovedFileAsItEndsAnySave)
{
    Write(OldFile(), u"[Tavrix]\r\nFaceColor=7\r\nLastCommandLine=\r\nEnableUndo=1\r\n");
    SettingsFile settings;
    FindSettings(&settings);
    EXPECT_EQ(7U, FaceColor(settings));
    EXPECT_EQ(FileOf(u"[Tavrix]\r\nFaceColor=7\r\n\r\n"), Read(NewFile()));
}

TEST_F(SettingsSearch, WhereTheNewFolderCannotBeMadeTheStoreStaysClosed)
{
    Write(OldFile(), OldText);
    SetFileFault([](FileOperation operation, const WCHAR* path, DWORD*) {
        return operation == FileOperation::Create &&
               std::u16string_view(path).starts_with(u"\\Application Data");
    });
    {
        SettingsFile settings;
        FindSettings(&settings);
        EXPECT_EQ(-3, settings.SetUInt(u"Tavrix", u"FaceColor", 1));
    }
    tavrix::testing::Reset();
    EXPECT_FALSE(fs::exists(NewFile()));
    EXPECT_EQ(FileOf(OldText), Read(OldFile()));

    SettingsFile again;
    FindSettings(&again);
    EXPECT_EQ(7U, FaceColor(again)) << "the next start moves it";
    EXPECT_EQ(FileOf(OldSaved), Read(NewFile()));
}

TEST_F(SettingsSearch, WithoutAStoreDoesNothing)
{
    FindSettings(nullptr);
    EXPECT_FALSE(fs::exists(NewFile()));
}

TEST_F(SettingsSearch, WithoutMemoryForItsTextsDoesNothing)
{
    Write(OldFile(), OldText);
    SettingsFile settings;
    ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Once);
    FindSettings(&settings);
    fault.Disarm();
    EXPECT_TRUE(fault.Fired());
    EXPECT_EQ(-3, settings.SetUInt(u"Tavrix", u"FaceColor", 1));
    EXPECT_FALSE(fs::exists(NewFile()));
    EXPECT_EQ(FileOf(OldText), Read(OldFile()));
}

TEST_F(SettingsSearch, WhateverFailsDuringTheMoveOneOfTheTwoFilesIsWhole)
{
    for (FaultKind kind :
         {FaultKind::Allocation, FaultKind::Create, FaultKind::Open, FaultKind::Read,
          FaultKind::ShortRead, FaultKind::Write, FaultKind::ShortWrite}) {
        SCOPED_TRACE(::testing::Message() << "kind " << static_cast<int>(kind));
        ForEveryFault(
            kind,
            [] {
                Remove();
                Write(OldFile(), OldText);
                SettingsFile settings;
                FindSettings(&settings);
                u32 value = 7;
                const i32 got = settings.GetUInt(u"Tavrix", u"FaceColor", &value);
                EXPECT_TRUE(got == 1 || got == -1 || got == -2 || got == -3) << got;
                EXPECT_EQ(7U, value);
            },
            [](bool) {
                const std::string old = Read(OldFile());
                EXPECT_TRUE(old == FileOf(OldText) || old == FileOf(OldSaved) ||
                            Read(NewFile()) == FileOf(OldSaved))
                    << old;
            });
    }
}

TEST_F(SettingsSearch, WhateverFailsANewFileIsNeverWrittenOverByTheOldOne)
{
    for (FaultKind kind : {FaultKind::Allocation, FaultKind::Create, FaultKind::Open,
                           FaultKind::Read, FaultKind::ShortRead}) {
        SCOPED_TRACE(::testing::Message() << "kind " << static_cast<int>(kind));
        ForEveryFault(
            kind,
            [] {
                Remove();
                Write(OldFile(), OldText);
                Write(NewFile(), NewText);
                SettingsFile settings;
                FindSettings(&settings);
                (void)settings.Close(0);
            },
            [](bool) { EXPECT_EQ(FileOf(NewText), Read(NewFile())); });
    }
}
