// The file dialog by keyboard alone and by pointer alone.

#include "view/tests/FileDialogTesting.h"

using namespace filedialogtest;

namespace
{

void Key(int key, int modifiers = 0)
{
    TypeKey(key, modifiers);
    Pump(20);
}

void ClickRow(const Dialog& dialog, const Text& row)
{
    const POINT place = dialog.PlaceOfRow(row);
    ClickScreen(place.x, place.y);
    Pump(20);
}

void DoubleClickRow(const Dialog& dialog, const Text& row)
{
    const POINT place = dialog.PlaceOfRow(row);
    DoubleClickScreen(place.x, place.y);
    Pump(20);
}

} // namespace

TEST_F(FileDialogTest, AFileIsOpenedByKeysAlone)
{
    record.Flags = OFN_FILEMUSTEXIST;
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  Key(VK_DOWN);
                  EXPECT_EQ(dialog.Selected(), 0);
                  Key(VK_DOWN);
                  Key(VK_RETURN); // into the folder
                  EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"2 c.JPEG 12"}));
                  EXPECT_EQ(GetFocus(), dialog.List());
                  Key(VK_DOWN);
                  Key(VK_RETURN); // and out of it
                  EXPECT_EQ(dialog.Rows().size(), 4u);
                  Key('S'); // to the folder by its first letter
                  Key(VK_RETURN);
                  Key(VK_DOWN);
                  Key(VK_DOWN);
                  EXPECT_EQ(dialog.Name(), u"c.JPEG");
                  Key(VK_BACK);
                  EXPECT_EQ(dialog.Rows().size(), 2u);
                  Key(VK_RETURN);
                  EXPECT_FALSE(dialog.IsOpen());
              }),
              Done);
    EXPECT_EQ(file, Path(u"sub\\c.JPEG"));
}

TEST_F(FileDialogTest, TheTabKeyWalksListNameFilterOkAndCross)
{
    Open([](const Dialog& dialog) {
        for (const int id : {1002, 1003, 1, 2, 1001}) {
            Key(VK_TAB);
            EXPECT_EQ(GetFocus(), dialog.Control(id)) << id;
        }
        for (const int id : {2, 1, 1003, 1002, 1001}) {
            Key(VK_TAB, MK_SHIFT);
            EXPECT_EQ(GetFocus(), dialog.Control(id)) << id;
        }
    });
}

TEST_F(FileDialogTest, ANameIsTypedAndTakenByEnter)
{
    record.nFilterIndex = 0;
    EXPECT_EQ(Save([](const Dialog& dialog) {
                  Key(VK_TAB);
                  Key('N');
                  Key('E');
                  Key('W');
                  EXPECT_EQ(dialog.Name(), u"new");
                  Key(VK_TAB);
                  Key(VK_UP); // the box shows the filters in reverse
                  EXPECT_EQ(dialog.Filter(), u"PNG picture");
                  EXPECT_EQ(dialog.Name(), u"new.png");
                  EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"2 A.png 0"}));
                  Key(VK_RETURN);
              }),
              Done);
    EXPECT_EQ(file, Path(u"new.png"));
    EXPECT_EQ(record.nFilterIndex, 1u);
}

TEST_F(FileDialogTest, EscapeGivesUpFromEverywhere)
{
    for (const int tabs : {0, 1, 2, 3}) {
        EXPECT_EQ(Open([tabs](const Dialog& dialog) {
                      for (int i = 0; i < tabs; ++i)
                          Key(VK_TAB);
                      Key(VK_ESCAPE);
                      EXPECT_FALSE(dialog.IsOpen());
                  }),
                  NothingDone);
    }
}

TEST_F(FileDialogTest, AFileIsOpenedByThePointerAlone)
{
    record.Flags = OFN_FILEMUSTEXIST;
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  ClickRow(dialog, u"1 sub");
                  ClickControl(dialog.window, 1);
                  Pump(20);
                  ClickRow(dialog, u"0 Upto");
                  ClickControl(dialog.window, 1);
                  Pump(20);
                  ClickRow(dialog, u"2 b.jpg");
                  EXPECT_EQ(dialog.Name(), u"b.jpg");
                  ClickControl(dialog.window, 1);
                  Pump(20);
                  EXPECT_FALSE(dialog.IsOpen());
              }),
              Done);
    EXPECT_EQ(file, Path(u"b.jpg"));
}

TEST_F(FileDialogTest, ADoubleClickEntersLeavesAndTakes)
{
    EXPECT_EQ(Open([](const Dialog& dialog) {
                  DoubleClickRow(dialog, u"1 sub");
                  EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"2 c.JPEG 12"}));
                  DoubleClickRow(dialog, u"0 Upto");
                  EXPECT_EQ(dialog.Rows().size(), 4u);
                  DoubleClickRow(dialog, u"1 sub");
                  dialog.Type(u"something else");
                  DoubleClickRow(dialog, u"2 c.JPEG");
                  EXPECT_FALSE(dialog.IsOpen());
              }),
              Done);
    EXPECT_EQ(file, Path(u"sub\\c.JPEG"));
}

TEST_F(FileDialogTest, ADoubleClickBesideTheRowsDoesNothing)
{
    Open([](const Dialog& dialog) {
        const RECT list = PlaceOf(dialog.List());
        DoubleClickScreen(list.left + 40, list.bottom - 12);
        Pump(20);
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_EQ(dialog.Rows().size(), 4u);
    });
}

TEST_F(FileDialogTest, AClickOnTheHeadSortsAndTheCrossGivesUp)
{
    EXPECT_EQ(
        Open([](const Dialog& dialog) {
            const RECT list = PlaceOf(dialog.List());
            ClickScreen(list.left + 40, list.top + 8);
            Pump(20);
            EXPECT_EQ(dialog.Rows(), (Texts{u"0 Upto", u"1 sub", u"2 b.jpg 7", u"2 A.png 0"}));
            ClickScreen(list.left + 170, list.top + 8); // "size"
            Pump(20);
            EXPECT_EQ(dialog.Row(2), u"2 b.jpg 7");
            ClickControl(dialog.window, 2);
            Pump(20);
            EXPECT_FALSE(dialog.IsOpen());
        }),
        NothingDone);
}

TEST_F(FileDialogTest, EverythingLiesOnTheDialogAndIsLargeEnoughForAFinger)
{
    for (const LANGID language : {1033, 1041}) {
        SetLanguage(language);
        Open([](const Dialog& dialog) {
            const RECT around = PlaceOf(dialog.window);
            EXPECT_LE(around.right - around.left, 600);
            EXPECT_LE(around.bottom - around.top, 440);
            for (const int id : {1001, 1002, 1003, 1004, 1, 2}) {
                const RECT place = PlaceOf(dialog.Control(id));
                EXPECT_GE(place.left, around.left) << id;
                EXPECT_GE(place.top, around.top) << id;
                EXPECT_LE(place.right, around.right) << id;
                EXPECT_LE(place.bottom, around.bottom) << id;
                EXPECT_GE(place.bottom - place.top, 20) << id;
                EXPECT_GE(place.right - place.left, 28) << id;
            }
            const RECT list = PlaceOf(dialog.List());
            EXPECT_GE(list.right - list.left, 150 + 50 + 40) << "room beside the columns";
        });
    }
}
