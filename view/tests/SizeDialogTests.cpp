// The dialog for another canvas, over the real controls.

#include "view/SizeDialog.h"

#include "view/tests/SizeDialogTesting.h"

using namespace sizedialogtest;

namespace
{

constexpr int AnchorName = 1065;

struct Anchor {
    int id;
    Text sign;
    Text english;
    Text japanese;
};

// In the order of the field, row by row.
const Anchor anchors[] = {
    {1061, u"↖", u"Upper-Left", u"左上配置"},  {1025, u"↑", u"Upper", u"上部中央配置"},
    {1062, u"↗", u"Upper-Right", u"右上配置"}, {1059, u"←", u"Left", u"左配置"},
    {1058, u"●", u"Center", u"上下中央配置"},  {1060, u"→", u"Right", u"右配置"},
    {1063, u"↙", u"Lower-Left", u"左下配置"},  {1057, u"↓", u"Lower", u"下部中央配置"},
    {1064, u"↘", u"Lower-Right", u"右下配置"},
};

class SizeDialog : public Windows
{
protected:
    i32 Show(const std::function<void(const Dialog&)>& script)
    {
        i32 result = Failed;
        EXPECT_EQ(Open([&] { result = ShowSizeDialog(owner, instance, &request); }, script), 1);
        return result;
    }

    SizeRequest request = {11, 12, 1058, {sizeof(RasterInfo), 320, 200, 24, 0, 0}};
};

} // namespace

TEST_F(SizeDialog, BeginsWithThePicturesSizeAndTheAnchorThatItIsGiven)
{
    Show([&](const Dialog& dialog) {
        EXPECT_EQ(dialog.Of(WidthField), u"320");
        EXPECT_EQ(dialog.Of(HeightField), u"200");
        for (const int list : {WidthUnit, HeightUnit}) {
            EXPECT_EQ(Entries(dialog, list), Texts{u"px"});
            EXPECT_EQ(Row(dialog, list), 0);
        }
        EXPECT_EQ(dialog.Of(AnchorName), u"Center");
        dialog.Close();
    });
    request.anchor = 1063;
    Show([&](const Dialog& dialog) {
        EXPECT_EQ(dialog.Of(AnchorName), u"Lower-Left");
        dialog.Close();
    });
    for (const LANGID language : {1033, 1041}) {
        SetLanguage(language);
        request.anchor = 77;
        Show([&](const Dialog& dialog) {
            EXPECT_EQ(dialog.Of(AnchorName), language == 1041 ? u"不明" : u"Unknown");
            ClickControl(dialog.window, IDOK);
        });
        EXPECT_EQ(request.anchor, 77u);
    }
}

TEST_F(SizeDialog, AClickOnAnAnchorNamesItInBothLanguagesAndOkTakesIt)
{
    for (const LANGID language : {1033, 1041}) {
        SetLanguage(language);
        for (const Anchor& anchor : anchors) {
            request.anchor = anchor.id == 1058 ? 1061 : 1058;
            EXPECT_EQ(Show([&](const Dialog& dialog) {
                          EXPECT_EQ(dialog.Of(anchor.id), anchor.sign);
                          ClickControl(dialog.window, anchor.id);
                          EXPECT_EQ(dialog.Of(AnchorName),
                                    language == 1041 ? anchor.japanese : anchor.english);
                          EXPECT_NE(request.anchor, static_cast<u32>(anchor.id));
                          ClickControl(dialog.window, IDOK);
                      }),
                      Done);
            EXPECT_EQ(request.anchor, static_cast<u32>(anchor.id));
        }
    }
}

TEST_F(SizeDialog, TheButtonsLieAsThePlacesThatTheyStandFor)
{
    Show([&](const Dialog& dialog) {
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column) {
                const RECT place = PlaceOf(dialog.Control(anchors[3 * row + column].id));
                const RECT left = PlaceOf(dialog.Control(anchors[3 * row].id));
                const RECT top = PlaceOf(dialog.Control(anchors[column].id));
                EXPECT_EQ(place.top, left.top);
                EXPECT_EQ(place.left, top.left);
                if (column > 0) {
                    EXPECT_GE(place.left,
                              PlaceOf(dialog.Control(anchors[3 * row + column - 1].id)).right);
                }
                if (row > 0) {
                    EXPECT_GE(place.top,
                              PlaceOf(dialog.Control(anchors[3 * row + column - 3].id)).bottom);
                }
            }
        dialog.Close();
    });
}

TEST_F(SizeDialog, EachLanguageHasItsWordsAndNothingLiesOverAnything)
{
    std::vector<int> ids = {WidthField, WidthUnit, HeightField, HeightUnit,
                            AnchorName, IDOK,      IDCANCEL};
    for (const Anchor& anchor : anchors)
        ids.push_back(anchor.id);
    for (const LANGID language : {1033, 1041}) {
        SetLanguage(language);
        Show([&](const Dialog& dialog) {
            EXPECT_EQ(dialog.Caption(), language == 1041 ? u"サイズ変更" : u"Size");
            EXPECT_EQ(dialog.Of(IDOK), u"OK");
            EXPECT_EQ(dialog.Of(IDCANCEL), u"x");
            ExpectTidy(dialog, ids);
            dialog.Close();
        });
    }
}

TEST_F(SizeDialog, IsUsedByTheKeyboardAlone)
{
    EXPECT_EQ(Show([&](const Dialog& dialog) {
                  ExpectTabOrder(dialog,
                                 {WidthField, WidthUnit, HeightField, HeightUnit, 1061, 1025, 1062,
                                  1059, 1058, 1060, 1063, 1057, 1064, IDOK, IDCANCEL});
                  TypeOver(dialog, WidthField, "640");
                  TypeOver(dialog, HeightField, "1");
                  TypeKey(VK_TAB);
                  TypeKey(VK_TAB);
                  TypeKey(VK_SPACE);
                  EXPECT_EQ(dialog.Of(AnchorName), u"Upper-Left");
                  TypeKey(VK_RIGHT);
                  TypeKey(VK_SPACE);
                  EXPECT_EQ(dialog.Of(AnchorName), u"Upper");
                  SetFocus(dialog.Control(WidthField));
                  TypeKey(VK_RETURN);
              }),
              Done);
    EXPECT_EQ(request.width, 640u);
    EXPECT_EQ(request.height, 1u);
    EXPECT_EQ(request.anchor, 1025u);
}

TEST_F(SizeDialog, GivenUpItChangesNothingInTheRecord)
{
    const std::function<void(const Dialog&)> ways[] = {
        [](const Dialog& dialog) { ClickControl(dialog.window, IDCANCEL); },
        [](const Dialog&) { TypeKey(VK_ESCAPE); },
    };
    for (const auto& way : ways) {
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      SetDlgItemInt(dialog.window, WidthField, 99, FALSE);
                      ClickControl(dialog.window, 1064);
                      way(dialog);
                  }),
                  NothingDone);
        EXPECT_EQ(request.width, 11u);
        EXPECT_EQ(request.height, 12u);
        EXPECT_EQ(request.anchor, 1058u);
    }
    EXPECT_EQ(ShowSizeDialog(owner, instance, nullptr), BadArgument);
}
