// The dialog for a new picture, over the real controls.

#include "view/NewDialog.h"

#include "view/tests/SizeDialogTesting.h"

using namespace sizedialogtest;

namespace
{

constexpr int Mode = 1050;
constexpr int White = 1066;
constexpr int Black = 1067;
constexpr int Transparent = 1068;

class NewDialog : public Windows
{
protected:
    i32 Show(const std::function<void(const Dialog&)>& script)
    {
        const NewRequest request = {&info, &background};
        i32 result = Failed;
        EXPECT_EQ(Open([&] { result = ShowNewDialog(owner, instance, &request); }, script), 1);
        return result;
    }
    LRESULT Checked(const Dialog& dialog, int id)
    {
        return SendMessageW(dialog.Control(id), BM_GETCHECK, 0, 0);
    }

    RasterInfo info = {sizeof(RasterInfo), 320, 200, 8, 0, 0};
    u32 background = 2;
};

} // namespace

TEST_F(NewDialog, ShowsTheSizeThatItIsGivenAndOneUnitAndOneMode)
{
    Show([&](const Dialog& dialog) {
        EXPECT_EQ(dialog.Of(WidthField), u"320");
        EXPECT_EQ(dialog.Of(HeightField), u"200");
        for (const int list : {WidthUnit, HeightUnit}) {
            EXPECT_EQ(Entries(dialog, list), Texts{u"px"});
            EXPECT_EQ(Row(dialog, list), 0);
        }
        EXPECT_EQ(Entries(dialog, Mode), Texts{u"RGB24bits Color"});
        EXPECT_EQ(Row(dialog, Mode), 0);
        EXPECT_EQ(SendMessageW(dialog.Control(Mode), CB_GETITEMDATA, 0, 0), 24);
        EXPECT_EQ(Checked(dialog, White), BST_CHECKED);
        EXPECT_TRUE(IsWindowEnabled(dialog.Control(White)));
        EXPECT_TRUE(IsWindowEnabled(dialog.Control(Black)));
        EXPECT_FALSE(IsWindowEnabled(dialog.Control(Transparent)));
        dialog.Close();
    });
}

TEST_F(NewDialog, EachLanguageHasItsWordsAndNothingLiesOverAnything)
{
    const std::vector<int> ids = {WidthField, WidthUnit, HeightField, HeightUnit, Mode,
                                  White,      Black,     Transparent, IDOK,       IDCANCEL};
    const auto words = [](const Dialog& dialog) {
        return Texts{dialog.Caption(),       dialog.Of(White), dialog.Of(Black),
                     dialog.Of(Transparent), dialog.Of(IDOK),  dialog.Of(IDCANCEL)};
    };
    Show([&](const Dialog& dialog) {
        EXPECT_EQ(words(dialog), (Texts{u"New", u"White", u"Black", u"Transparent", u"OK", u"x"}));
        ExpectTidy(dialog, ids);
        dialog.Close();
    });
    SetLanguage(1041);
    Show([&](const Dialog& dialog) {
        EXPECT_EQ(words(dialog), (Texts{u"新規作成", u"白", u"黒", u"透明", u"OK", u"x"}));
        EXPECT_EQ(Entries(dialog, Mode), Texts{u"RGB24ビットカラー"});
        EXPECT_EQ(SendMessageW(dialog.Control(Mode), CB_GETITEMDATA, 0, 0), 24);
        ExpectTidy(dialog, ids);
        dialog.Close();
    });
}

TEST_F(NewDialog, TakesTheTypedNumbersByTheKeyboardAlone)
{
    EXPECT_EQ(Show([&](const Dialog& dialog) {
                  EXPECT_EQ(GetFocus(), dialog.Control(WidthField));
                  for (const char key : {'6', '4', '1'})
                      TypeKey(key); // over what stands there
                  TypeKey(VK_TAB);
                  TypeKey(VK_TAB);
                  for (const char key : {'4', '8'})
                      TypeKey(key);
                  TypeKey(VK_RETURN);
              }),
              Done);
    EXPECT_EQ(info.width, 641u);
    EXPECT_EQ(info.height, 48u);
    EXPECT_EQ(info.depth, 24u);
    EXPECT_EQ(background, 2u) << "not written";
}

TEST_F(NewDialog, TheTabKeyGoesThroughItAndTheWaysOutGiveItUp)
{
    Show([&](const Dialog& dialog) {
        ExpectTabOrder(
            dialog, {WidthField, WidthUnit, HeightField, HeightUnit, Mode, White, IDOK, IDCANCEL});
        dialog.Close();
    });
    const std::function<void(const Dialog&)> ways[] = {
        [](const Dialog& dialog) { ClickControl(dialog.window, IDCANCEL); },
        [](const Dialog&) { TypeKey(VK_ESCAPE); },
    };
    for (const auto& way : ways) {
        info.width = 7;
        info.depth = 8;
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      SetDlgItemInt(dialog.window, WidthField, 99, FALSE);
                      way(dialog);
                  }),
                  NothingDone);
        EXPECT_EQ(info.width, 7u);
        EXPECT_EQ(info.depth, 8u);
    }
}

TEST_F(NewDialog, WhatIsNoNumberOf32BitsCountsAsNone)
{
    const struct {
        const char16_t* text;
        u32 number;
    } rows[] = {{u"", 0}, {u"0", 0}, {u"4294967295", 4294967295u}, {u"4294967296", 0}, {u"x", 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      SetDlgItemTextW(dialog.window, HeightField, row.text);
                      ClickControl(dialog.window, IDOK);
                  }),
                  Done);
        EXPECT_EQ(info.height, row.number) << Utf8(row.text);
    }
}

TEST_F(NewDialog, TheButtonsChangeTheirMarksAndNothingElse)
{
    EXPECT_EQ(Show([&](const Dialog& dialog) {
                  ClickControl(dialog.window, Black);
                  EXPECT_EQ(Checked(dialog, Black), BST_CHECKED);
                  EXPECT_EQ(Checked(dialog, White), BST_UNCHECKED);
                  ClickControl(dialog.window, Transparent);
                  EXPECT_EQ(Checked(dialog, Transparent), BST_UNCHECKED);
                  ClickControl(dialog.window, IDOK);
              }),
              Done);
    EXPECT_EQ(background, 2u);
}

TEST_F(NewDialog, NothingIsShownWithoutARecord)
{
    const NewRequest request = {nullptr, &background};
    EXPECT_EQ(ShowNewDialog(owner, instance, nullptr), BadArgument);
    EXPECT_EQ(ShowNewDialog(owner, instance, &request), BadArgument);
}
