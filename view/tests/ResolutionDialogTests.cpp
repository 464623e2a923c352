// The dialog for another number of pixels, over the real controls: what a person types, and what
// comes of it in the field, in the other field and in the end.

#include "view/ResolutionDialog.h"

#include "view/tests/SizeDialogTesting.h"

using namespace sizedialogtest;

namespace
{

constexpr int Plugins = 1010;
constexpr int Keep = 1013;

class ResolutionDialog : public Windows
{
protected:
    ResolutionDialog()
    {
        AddPlugin(u"Nearest", 0);
        AddPlugin(u"Bilinear", 1);
        AddPlugin(u"Lanczos", 5);
    }

    void AddPlugin(const Text& name, u32 index)
    {
        EXPECT_GT(names.SetUnsigned(name.c_str(), index), 0);
    }
    i32 Show(const std::function<void(const Dialog&)>& script)
    {
        i32 result = Failed;
        EXPECT_EQ(Open([&] { result = ShowResolutionDialog(owner, instance, &request); }, script),
                  1);
        return result;
    }
    /// Shows it for a picture of a size and takes what comes of it.
    void Take(u32 width, u32 height, const std::function<void(const Dialog&)>& script)
    {
        info.width = width;
        info.height = height;
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      script(dialog);
                      ClickControl(dialog.window, IDOK);
                  }),
                  Done);
    }
    static void ExpectFields(const Dialog& dialog, const Text& width, const Text& height)
    {
        EXPECT_EQ(dialog.Of(WidthField), width);
        EXPECT_EQ(dialog.Of(HeightField), height);
    }
    static LRESULT Checked(const Dialog& dialog)
    {
        return SendMessageW(dialog.Control(Keep), BM_GETCHECK, 0, 0);
    }

    PropertyList names;
    RasterInfo info = {sizeof(RasterInfo), 640, 480, 24, 0, 0};
    ResolutionRequest request = {&info, &names, -7, 0};
};

} // namespace

TEST_F(ResolutionDialog, BeginsWithThePicturesSizeTheAspectKeptAndTheLastPlugin)
{
    request.preselected = 1;
    EXPECT_EQ(Show([&](const Dialog& dialog) {
                  ExpectFields(dialog, u"640", u"480");
                  for (const int list : {WidthUnit, HeightUnit}) {
                      EXPECT_EQ(Entries(dialog, list), (Texts{u"px", u"%"}));
                      EXPECT_EQ(Row(dialog, list), 0);
                  }
                  EXPECT_EQ(Checked(dialog), BST_CHECKED);
                  EXPECT_EQ(Entries(dialog, Plugins), (Texts{u"Lanczos", u"Bilinear", u"Nearest"}));
                  EXPECT_EQ(Row(dialog, Plugins), 1);
                  ClickControl(dialog.window, IDOK);
              }),
              Done);
    EXPECT_EQ(info.width, 640u);
    EXPECT_EQ(info.height, 480u);
    EXPECT_EQ(request.chosen, 1);
}

TEST_F(ResolutionDialog, EachLanguageHasItsWordsAndNothingLiesOverAnything)
{
    const std::vector<int> ids = {WidthField, WidthUnit, HeightField, HeightUnit,
                                  Keep,       Plugins,   IDOK,        IDCANCEL};
    Show([&](const Dialog& dialog) {
        EXPECT_EQ(dialog.Caption(), u"Resolution");
        EXPECT_EQ(dialog.Of(Keep), u"&keep aspect ratio");
        EXPECT_EQ(dialog.Of(IDOK), u"Done");
        EXPECT_EQ(dialog.Of(IDCANCEL), u"x");
        ExpectTidy(dialog, ids);
        dialog.Close();
    });
    SetLanguage(1041);
    Show([&](const Dialog& dialog) {
        EXPECT_EQ(dialog.Caption(), u"解像度変更");
        EXPECT_EQ(dialog.Of(Keep), u"縦横比を保つ(&K)");
        EXPECT_EQ(dialog.Of(IDOK), u"OK");
        EXPECT_EQ(dialog.Of(IDCANCEL), u"x");
        ExpectTidy(dialog, ids);
        dialog.Close();
    });
}

TEST_F(ResolutionDialog, TheChosenPluginIsTheDataOfItsRow)
{
    const i32 indexes[] = {5, 1, 0};
    for (int row = 0; row < 3; ++row) {
        Take(8, 8, [&](const Dialog& dialog) { ChooseRow(dialog, Plugins, row); });
        EXPECT_EQ(request.chosen, indexes[row]);
    }
    request.preselected = 4; // none has it
    Take(8, 8, [&](const Dialog& dialog) { EXPECT_EQ(Row(dialog, Plugins), -1); });
    EXPECT_LT(request.chosen, 0);
    const PropertyList none;
    request.names = &none;
    Take(8, 8, [&](const Dialog& dialog) { EXPECT_TRUE(Entries(dialog, Plugins).empty()); });
    EXPECT_LT(request.chosen, 0);
}

TEST_F(ResolutionDialog, OfMoreThanAHundredPluginsTheFirstHundredAreOffered)
{
    for (u32 i = 3; i < 130; ++i)
        AddPlugin(u"Plugin " + Wide(std::to_string(i)), 1000 + i);
    request.preselected = 1099;
    Take(8, 8, [&](const Dialog& dialog) {
        const Texts entries = Entries(dialog, Plugins);
        ASSERT_EQ(entries.size(), 100u);
        EXPECT_EQ(entries.front(), u"Plugin 99");
        EXPECT_EQ(entries.back(), u"Nearest");
        EXPECT_EQ(Row(dialog, Plugins), 0);
    });
    EXPECT_EQ(request.chosen, 1099);
    request.preselected = 1100;
    Take(8, 8, [&](const Dialog& dialog) { EXPECT_EQ(Row(dialog, Plugins), -1); });
}

TEST_F(ResolutionDialog, ANumberOfPixelsCanBeTypedAndTheHeightFollowsEachKey)
{
    Take(640, 480, [&](const Dialog& dialog) {
        EXPECT_EQ(GetFocus(), dialog.Control(WidthField));
        // The first key replaces the whole text, as a person finds it.
        TypeKey('1');
        ExpectFields(dialog, u"1", u"1"); // 0.75
        TypeKey('5');
        ExpectFields(dialog, u"15", u"11"); // 11.25
        TypeKey('0');
        ExpectFields(dialog, u"150", u"113"); // 112.5
    });
    EXPECT_EQ(info.width, 150u);
    EXPECT_EQ(info.height, 113u);
    Take(640, 480, [&](const Dialog& dialog) {
        TypeOver(dialog, HeightField, "96");
        ExpectFields(dialog, u"128", u"96");
    });
    EXPECT_EQ(info.width, 128u);
    EXPECT_EQ(info.height, 96u);
}

TEST_F(ResolutionDialog, ANumberOfPercentCanBeTyped)
{
    Take(5, 3, [&](const Dialog& dialog) {
        ChooseRow(dialog, WidthUnit, 1);
        ExpectFields(dialog, u"100", u"3");
        TypeOver(dialog, WidthField, "150");
        ExpectFields(dialog, u"150", u"5"); // 4.5
        ChooseRow(dialog, HeightUnit, 1);
        ExpectFields(dialog, u"150", u"150");
        ChooseRow(dialog, WidthUnit, 0);
        ExpectFields(dialog, u"8", u"150"); // 7.5
    });
    EXPECT_EQ(info.width, 8u);
    EXPECT_EQ(info.height, 5u);
}

TEST_F(ResolutionDialog, AClearedFieldShowsNothingLeftAndTakesANewNumberBehindIt)
{
    Take(640, 480, [&](const Dialog& dialog) {
        TypeOver(dialog, WidthField, "");
        TypeKey(VK_BACK);
        ExpectFields(dialog, u"0", u"0");
        for (const char key : {'3', '2', '0'})
            TypeKey(key);
        ExpectFields(dialog, u"320", u"240");
        TypeKey(VK_BACK);
        ExpectFields(dialog, u"32", u"24");
        TypeKey(VK_HOME);
        TypeKey('1');
        TypeKey('6'); // the caret has stayed where it was
        ExpectFields(dialog, u"1632", u"1224");
    });
    EXPECT_EQ(info.width, 1632u);
    EXPECT_EQ(info.height, 1224u);
}

TEST_F(ResolutionDialog, ATextThatIsPastedCountsWithItsFractionAndShowsWithout)
{
    Take(200, 100, [&](const Dialog& dialog) {
        ChooseRow(dialog, WidthUnit, 1);
        SetDlgItemTextW(dialog.window, WidthField, u"12.4");
        ExpectFields(dialog, u"12", u"12"); // 12.4 of 100 pixels
    });
    EXPECT_EQ(info.width, 25u); // 24.8
    EXPECT_EQ(info.height, 12u);
    Take(200, 100, [&](const Dialog& dialog) {
        SetDlgItemTextW(dialog.window, WidthField, u"99.5");
        ExpectFields(dialog, u"100", u"50");
    });
    EXPECT_EQ(info.width, 100u);
    EXPECT_EQ(info.height, 50u);
}

TEST_F(ResolutionDialog, WithTheAspectNotKeptEachSideIsItsOwn)
{
    Take(640, 480, [&](const Dialog& dialog) {
        ClickControl(dialog.window, Keep);
        EXPECT_EQ(Checked(dialog), BST_UNCHECKED);
        TypeOver(dialog, WidthField, "100");
        ExpectFields(dialog, u"100", u"480");
        ChooseRow(dialog, HeightUnit, 1);
        TypeOver(dialog, HeightField, "200");
        ExpectFields(dialog, u"100", u"200");
    });
    EXPECT_EQ(info.width, 100u);
    EXPECT_EQ(info.height, 960u);
}

TEST_F(ResolutionDialog, KeepingTheAspectAgainTypesTheOriginalSizeIntoBothFields)
{
    Take(640, 480, [&](const Dialog& dialog) {
        ClickControl(dialog.window, Keep);
        TypeOver(dialog, WidthField, "100");
        TypeOver(dialog, HeightField, "30");
        ClickControl(dialog.window, Keep);
        EXPECT_EQ(Checked(dialog), BST_CHECKED);
        ExpectFields(dialog, u"640", u"480");
        TypeOver(dialog, WidthField, "320");
        ExpectFields(dialog, u"320", u"240");
    });
    EXPECT_EQ(info.width, 320u);
    EXPECT_EQ(info.height, 240u);
    // By the keyboard, and in the middle of nothing.
    Take(640, 480, [&](const Dialog& dialog) {
        SetFocus(dialog.Control(Keep));
        TypeKey(VK_SPACE);
        TypeOver(dialog, HeightField, "30");
        ExpectFields(dialog, u"640", u"30");
        SetFocus(dialog.Control(Keep));
        TypeKey(VK_SPACE);
        ExpectFields(dialog, u"640", u"480");
    });
}

// Pixels are typed into whatever unit a field has: 640 becomes 640 percent, and then the height's
// 480 counts for both.
TEST_F(ResolutionDialog, InPercentTheOriginalPixelsAreTakenForPercent)
{
    Take(640, 480, [&](const Dialog& dialog) {
        ChooseRow(dialog, WidthUnit, 1);
        ChooseRow(dialog, HeightUnit, 1);
        ClickControl(dialog.window, Keep);
        ClickControl(dialog.window, Keep);
        ExpectFields(dialog, u"480", u"480");
    });
    EXPECT_EQ(info.width, 3072u);  // 640 * 4.8
    EXPECT_EQ(info.height, 2304u); // 480 * 4.8
    Take(640, 480, [&](const Dialog& dialog) {
        ChooseRow(dialog, WidthUnit, 1);
        ClickControl(dialog.window, Keep);
        ClickControl(dialog.window, Keep);
        // 640 percent is 3072 lines, and then 480 lines are 100 percent.
        ExpectFields(dialog, u"100", u"480");
    });
    EXPECT_EQ(info.width, 640u);
}

// The box's state has to be exactly ticked and with the keyboard.
TEST_F(ResolutionDialog, ATickWithoutTheKeyboardCountsAsNone)
{
    for (const WORD code : {WORD{0}, WORD{6}, WORD{7}}) {
        Take(640, 480, [&](const Dialog& dialog) {
            const auto notify = [&](WORD told) {
                SendMessageW(dialog.window, WM_COMMAND, static_cast<WPARAM>(MAKELONG(Keep, told)),
                             reinterpret_cast<LPARAM>(dialog.Control(Keep)));
            };
            notify(5); // not one of them
            TypeOver(dialog, WidthField, "64");
            ExpectFields(dialog, u"64", u"48");
            notify(code);
            EXPECT_EQ(Checked(dialog), BST_CHECKED);
            TypeOver(dialog, WidthField, "100");
            ExpectFields(dialog, u"100", u"48");
            SetFocus(dialog.Control(Keep));
            ExpectFields(dialog, u"100", u"48"); // the focus alone tells nothing
            notify(code);
            ExpectFields(dialog, u"640", u"480");
            notify(code); // kept already
            ExpectFields(dialog, u"640", u"480");
        });
    }
}

TEST_F(ResolutionDialog, AnEmptyPictureStaysEmpty)
{
    Take(0, 0, [&](const Dialog& dialog) {
        ExpectFields(dialog, u"0", u"0");
        TypeOver(dialog, WidthField, "150");
        ExpectFields(dialog, u"0", u"0");
        ChooseRow(dialog, HeightUnit, 1);
        TypeOver(dialog, HeightField, "150");
        ExpectFields(dialog, u"0", u"150");
        ClickControl(dialog.window, Keep);
        ClickControl(dialog.window, Keep);
    });
    EXPECT_EQ(info.width, 0u);
    EXPECT_EQ(info.height, 0u);
}

TEST_F(ResolutionDialog, ANumberOfAnyLengthEndsAtTheLargestOne)
{
    Take(640, 480, [&](const Dialog& dialog) {
        TypeOver(dialog, WidthField, std::string(12, '9'));
        ExpectFields(dialog, u"4294967295", u"4294967295");
        SetDlgItemTextW(dialog.window, WidthField, Text(500, u'9').c_str());
        ExpectFields(dialog, u"4294967295", u"4294967295");
        SetDlgItemTextW(dialog.window, HeightField, u"-5");
        ExpectFields(dialog, u"0", u"0");
        SetDlgItemTextW(dialog.window, HeightField, Text(400, u'9').c_str());
    });
    EXPECT_EQ(info.width, 4294967295u);
    EXPECT_EQ(info.height, 4294967295u);
}

TEST_F(ResolutionDialog, IsUsedByTheKeyboardAlone)
{
    EXPECT_EQ(Show([&](const Dialog& dialog) {
                  ExpectTabOrder(dialog, {WidthField, WidthUnit, HeightField, HeightUnit, Keep,
                                          Plugins, IDOK, IDCANCEL});
                  SetFocus(dialog.Control(WidthUnit));
                  TypeKey(VK_DOWN);
                  ExpectFields(dialog, u"100", u"480");
                  TypeOver(dialog, WidthField, "50");
                  TypeKey(VK_RETURN);
              }),
              Done);
    EXPECT_EQ(info.width, 320u);
    EXPECT_EQ(info.height, 240u);
}

TEST_F(ResolutionDialog, GivenUpItChangesNothingInTheRecord)
{
    const std::function<void(const Dialog&)> ways[] = {
        [](const Dialog& dialog) { ClickControl(dialog.window, IDCANCEL); },
        [](const Dialog&) { TypeKey(VK_ESCAPE); },
    };
    for (const auto& way : ways) {
        EXPECT_EQ(Show([&](const Dialog& dialog) {
                      TypeOver(dialog, WidthField, "99");
                      way(dialog);
                  }),
                  NothingDone);
        EXPECT_EQ(info.width, 640u);
        EXPECT_EQ(info.height, 480u);
        EXPECT_EQ(request.chosen, -7);
    }
    EXPECT_EQ(ShowResolutionDialog(owner, instance, nullptr), BadArgument);
}
