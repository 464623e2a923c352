// The dialog about the palette over the real controls.

#include "view/tests/DialogTesting.h"

using namespace dialogtest;

namespace
{

constexpr int State = 1085;
constexpr int Refresh = 1086;

class PaletteInformation : public ::testing::Test
{
protected:
    PaletteInformation() { SetLanguage(1033); }

    int Show(const std::function<void(const Dialog&)>& script)
    {
        return Open([this] { frame.ShowPaletteInformation(); }, script);
    }
    Text StateText()
    {
        Text text;
        Show([&](const Dialog& dialog) {
            text = dialog.Of(State);
            dialog.Close();
        });
        return text;
    }
    /// A picture of 8 bits with that many colours.
    void GivePalette(u32 colors)
    {
        ASSERT_EQ(frame.image->Create(4, 3, 8, nullptr, nullptr), Done);
        ColorTable* palette = nullptr;
        ASSERT_EQ(frame.image->GetPalette(&palette), Done);
        ASSERT_EQ(palette->Create(256), Done);
        for (u32 i = 0; i < colors; ++i)
            ASSERT_EQ(palette->Add(i, i, i, 0), Done);
    }

    Scope scope;
    PenFrame frame;
};

} // namespace

TEST_F(PaletteInformation, WithoutAPaletteItSaysSoInBothLanguages)
{
    EXPECT_EQ(StateText(), u"No Palette...") << "an empty document";
    frame.Show(60, 50);
    EXPECT_EQ(StateText(), u"No Palette...");
    GivePalette(0);
    EXPECT_EQ(StateText(), u"No Palette...") << "room for a palette is none";
    SetLanguage(1041);
    EXPECT_EQ(StateText(), u"No Palette...") << "this text is English everywhere";
}

TEST_F(PaletteInformation, AnyPaletteLeavesTheLineEmpty)
{
    for (const u32 colors : {1u, 256u}) {
        GivePalette(colors);
        EXPECT_EQ(StateText(), u"") << colors;
    }
    ColorTable* palette = nullptr;
    ASSERT_EQ(frame.image->GetPalette(&palette), Done);
    EXPECT_EQ(palette->Count(), 256u) << "looking takes nothing";
}

TEST_F(PaletteInformation, EachLanguageHasItsWords)
{
    const auto words = [this](LANGID language) {
        SetLanguage(language);
        Texts texts;
        Show([&](const Dialog& dialog) {
            texts = {dialog.Caption(), dialog.Of(Refresh), dialog.Of(IDOK)};
            dialog.Close();
        });
        return texts;
    };
    EXPECT_EQ(words(1033),
              (Texts{u"Palette Information", u"Recollect Colors, or Refresh Palette", u"OK"}));
    EXPECT_EQ(words(1041), (Texts{u"パレット情報", u"色を集め直す、またはパレットを更新", u"OK"}));
}

TEST_F(PaletteInformation, TheOtherButtonDoesNothing)
{
    GivePalette(5);
    EXPECT_EQ(Show([](const Dialog& dialog) {
                  EXPECT_TRUE(IsWindowEnabled(dialog.Control(Refresh)));
                  ClickControl(dialog.window, Refresh);
                  Pump(50);
                  EXPECT_TRUE(IsWindowVisible(dialog.window));
                  EXPECT_EQ(dialog.Of(State), u"");
                  dialog.Close();
              }),
              1);
    ColorTable* palette = nullptr;
    ASSERT_EQ(frame.image->GetPalette(&palette), Done);
    EXPECT_EQ(palette->Count(), 5u);
}

TEST_F(PaletteInformation, EveryWayOutEndsItAndNoOtherCommand)
{
    for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
        SetLanguage(language);
        ExpectWaysOut([this] { frame.ShowPaletteInformation(); }, {0, 3, State, Refresh});
    }
}

TEST_F(PaletteInformation, OkHasTheKeyboardFirst)
{
    Show([](const Dialog& dialog) {
        Pump(20);
        ExpectTabOrder(dialog, {IDOK, Refresh});
        TypeKey(VK_ESCAPE);
    });
}
