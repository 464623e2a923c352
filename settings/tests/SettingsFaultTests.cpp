// What is left when memory or the disk fails at any one place of a load, a change or a save.
#include "SettingsText.h"

#include "foundation/tests/TestFolder.h"
#include "platform/testing/Faults.h"
#include "settings/SettingsFile.h"

#include <gtest/gtest.h>

#include <string>

using namespace tavrix::testing;

namespace
{

const std::u16string Original = u"; a comment\r\n[A]\r\none=1\r\ntwo=2\r\n[B]\r\nthree=3\r\n[C]\r\n"
                                u"four=4\r\n";
const std::u16string Saved =
    u"[A]\r\none=1\r\ntwo=2\r\n\r\n[B]\r\nthree=3\r\n\r\n[C]\r\nfour=4\r\n\r\n";

class SettingsFaults : public ::testing::Test
{
protected:
    void WriteOriginal() const { folder.Write("s.ini", FileOf(Original)); }
    /// The file as it was or as a save of all of it leaves it, and nothing between the two.
    void ExpectTheFileWhole() const
    {
        const std::string bytes = folder.Read("s.ini");
        EXPECT_TRUE(bytes == FileOf(Original) || bytes == FileOf(Saved)) << bytes;
    }
    const WCHAR* Path() const { return path.c_str(); }

    /// Loads, and lets the end of the store save.
    void LoadAndEnd() const
    {
        WriteOriginal();
        SettingsFile store;
        const i32 result = store.Load(Path());
        EXPECT_TRUE(result == 1 || result == -1 || result == -2) << result;
        u32 value = 0;
        const i32 got = store.GetUInt(u"C", u"four", &value);
        if (result < 1) {
            EXPECT_EQ(-3, got);
        } else {
            EXPECT_TRUE(got == -2 || (got == 1 && value == 4)) << got;
        }
    }

    Scope scope;
    TestFolder folder;
    const std::u16string path = folder.Path(u"s.ini");
};

} // namespace

TEST_F(SettingsFaults, NoShortageOfMemoryLosesWhatTheFileHeld)
{
    ForEveryFault(
        FaultKind::Allocation, [&] { LoadAndEnd(); }, [&](bool) { ExpectTheFileWhole(); });
}

TEST_F(SettingsFaults, AFileThatCannotBeMadeLosesNothing)
{
    ForEveryFault(
        FaultKind::Create, [&] { LoadAndEnd(); }, [&](bool) { ExpectTheFileWhole(); });
}

TEST_F(SettingsFaults, AFileThatCannotBeOpenedIsAtWorstEmptied)
{
    // A save empties the file before it opens it. That the settings' own folder keeps the old file
    // all the same is the platform's doing; this one is a folder like any other.
    ForEveryFault(
        FaultKind::Open, [&] { LoadAndEnd(); },
        [&](bool) {
            if (!folder.Read("s.ini").empty())
                ExpectTheFileWhole();
        });
}

TEST_F(SettingsFaults, AReadThatFailsLosesNothing)
{
    for (FaultKind kind : {FaultKind::Read, FaultKind::ShortRead})
        ForEveryFault(
            kind, [&] { LoadAndEnd(); }, [&](bool) { ExpectTheFileWhole(); });
}

TEST_F(SettingsFaults, AFailingReadFailsTheLoadAndAShortOneIsReadOn)
{
    // Three blocks, and the mark before them.
    const std::u16string text = u"[A]\r\n" + [] {
        std::u16string lines;
        for (int i = 0; i < 400; ++i)
            lines += u"key" + Wide(std::to_string(i)) + u"=" + std::u16string(100, u'x') + u"\r\n";
        return lines;
    }();
    folder.Write("s.ini", FileOf(text));
    for (unsigned number = 1; number <= 4; ++number) {
        SettingsFile store;
        {
            ArmedFault fault(FaultKind::Read, number, FaultReach::Once);
            EXPECT_EQ(-1, store.Load(Path())) << number;
            EXPECT_TRUE(fault.Fired());
        }
        EXPECT_EQ(-3, store.SetUInt(u"A", u"key0", 1));
        {
            ArmedFault fault(FaultKind::ShortRead, number, FaultReach::Once);
            EXPECT_EQ(1, store.Load(Path())) << number;
            EXPECT_TRUE(fault.Fired());
        }
        const WCHAR* last = nullptr;
        ASSERT_EQ(1, store.GetText(u"A", u"key399", &last));
        EXPECT_EQ(std::u16string(100, u'x'), last);
        EXPECT_EQ(1, store.Close(0));
    }
}

TEST_F(SettingsFaults, AFailingReadOfAVeryShortFileFailsToo)
{
    for (const std::string& bytes : {FileOf(u""), std::string("x")}) {
        folder.Write("s.ini", bytes);
        SettingsFile store;
        ArmedFault fault(FaultKind::Read, 1, FaultReach::Onward);
        EXPECT_EQ(-1, store.Load(Path()));
    }
}

TEST_F(SettingsFaults, AFailingWriteIsNotToldAndLeavesTheStoreWhole)
{
    for (FaultKind kind : {FaultKind::Write, FaultKind::ShortWrite}) {
        SettingsFile store;
        WriteOriginal();
        ASSERT_EQ(1, store.Load(Path()));
        ForEveryFault(
            kind, [&] { EXPECT_EQ(1, store.Save(nullptr)); },
            [&](bool) {
                EXPECT_EQ(1, store.Save(nullptr));
                EXPECT_EQ(FileOf(Saved), folder.Read("s.ini"));
            });
        EXPECT_EQ(1, store.Close(0));
    }
}

TEST_F(SettingsFaults, AFileThatCannotBeEmptiedIsNotWrittenOver)
{
    WriteOriginal();
    SettingsFile store;
    ASSERT_EQ(1, store.Load(Path()));
    {
        ArmedFault fault(FaultKind::Create, 1, FaultReach::Onward);
        EXPECT_EQ(1, store.Save(nullptr)) << "the failure is not told";
        EXPECT_TRUE(fault.Fired());
    }
    EXPECT_EQ(FileOf(Original), folder.Read("s.ini"));
    EXPECT_EQ(1, store.Save(nullptr));
    EXPECT_EQ(FileOf(Saved), folder.Read("s.ini"));
}

TEST_F(SettingsFaults, AChangeWithoutMemoryTakesNothingElseFromTheFile)
{
    // The key that is set and the count of its section are what may suffer.
    ForEveryFault(
        FaultKind::Allocation,
        [&] {
            WriteOriginal();
            SettingsFile store;
            if (store.Load(Path()) < 1)
                return;
            for (const WCHAR* section : {u"A", u"New"}) {
                const i32 result = store.SetUInt(section, u"one", 9);
                EXPECT_TRUE(result == 3 || result == 5 || result == -2) << result;
            }
        },
        [&](bool) {
            const std::string bytes = folder.Read("s.ini");
            for (const WCHAR* text : {u"two=2\r\n", u"[B]\r\nthree=3\r\n", u"[C]\r\nfour=4\r\n"})
                EXPECT_NE(std::string::npos, bytes.find(Utf16Bytes(text))) << Utf8(text);
            SettingsFile store;
            EXPECT_EQ(1, store.Load(Path()));
            EXPECT_EQ(1, store.Close(0));
        });
}

TEST_F(SettingsFaults, AfterAShortageTheSameStoreTakesTheChange)
{
    SettingsFile store;
    WriteOriginal();
    ASSERT_EQ(1, store.Load(Path()));
    for (const WCHAR* section : {u"A", u"New"}) {
        // The texts of a change take one block each, so that not all of them are told.
        for (unsigned number = 1; number < 20; ++number) {
            {
                ArmedFault fault(FaultKind::Allocation, number, FaultReach::Once);
                const i32 result = store.SetText(section, u"one", u"lost?");
                EXPECT_TRUE(result == 3 || result == 5 || result == -2) << result;
                const char* narrow = nullptr;
                const i32 got = store.GetNarrowText(section, u"one", &narrow);
                EXPECT_TRUE(got == 1 || got == -1 || got == -2 || got == -10 || got == -100) << got;
                (void)store.SetNarrowText(section, u"one", "lost?");
            }
            ASSERT_LT(0, store.SetText(section, u"one", u"kept"));
            const WCHAR* text = nullptr;
            ASSERT_EQ(1, store.GetText(section, u"one", &text)) << number;
            ASSERT_EQ(std::u16string(u"kept"), text);
        }
    }
    EXPECT_EQ(1, store.Close(1));
    EXPECT_EQ(FileOf(u"[A]\r\none=kept\r\ntwo=2\r\n\r\n[B]\r\nthree=3\r\n\r\n[C]\r\nfour=4\r\n\r\n"
                     u"[New]\r\none=kept\r\n\r\n"),
              folder.Read("s.ini"));
}

TEST_F(SettingsFaults, AValueThatWasLostForWantOfMemoryDoesNotEndTheWalk)
{
    WriteOriginal();
    SettingsFile store;
    ASSERT_EQ(1, store.Load(Path()));
    {
        // The work buffer, the count in two widths, and from there on nothing.
        ArmedFault fault(FaultKind::Allocation, 4, FaultReach::Onward);
        EXPECT_EQ(5, store.SetText(u"A", u"one", u"lost"));
    }
    const WCHAR* text = nullptr;
    EXPECT_EQ(-100, store.GetText(u"A", u"one", &text));
    EXPECT_EQ(1, store.Save(nullptr));
    EXPECT_EQ(FileOf(u"[A]\r\ntwo=2\r\n\r\n[B]\r\nthree=3\r\n\r\n[C]\r\nfour=4\r\n\r\n"),
              folder.Read("s.ini"));
    EXPECT_EQ(1, store.Close(0));
}

TEST_F(SettingsFaults, ACountThatWasLostForWantOfMemoryDoesNotTakeItsSection)
{
    WriteOriginal();
    SettingsFile store;
    ASSERT_EQ(1, store.Load(Path()));
    {
        ArmedFault fault(FaultKind::Allocation, 2, FaultReach::Onward);
        EXPECT_EQ(-2, store.SetText(u"A", u"one", u"new"));
    }
    EXPECT_EQ(1, store.Save(nullptr));
    EXPECT_EQ(FileOf(Saved), folder.Read("s.ini"));
    EXPECT_EQ(1, store.Close(0));
}

TEST_F(SettingsFaults, AStoreWithoutItsListsLoadsNoKeysAndOverwritesNothing)
{
    WriteOriginal();
    // The tables are the first things that a store takes, each behind its list's own allocator.
    for (unsigned number = 1; number <= 5; ++number) {
        ArmedFault fault(FaultKind::Allocation, number, FaultReach::Onward);
        SettingsFile store;
        EXPECT_TRUE(fault.Fired()) << number;
        fault.Disarm();
        const i32 result = store.Load(Path());
        EXPECT_TRUE(result == -1 || result == -2) << result;
        EXPECT_EQ(-1, store.Close(1));
        EXPECT_EQ(FileOf(Original), folder.Read("s.ini"));
    }
}

TEST_F(SettingsFaults, WithoutAnAllocatorALoadGivesNoMemory)
{
    WriteOriginal();
    ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Onward);
    SettingsFile store;
    fault.Disarm();
    EXPECT_EQ(-4, store.Load(nullptr));
    EXPECT_EQ(-2, store.Load(Path()));
    EXPECT_EQ(-1, store.Save(Path()));
    EXPECT_EQ(-1, store.Close(1));
    EXPECT_EQ(-3, store.SetUInt(u"A", u"one", 1));
    EXPECT_EQ(FileOf(Original), folder.Read("s.ini"));
}
