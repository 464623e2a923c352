// The file dialog from its start to its end: what it is opened with, what it answers, and what
// stays for the next use.

#include "platform/core/TestHooks.h"
#include "platform/testing/Faults.h"
#include "tests/support/DeviceCalls.h"
#include "view/tests/ColumnTesting.h"
#include "view/tests/FileDialogTesting.h"

using namespace filedialogtest;

TEST_F(FileDialogTest, ItOpensWithItsTitleInItsOwnFontAndTheFocusOnTheList)
{
    Open([](const Dialog& dialog) {
        EXPECT_EQ(ControlText(dialog.window, 1004), u"Pictures");
        EXPECT_EQ(GetFocus(), dialog.List());
        const auto font =
            reinterpret_cast<HFONT>(SendMessageW(dialog.Control(1004), WM_GETFONT, 0, 0));
        LOGFONTW shown = {};
        ASSERT_EQ(GetObjectW(font, sizeof shown, &shown), static_cast<int>(sizeof shown));
        EXPECT_EQ(shown.lfHeight, -13);
        EXPECT_EQ(shown.lfWeight, 700);
        EXPECT_EQ(shown.lfCharSet, 128);
        EXPECT_EQ(SendMessageW(dialog.List(), LVM_GETCOLUMNWIDTH, 0, 0), 150);
        EXPECT_EQ(SendMessageW(dialog.List(), LVM_GETCOLUMNWIDTH, 1, 0), 50);
        EXPECT_EQ(ControlText(dialog.window, 1), u"OK");
        EXPECT_EQ(ControlText(dialog.window, 2), u"x");
    });
}

TEST_F(FileDialogTest, TheFiltersStandInReverseWithTheirNumbersAndAllFilesLast)
{
    filter = FilterOf({u"First", u"*.1", u"Second", u"*.2", u"Third", u"*.3"});
    record.lpstrFilter = filter.c_str();
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Filters(), (Texts{u"Third", u"Second", u"First", u"All image files"}));
        EXPECT_EQ(dialog.FilterData(0), 2);
        EXPECT_EQ(dialog.FilterData(1), 1);
        EXPECT_EQ(dialog.FilterData(2), 0);
        EXPECT_EQ(dialog.FilterData(3), -1);
        EXPECT_EQ(dialog.Filter(), u"All image files");
    });
}

TEST_F(FileDialogTest, TheRecordsFilterIsChosenByItsNumber)
{
    for (const auto& [index, text] : std::vector<std::pair<i32, Text>>{
             {0, u"JPEG"}, {1, u"PNG picture"}, {-1, u"All image files"}}) {
        record.nFilterIndex = static_cast<DWORD>(index);
        Open([&](const Dialog& dialog) { EXPECT_EQ(dialog.Filter(), text); });
    }
}

TEST_F(FileDialogTest, AFilterThatIsNotThereLeavesAllImageFiles)
{
    record.nFilterIndex = 2;
    Open([](const Dialog& dialog) { EXPECT_EQ(dialog.Filter(), u"All image files"); });
    EXPECT_EQ(record.nFilterIndex, 2u);
}

TEST_F(FileDialogTest, WithoutAFilterTextThereIsTheEntryOfAllFilesAndFoldersAlone)
{
    record.lpstrFilter = nullptr;
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Filters(), Texts{u"All image files"});
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub"}));
    });
}

TEST_F(FileDialogTest, EachLanguageHasItsWords)
{
    SetLanguage(1041);
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Filter(), u"全ての画像ﾌｧｲﾙ");
        EXPECT_EQ(dialog.Row(0), u"0 上へ");
        ExpectColumns(dialog.List(), {{u"名前", 150}, {u"ｻｲｽﾞ", 50}});
    });
    SetLanguage(1033);
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Filter(), u"All image files");
        EXPECT_EQ(dialog.Row(0), u"0 Upto");
        ExpectColumns(dialog.List(), {{u"file", 150}, {u"size", 50}});
    });
}

TEST_F(FileDialogTest, OpeningBeginsWithTheLastPartOfTheRecordsFile)
{
    for (const Text given : {u"\\a\\夏 picture.jpg", u"picture.tif", u"\\a\\", u""}) {
        given.copy(file, 259);
        file[given.size()] = 0;
        Open([&](const Dialog& dialog) {
            EXPECT_EQ(dialog.Name(), given.substr(given.rfind(u'\\') + 1));
        });
        EXPECT_EQ(file, given) << "giving up leaves the buffer alone";
    }
    record.lpstrFile = nullptr;
    Open([](const Dialog& dialog) { EXPECT_EQ(dialog.Name(), u""); });
}

TEST_F(FileDialogTest, TheFirstSavingOfARunBeginsWithoutAName)
{
    Text(u"\\a\\b.png").copy(file, 9);
    Save([](const Dialog& dialog) { EXPECT_EQ(dialog.Name(), u""); });
    Save([](const Dialog& dialog) { EXPECT_EQ(dialog.Name(), u"b.png"); });
}

TEST_F(FileDialogTest, SavingAsksTheRecordOfTheUseBeforeWhetherThereIsAName)
{
    Text(u"\\a\\b.png").copy(file, 9);
    Open([](const Dialog&) {});
    record.lpstrFile = nullptr;
    Save([](const Dialog& dialog) { EXPECT_EQ(dialog.Name(), u""); });
    record.lpstrFile = file;
    Save([](const Dialog& dialog) { EXPECT_EQ(dialog.Name(), u""); });
    Save([](const Dialog& dialog) { EXPECT_EQ(dialog.Name(), u"b.png"); });
}

TEST_F(FileDialogTest, AChosenFiltersExtensionIsPutOnTheFirstName)
{
    Text(u"\\a\\b.x.tif").copy(file, 11);
    record.nFilterIndex = 1;
    Open([](const Dialog& dialog) { EXPECT_EQ(dialog.Name(), u"b.x.png"); });
}

TEST_F(FileDialogTest, WithoutAFolderItBeginsAtTheRoot)
{
    record.lpstrInitialDir = nullptr;
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  for (const Text& row : dialog.Rows())
                      EXPECT_NE(row, u"0 Upto");
                  dialog.Type(u"a.jpg");
                  dialog.Ok();
              }),
              Done);
    EXPECT_EQ(file, Text(u"\\a.jpg"));
}

TEST_F(FileDialogTest, AFolderWithoutASeparatorAtItsEndGetsOne)
{
    const Text bare = folder.Device();
    record.lpstrInitialDir = bare.c_str();
    Text(u"").copy(file, 1);
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  dialog.Type(u"b.jpg");
                  dialog.Ok();
              }),
              Done);
    EXPECT_EQ(file, Path(u"b.jpg"));
}

TEST_F(FileDialogTest, AfterGivingUpTheFolderStaysWhereItWasLeft)
{
    EXPECT_EQ(Open([](const Dialog& dialog) { dialog.Enter({u"sub"}); }), NothingDone);
    record.lpstrInitialDir = nullptr;
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"2 c.JPEG 12"}));
    });
}

TEST_F(FileDialogTest, OkGivesThePathAndTheFiltersNumber)
{
    record.nFilterIndex = 1;
    const i32 result = Open([](const Dialog& dialog) {
        dialog.ChooseFilter(u"JPEG");
        dialog.Select(u"2 b.jpg");
        dialog.Ok();
    });
    EXPECT_EQ(result, Done);
    EXPECT_EQ(file, Path(u"b.jpg"));
    EXPECT_EQ(record.nFilterIndex, 0u);
    EXPECT_EQ(record.lpstrTitle, Text(u"Pictures"));
}

TEST_F(FileDialogTest, TheEntryOfAllFilesIsGivenAsMinusOne)
{
    record.nFilterIndex = 0;
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  dialog.ChooseFilter(u"All image files");
                  dialog.Select(u"2 b.jpg");
                  dialog.Ok();
              }),
              Done);
    EXPECT_EQ(record.nFilterIndex, 0xFFFFFFFFu);
}

TEST_F(FileDialogTest, TheCrossReportsNeitherFileNorFilter)
{
    record.nFilterIndex = 1;
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  dialog.ChooseFilter(u"JPEG");
                  dialog.Select(u"2 b.jpg");
                  dialog.Cancel();
              }),
              NothingDone);
    EXPECT_EQ(file[0], 0);
    EXPECT_EQ(record.nFilterIndex, 1u);
}

TEST_F(FileDialogTest, APathIsCutToTheCallersBuffer)
{
    record.lpstrInitialDir = TEXT("\\");
    record.nMaxFile = 8;
    for (WCHAR& unit : file)
        unit = u'#';
    EXPECT_EQ(Save([](const Dialog& dialog) {
                  dialog.Type(u"picture.jpg");
                  dialog.Ok();
              }),
              Done);
    EXPECT_EQ(file, Text(u"\\pictur"));
    EXPECT_EQ(file[8], u'#');
}

TEST_F(FileDialogTest, AFolderThatFillsTheCallersBufferStays)
{
    record.nMaxFile = static_cast<DWORD>(start.size()) + 1;
    file[0] = u'#';
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  dialog.Select(u"2 b.jpg");
                  dialog.Ok();
                  EXPECT_TRUE(dialog.IsOpen());
              }),
              NothingDone);
    EXPECT_EQ(file[0], u'#');
}

TEST_F(FileDialogTest, ARecordWithoutABufferIsAnswered)
{
    record.lpstrFile = nullptr;
    record.nMaxFile = 0;
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  dialog.Type(u"b.jpg");
                  dialog.Ok();
              }),
              Done);
}

TEST_F(FileDialogTest, NullIsRefused)
{
    EXPECT_EQ(files.Open(nullptr), BadArgument);
    EXPECT_EQ(files.Save(nullptr), BadArgument);
}

TEST_F(FileDialogTest, WithoutTheResourceNothingIsDone)
{
    record.hInstance = GetModuleHandleW(TEXT("no such module"));
    OPENFILENAMEW before = record;
    before.hInstance = reinterpret_cast<HINSTANCE>(INT_PTR{0x1234});
    EXPECT_EQ(files.Open(&before), NothingDone);
}

TEST_F(FileDialogTest, ManyUsesThatAreGivenUpKeepNothing)
{
    Open([](const Dialog&) {});
    const auto before = tavrix::platform::CountHoldings();
    for (int i = 0; i < 20; ++i)
        Open([](const Dialog&) {});
    EXPECT_EQ(tavrix::platform::CountHoldings(), before);
}

TEST_F(FileDialogTest, EveryShortageOfMemoryIsSurvived)
{
    ForEveryFault(FaultKind::Allocation, [&] {
        file[0] = 0;
        const i32 result = Open([](const Dialog& dialog) {
            const int row = static_cast<int>(dialog.Rows().size()) - 1;
            dialog.Mark(row, true);
            dialog.Type(u"b.jpg");
            dialog.Ok();
        });
        EXPECT_EQ(file, result == Done ? Path(u"b.jpg") : Text());
    });
}
