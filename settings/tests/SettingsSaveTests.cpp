#include "SettingsText.h"

#include "foundation/tests/FailingAllocator.h"
#include "foundation/tests/TestFolder.h"
#include "settings/SettingsFile.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using tavrix::platform::FileOperation;
using tavrix::testing::Scope;
using tavrix::testing::SetFileFault;

// A store over a file with the given text.
struct Opened {
    explicit Opened(const std::u16string& text)
    {
        folder.Write("s.ini", FileOf(text));
        EXPECT_EQ(1, store.Load(folder.Path(u"s.ini").c_str()));
    }
    std::string Saved()
    {
        EXPECT_EQ(1, store.Save(nullptr));
        return folder.Read("s.ini");
    }
    TestFolder folder;
    SettingsFile store;
};

} // namespace

TEST(SettingsSave, WritesMarkSectionsAndKeys)
{
    Opened opened(u"");
    EXPECT_EQ(3, opened.store.SetUInt(u"Tavrix", u"ShowToolbox", 1));
    EXPECT_EQ(3, opened.store.SetText(u"Tavrix", u"LastURL", u"http://"));
    EXPECT_EQ(FileOf(u"[Tavrix]\r\nShowToolbox=1\r\nLastURL=http://\r\n\r\n"), opened.Saved());
}

TEST(SettingsSave, WritesWhatSetUIntStored)
{
    Opened opened(u"");
    EXPECT_EQ(3, opened.store.SetUInt(u"S", u"k", 3));
    EXPECT_EQ(FileOf(u"[S]\r\nk=3\r\n\r\n"), opened.Saved());
}

TEST(SettingsSave, LeavesSectionsWithoutKeysOut)
{
    Opened opened(u"[Empty]\r\n[S]\r\nk=v\r\n");
    EXPECT_EQ(FileOf(u"[S]\r\nk=v\r\n\r\n"), opened.Saved());
}

TEST(SettingsSave, AKeyWithoutAValueEndsTheWalkInEverySection)
{
    Opened opened(u"[A]\r\none=1\r\ntwo=\r\nthree=3\r\n[B]\r\nfour=4\r\n");
    EXPECT_EQ(FileOf(u"[A]\r\none=1\r\n\r\n[B]\r\n\r\n"), opened.Saved());
}

TEST(SettingsSave, AnEmptyTextIsWrittenAndComesBackWithoutAValue)
{
    Opened opened(u"");
    ASSERT_EQ(3, opened.store.SetText(u"S", u"a", u"1"));
    ASSERT_EQ(3, opened.store.SetText(u"S", u"k", u""));
    ASSERT_EQ(3, opened.store.SetText(u"S", u"z", u"2"));
    EXPECT_EQ(FileOf(u"[S]\r\na=1\r\nk=\r\nz=2\r\n\r\n"), opened.Saved());
    ASSERT_EQ(1, opened.store.Load(opened.folder.Path(u"s.ini").c_str()));
    const WCHAR* text = nullptr;
    EXPECT_EQ(-100, opened.store.GetText(u"S", u"k", &text));
    // With the next save it goes, and all that was stored behind it.
    EXPECT_EQ(FileOf(u"[S]\r\na=1\r\n\r\n"), opened.Saved());
}

TEST(SettingsSave, ASectionCollectsTheKeysOfOnesThatEndInItsName)
{
    Opened opened(u"[xab]\r\nk=1\r\n[ab]\r\nj=2\r\n");
    EXPECT_EQ(FileOf(u"[xab]\r\nk=1\r\n\r\n[ab]\r\nk=1\r\nj=2\r\n\r\n"), opened.Saved());
}

TEST(SettingsSave, TheSearchForASectionIsExact)
{
    // "ab::" stands in "aab::k" though a search that never steps back would miss it; and case
    // counts.
    Opened opened(u"[aab]\r\nk=1\r\n[ab]\r\nj=2\r\n[AB]\r\ni=3\r\n");
    EXPECT_EQ(FileOf(u"[aab]\r\nk=1\r\n\r\n[ab]\r\nk=1\r\nj=2\r\n\r\n[AB]\r\ni=3\r\n\r\n"),
              opened.Saved());
}

TEST(SettingsSave, TheSectionOfTheEmptyNameCollectsAllKeys)
{
    Opened opened(u"k=1\r\n[A]\r\nj=2\r\n");
    const WCHAR* text = nullptr;
    ASSERT_EQ(1, opened.store.GetText(u"", u"k", &text));
    EXPECT_EQ(std::u16string(u"1"), text);
    EXPECT_EQ(FileOf(u"[]\r\nk=1\r\nj=2\r\n\r\n[A]\r\nj=2\r\n\r\n"), opened.Saved());
}

TEST(SettingsSave, WritesValuesLongerThanItsBlock)
{
    Opened opened(u"");
    const std::u16string value(40000, u'x');
    ASSERT_EQ(3, opened.store.SetText(u"S", u"k", value.c_str()));
    ASSERT_EQ(3, opened.store.SetText(u"S", u"z", u"1"));
    EXPECT_EQ(FileOf(u"[S]\r\nk=" + value + u"\r\nz=1\r\n\r\n"), opened.Saved());
}

TEST(SettingsSave, GoesToAnotherPathOnRequestAndKeepsItsOwn)
{
    Opened opened(u"[S]\r\nk=v\r\n");
    EXPECT_EQ(1, opened.store.Save(opened.folder.Path(u"copy.ini").c_str()));
    EXPECT_EQ(FileOf(u"[S]\r\nk=v\r\n\r\n"), opened.folder.Read("copy.ini"));
    EXPECT_EQ(FileOf(u"[S]\r\nk=v\r\n"), opened.folder.Read("s.ini")) << "not yet saved";
    EXPECT_EQ(FileOf(u"[S]\r\nk=v\r\n\r\n"), opened.Saved());
}

TEST(SettingsSave, ShortensALongerFile)
{
    Opened opened(u"[S]\r\n; a comment that goes away and makes the file shorter\r\nk=v\r\n");
    EXPECT_EQ(FileOf(u"[S]\r\nk=v\r\n\r\n"), opened.Saved());
}

TEST(SettingsSave, RefusesWithoutALoadAndTouchesNoFile)
{
    TestFolder folder;
    folder.Write("there.ini", "bytes");
    SettingsFile store;
    EXPECT_EQ(-1, store.Save(folder.Path(u"there.ini").c_str()));
    EXPECT_EQ("bytes", folder.Read("there.ini"));
    EXPECT_EQ(-1, store.Save(nullptr));
    EXPECT_EQ(-1, store.Close(1));
}

TEST(SettingsSave, TheDestructorSaves)
{
    TestFolder folder;
    {
        SettingsFile store;
        ASSERT_EQ(1, store.Load(folder.Path(u"s.ini").c_str()));
        ASSERT_EQ(3, store.SetUInt(u"S", u"k", 3));
        EXPECT_EQ("", folder.Read("s.ini"));
    }
    EXPECT_EQ(FileOf(u"[S]\r\nk=3\r\n\r\n"), folder.Read("s.ini"));
}

TEST(SettingsSave, CloseSavesOnRequestOnly)
{
    Opened opened(u"[S]\r\nk=v\r\n");
    ASSERT_EQ(5, opened.store.SetText(u"S", u"k", u"w"));
    EXPECT_EQ(1, opened.store.Close(0));
    EXPECT_EQ(FileOf(u"[S]\r\nk=v\r\n"), opened.folder.Read("s.ini"));
    EXPECT_EQ(-1, opened.store.Close(0));
    const WCHAR* text = nullptr;
    EXPECT_EQ(-3, opened.store.GetText(u"S", u"k", &text));

    ASSERT_EQ(1, opened.store.Load(opened.folder.Path(u"s.ini").c_str()));
    ASSERT_EQ(5, opened.store.SetText(u"S", u"k", u"w"));
    EXPECT_EQ(1, opened.store.Close(1));
    EXPECT_EQ(FileOf(u"[S]\r\nk=w\r\n\r\n"), opened.folder.Read("s.ini"));
}

TEST(SettingsSave, AFileLoadsBackAsItWasSaved)
{
    Opened opened(u"");
    ASSERT_EQ(3, opened.store.SetText(u"S\u30c6", u"k\u30b9", u"\u30c8 \xD83D\xDE00;[x]=y \t"));
    ASSERT_EQ(3, opened.store.SetUInt(u"S\u30c6", u"n", 4294967295u));
    const std::string first = opened.Saved();
    ASSERT_EQ(1, opened.store.Load(opened.folder.Path(u"s.ini").c_str()));
    const WCHAR* text = nullptr;
    ASSERT_EQ(1, opened.store.GetText(u"S\u30c6", u"k\u30b9", &text));
    EXPECT_EQ(std::u16string(u"\u30c8 \xD83D\xDE00;[x]=y \t"), text);
    u32 value = 0;
    EXPECT_EQ(1, opened.store.GetUInt(u"S\u30c6", u"n", &value));
    EXPECT_EQ(4294967295u, value);
    EXPECT_EQ(first, opened.Saved());
}

TEST(SettingsSave, WithoutMemoryLeavesTheFileAlone)
{
    TestFolder folder;
    folder.Write("s.ini", FileOf(u"[S]\r\nk=v\r\n"));
    for (int allowed = 0; allowed < 2; ++allowed) {
        FailingAllocator allocator;
        SettingsFile store(&allocator);
        ASSERT_EQ(1, store.Load(folder.Path(u"s.ini").c_str()));
        const int before = allocator.Live();
        allocator.AllowOnly(allowed);
        EXPECT_EQ(-2, store.Save(nullptr));
        EXPECT_EQ(FileOf(u"[S]\r\nk=v\r\n"), folder.Read("s.ini"));
        EXPECT_EQ(before, allocator.Live());
        allocator.AllowAll();
        EXPECT_EQ(1, store.Close(0));
    }
}

TEST(SettingsSave, SurvivesADiskThatFillsUp)
{
    Scope scope;
    Opened opened(u"[S]\r\nk=v\r\n");
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD* shortBy) {
        *shortBy = 4;
        return operation == FileOperation::Write;
    });
    EXPECT_EQ(1, opened.store.Save(nullptr)) << "the results of writing are not looked at";
    tavrix::testing::Reset();
    EXPECT_EQ(FileOf(u"[S]\r\nk=v\r\n\r\n"), opened.Saved()) << "the store is whole";
}

TEST(SettingsSave, SurvivesAFileThatCannotBeMadeOrOpened)
{
    Scope scope;
    Opened opened(u"[S]\r\nk=v\r\n");
    SetFileFault([](FileOperation operation, const WCHAR*, DWORD*) {
        return operation == FileOperation::Create || operation == FileOperation::Open;
    });
    EXPECT_EQ(1, opened.store.Save(nullptr));
    tavrix::testing::Reset();
    EXPECT_EQ(FileOf(u"[S]\r\nk=v\r\n"), opened.folder.Read("s.ini"));
    EXPECT_EQ(FileOf(u"[S]\r\nk=v\r\n\r\n"), opened.Saved());
}
