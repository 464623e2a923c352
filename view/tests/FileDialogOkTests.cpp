// What OK does: with a folder, with a name, with a file that is there and with one that is not.

#include "platform/testing/Faults.h"
#include "tests/support/DeviceCalls.h"
#include "view/tests/FileDialogTesting.h"

using namespace filedialogtest;

TEST_F(FileDialogTest, ASelectedFolderIsEnteredWhateverTheNameFieldHolds)
{
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  dialog.Select(u"1 sub");
                  dialog.Type(u"b.jpg");
                  dialog.Ok();
                  EXPECT_TRUE(dialog.IsOpen());
                  EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"2 c.JPEG 12"}));
                  EXPECT_EQ(dialog.Name(), u"b.jpg");
              }),
              NothingDone);
}

TEST_F(FileDialogTest, TheSelectedParentIsGoneTo)
{
    Open([this](const Dialog& dialog) {
        const Texts rows = dialog.Rows();
        dialog.Enter({u"sub"});
        dialog.Select(u"0 Upto");
        dialog.Ok();
        EXPECT_EQ(dialog.Rows(), rows);
        dialog.Select(u"0 Upto");
        dialog.Ok();
        dialog.Find(u"1 " + Wide(folder.Host("").parent_path().filename().string()));
    });
}

TEST_F(FileDialogTest, GoingUpEndsAtTheRoot)
{
    record.lpstrInitialDir = TEXT("\\Computer\\");
    Open([](const Dialog& dialog) {
        EXPECT_EQ(dialog.Row(0), u"0 Upto");
        dialog.Select(u"0 Upto");
        dialog.Ok();
        EXPECT_NE(dialog.Row(0), u"0 Upto");
        dialog.Find(u"1 Computer");
    });
    record.lpstrInitialDir = nullptr;
    Open([](const Dialog& dialog) { EXPECT_NE(dialog.Row(0), u"0 Upto"); });
}

TEST_F(FileDialogTest, ATypedNameIsRelativeToTheFolder)
{
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  dialog.Type(u"sub\\c.JPEG");
                  dialog.Ok();
              }),
              Done);
    EXPECT_EQ(file, Path(u"sub\\c.JPEG"));
}

TEST_F(FileDialogTest, ANameThatEndsInASeparatorOpensThatFolder)
{
    std::filesystem::create_directories(folder.Host("sub/deep/er"));
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  dialog.Type(u"sub\\");
                  dialog.Ok();
                  EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 deep", u"2 c.JPEG 12"}));
                  EXPECT_EQ(dialog.Name(), u"");
                  dialog.Type(u"deep\\er\\");
                  dialog.Ok();
                  EXPECT_EQ(dialog.Rows(), Texts{u"0 Upto"});
                  dialog.Select(u"0 Upto");
                  dialog.Ok();
                  EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 er"}));
              }),
              NothingDone);
}

TEST_F(FileDialogTest, TypedSeparatorsAloneAndFoldersThatAreNotThereDoNoHarm)
{
    Open([](const Dialog& dialog) {
        for (const Text name : {u"\\", u"nowhere\\", u"..\\", u"\\\\"}) {
            dialog.Type(name);
            dialog.Ok();
            EXPECT_EQ(dialog.Row(0), u"0 Upto");
            EXPECT_EQ(dialog.Name(), u"");
        }
        for (int i = 0; i < 100 && dialog.Row(0) == u"0 Upto"; ++i) {
            dialog.Select(u"0 Upto");
            dialog.Ok();
        }
        dialog.Find(u"1 Computer");
    });
}

TEST_F(FileDialogTest, AFolderPathThatGrowsTooLongStays)
{
    Open([this](const Dialog& dialog) {
        // 2,047 characters are the most: nine go on top of what there is while they fit.
        size_t length = start.size();
        for (; length + 9 <= 2047; length += 9) {
            dialog.Type(u"12345678\\");
            dialog.Ok();
            ASSERT_EQ(dialog.Name(), u"");
        }
        dialog.Type(u"12345678\\");
        dialog.Ok();
        EXPECT_EQ(dialog.Name(), u"12345678\\") << "it stays";
        const Text last = Text(2047 - length - 1, u'x') + u"\\";
        if (last.size() > 1) {
            dialog.Type(last);
            dialog.Ok();
            EXPECT_EQ(dialog.Name(), u"") << "what fits exactly is taken";
            EXPECT_EQ(dialog.Rows(), Texts{u"0 Upto"});
        }
        dialog.Type(Text(3000, u'y'));
        dialog.Ok();
        EXPECT_TRUE(dialog.IsOpen());
    });
    EXPECT_EQ(file[0], 0);
}

TEST_F(FileDialogTest, AnEmptyNameWithNothingChosenStays)
{
    for (const i32 index : {-1, 0}) {
        record.nFilterIndex = static_cast<DWORD>(index);
        EXPECT_EQ(Save([](const Dialog& dialog) {
                      dialog.Ok();
                      EXPECT_TRUE(dialog.IsOpen());
                      dialog.Select(u"2 b.jpg");
                      dialog.Type(u"");
                      dialog.Ok();
                      EXPECT_TRUE(dialog.IsOpen());
                  }),
                  NothingDone);
    }
}

TEST_F(FileDialogTest, AFileThatMustBeThereAndIsNotStays)
{
    record.Flags = OFN_FILEMUSTEXIST;
    EXPECT_EQ(
        Open([](const Dialog& dialog) {
            for (const Text name : {u"none.jpg", u"sub", u"*.jpg", u"b.jpg\\x", u"x\\b.jpg"}) {
                dialog.Type(name);
                dialog.Ok();
                EXPECT_TRUE(dialog.IsOpen()) << Utf8(name.c_str());
                EXPECT_EQ(dialog.Name(), name);
            }
            dialog.Type(u"b.jpg");
            dialog.Ok();
        }),
        Done);
    EXPECT_EQ(file, Path(u"b.jpg"));
}

TEST_F(FileDialogTest, AFileThatWentAwaySinceItWasListedStays)
{
    record.Flags = OFN_FILEMUSTEXIST;
    EXPECT_EQ(Open([this](const Dialog& dialog) {
                  dialog.Select(u"2 b.jpg");
                  std::filesystem::remove(folder.Host("b.jpg"));
                  dialog.Ok();
                  EXPECT_TRUE(dialog.IsOpen());
              }),
              NothingDone);
}

TEST_F(FileDialogTest, WithoutTheFlagAFileNeedNotBeThere)
{
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  dialog.Type(u"none.jpg");
                  dialog.Ok();
              }),
              Done);
    EXPECT_EQ(file, Path(u"none.jpg"));
}

TEST_F(FileDialogTest, OverwritingIsAskedAboutInBothLanguages)
{
    const struct {
        LANGID language;
        Text text;
        Text caption;
    } words[] = {{1033, u"This file already exists. Are you sure to overwrite it?", u"Question"},
                 {1041, u"指定されたファイルは既に存在します。上書きしますか？", u"確認"}};
    record.Flags = OFN_OVERWRITEPROMPT;
    for (const auto& expected : words) {
        SetLanguage(expected.language);
        const size_t asked = BoxCalls().size();
        EXPECT_EQ(Save([&](const Dialog& dialog) {
                      dialog.Type(u"b.jpg");
                      dialog.Ok();
                      EXPECT_TRUE(dialog.IsOpen()) << "anything but Yes stays";
                      ASSERT_EQ(BoxCalls().size(), asked + 1);
                      EXPECT_EQ(BoxCalls().back().owner, dialog.window);
                  }),
                  NothingDone);
        ASSERT_FALSE(BoxCalls().empty());
        EXPECT_EQ(BoxCalls().back().text, expected.text);
        EXPECT_EQ(BoxCalls().back().caption, expected.caption);
        EXPECT_EQ(BoxCalls().back().flags, 36u);
        EXPECT_EQ(file[0], 0);
    }
    answer = IDYES;
    EXPECT_EQ(Save([](const Dialog& dialog) {
                  dialog.Type(u"b.jpg");
                  dialog.Ok();
                  EXPECT_FALSE(dialog.IsOpen());
              }),
              Done);
    EXPECT_EQ(file, Path(u"b.jpg"));
}

TEST_F(FileDialogTest, AFileThatIsNotThereIsSavedUnasked)
{
    record.Flags = OFN_OVERWRITEPROMPT;
    const size_t asked = BoxCalls().size();
    EXPECT_EQ(Save([this](const Dialog& dialog) {
                  dialog.Select(u"2 b.jpg");
                  std::filesystem::remove(folder.Host("b.jpg"));
                  dialog.Ok();
              }),
              Done);
    EXPECT_EQ(BoxCalls().size(), asked);
}

TEST_F(FileDialogTest, WithoutTheFlagOverwritingIsNotAskedAbout)
{
    const size_t asked = BoxCalls().size();
    EXPECT_EQ(Save([](const Dialog& dialog) {
                  dialog.Type(u"b.jpg");
                  dialog.Ok();
              }),
              Done);
    EXPECT_EQ(BoxCalls().size(), asked);
}

TEST_F(FileDialogTest, OkAddsTheFiltersExtensionToANameThatFitsNone)
{
    const struct {
        Text typed;
        Text given;
    } names[] = {{u"new", u"new.jpg"},
                 {u"a.b", u"a.b.jpg"},
                 {u"NEW.JPEG", u"NEW.JPEG"},
                 {u"夏.png", u"夏.png.jpg"},
                 {u"sub\\new", u"sub\\new.jpg"}};
    for (const auto& name : names) {
        record.nFilterIndex = 0;
        EXPECT_EQ(Save([&](const Dialog& dialog) {
                      dialog.Type(name.typed);
                      dialog.Ok();
                  }),
                  Done);
        EXPECT_EQ(file, Path(name.given));
        EXPECT_EQ(record.nFilterIndex, 0u);
    }
}

TEST_F(FileDialogTest, WithAllImageFilesATypedNameKeepsWhatItHas)
{
    for (const Text name : {u"new", u"a.b", u"new.jpg", u"a.b.", u"絵"}) {
        EXPECT_EQ(Save([&](const Dialog& dialog) {
                      dialog.Type(name);
                      dialog.Ok();
                  }),
                  Done);
        EXPECT_EQ(file, Path(name));
    }
}

TEST_F(FileDialogTest, OfALongNameOnly256CharactersAreLookedAt)
{
    record.nFilterIndex = 1;
    record.Flags = OFN_FILEMUSTEXIST;
    Open([](const Dialog& dialog) {
        dialog.Type(Text(256, u'n') + u".png");
        dialog.Ok();
        EXPECT_EQ(dialog.Name(), Text(256, u'n') + u".png") << "cut and given the extension anew";
        dialog.Type(Text(300, u'n') + u".png");
        dialog.Ok();
        EXPECT_EQ(dialog.Name(), Text(256, u'n') + u".png");
    });
}

TEST_F(FileDialogTest, WithoutAWorkBufferOkDoesNothing)
{
    record.nFilterIndex = 0;
    EXPECT_EQ(Save([](const Dialog& dialog) {
                  const Texts rows = dialog.Rows();
                  SetAllocationFault([](SIZE_T size) { return size >= 8192; });
                  dialog.Type(u"new");
                  dialog.Ok();
                  EXPECT_TRUE(dialog.IsOpen());
                  EXPECT_EQ(dialog.Name(), u"new");
                  dialog.Select(u"1 sub");
                  dialog.Ok();
                  EXPECT_EQ(dialog.Rows(), rows);
                  dialog.Select(u"0 Upto");
                  dialog.Ok();
                  EXPECT_EQ(dialog.Rows(), rows);
                  SetAllocationFault({});
                  dialog.Mark(0, false);
                  dialog.Type(u"new");
                  dialog.Ok();
                  EXPECT_FALSE(dialog.IsOpen());
              }),
              Done);
    EXPECT_EQ(file, Path(u"new.jpg"));
}
