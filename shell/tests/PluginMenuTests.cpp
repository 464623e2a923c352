// What the plugins found at the start put into the menus.

#include "resources/Ids.h"
#include "tests/support/Program.h"

#include <gtest/gtest.h>

#include <cstdio>

using namespace tavrix::testing;

namespace
{

/// A menu that takes plugins, as a table typed by hand.
struct Menu {
    const char* kind;
    HMENU MainFrame::*popup;
    UINT first;
    UINT placeholder;
    int others; // entries of the popup besides plugins and placeholder
    UINT state;
    const char16_t* english;
    const char16_t* japanese;
};

const Menu menus[] = {
    {"INPUT", &MainFrame::openAsMenu, 41000, 40014, 0, 0, u"no INPUT plugin",
     u"読み込みプラグインがありません"},
    {"OUTPUT", &MainFrame::saveAsMenu, 41100, 40014, 0, 0, u"no OUTPUT plugin",
     u"書き出しプラグインがありません"},
    {"PRINT", &MainFrame::printMenu, 41501, 40014, 0, 0, u"no PRINT plugin",
     u"印刷プラグインがありません"},
    {"EFFECT", &MainFrame::effectMenu, 41200, 40009, 0, 0, u"no EFFECT plugin",
     u"効果プラグインがありません"},
    {"ADJUST", &MainFrame::adjustMenu, 41300, 40010, 0, 0, u"no ADJUST plugin",
     u"調整プラグインがありません"},
    {"SCALE", &MainFrame::methodMenu, 41400, 40016, 1, MF_GRAYED, u"no SCALE plugin",
     u"伸縮プラグインがありません"},
};

std::u16string EntryText(HMENU menu, UINT item, UINT by)
{
    WCHAR text[200] = {};
    GetMenuStringW(menu, item, text, 200, by);
    return text;
}

/// The texts of a menu from top to bottom.
std::vector<std::u16string> Texts(HMENU menu)
{
    std::vector<std::u16string> texts;
    for (int i = 0; i < GetMenuItemCount(menu); ++i)
        texts.push_back(EntryText(menu, static_cast<UINT>(i), MF_BYPOSITION));
    return texts;
}

bool HasEntry(HMENU menu, UINT id)
{
    return GetMenuState(menu, id, MF_BYCOMMAND) != static_cast<UINT>(-1);
}

/// Runs the program with no file. Without an INPUT plugin it tells so in a box at the start.
void RunAlone(const Step& step)
{
    OnModal([](HWND dialog, bool box) {
        if (box)
            EndDialog(dialog, IDOK);
    });
    RunProgram(u"", step);
}

void ExpectPlaceholders(LANGID language)
{
    Scope scope;
    SetLanguage(language);
    RunAlone([&](MainFrame& frame) {
        for (const Menu& menu : menus) {
            SCOPED_TRACE(menu.kind);
            const HMENU popup = frame.*menu.popup;
            ASSERT_EQ(GetMenuItemCount(popup), menu.others + 1);
            EXPECT_EQ(EntryText(popup, static_cast<UINT>(menu.others), MF_BYPOSITION),
                      language == 1041 ? menu.japanese : menu.english);
            EXPECT_EQ(GetMenuState(popup, menu.placeholder, MF_BYCOMMAND), UINT{MF_GRAYED});
        }
    });
}

} // namespace

TEST(PluginMenus, WithoutPluginsEveryPopupKeepsItsGrayPlaceholder)
{
    ExpectPlaceholders(1033);
}

TEST(PluginMenus, ThePlaceholdersAreToldInJapaneseToo)
{
    ExpectPlaceholders(1041);
}

TEST(PluginMenus, EachKindsPluginsStandInTheirOwnPopupInPlaceOfThePlaceholder)
{
    for (const Menu& menu : menus) {
        InstallLabelled(menu.kind, "1.First " + std::string(menu.kind));
        InstallLabelled(menu.kind, "2.Second");
    }
    RunAlone([](MainFrame& frame) {
        for (const Menu& menu : menus) {
            SCOPED_TRACE(menu.kind);
            const HMENU popup = frame.*menu.popup;
            ASSERT_EQ(GetMenuItemCount(popup), menu.others + 2);
            const UINT others = static_cast<UINT>(menu.others);
            const std::u16string first = u"First " + Wide(menu.kind);
            EXPECT_EQ(EntryText(popup, others, MF_BYPOSITION), first);
            EXPECT_EQ(EntryText(popup, menu.first, MF_BYCOMMAND), first);
            EXPECT_EQ(EntryText(popup, others + 1, MF_BYPOSITION), u"Second");
            EXPECT_EQ(EntryText(popup, menu.first + 1, MF_BYCOMMAND), u"Second");
            EXPECT_EQ(GetMenuState(popup, menu.first, MF_BYCOMMAND), menu.state);
            EXPECT_EQ(GetMenuState(popup, menu.first + 1, MF_BYCOMMAND), menu.state);
            EXPECT_FALSE(HasEntry(popup, menu.placeholder));
            EXPECT_FALSE(HasEntry(popup, menu.first + 2));
        }
    });
}

TEST(PluginMenus, ThePopupOfMethodsKeepsItsBuiltInEntryCheckedOnTop)
{
    InstallLabelled("SCALE", "1.Fine");
    RunAlone([](MainFrame& frame) {
        EXPECT_EQ(Texts(frame.methodMenu), (std::vector<std::u16string>{u"built-in NN", u"Fine"}));
        EXPECT_EQ(GetMenuState(frame.methodMenu, 40015, MF_BYCOMMAND), UINT{MF_CHECKED});
    });
}

TEST(PluginMenus, APictureEnablesThePopupsAndNoEntryOfTheMethods)
{
    for (const Menu& menu : menus)
        InstallLabelled(menu.kind, "1.One");
    RunAlone([](MainFrame& frame) {
        frame.EnableImageMenus();
        for (const Menu& menu : menus)
            EXPECT_EQ(GetMenuState(frame.*menu.popup, menu.first, MF_BYCOMMAND), menu.state)
                << menu.kind;
    });
}

TEST(PluginMenus, PluginsThatReduceColoursHaveNoMenuAndStreamsAndHistoryKeepTheirPlaceholders)
{
    for (const char* kind : {"INPUT", "OUTPUT", "PRINT", "EFFECT", "ADJUST", "SCALE", "SUBTRACT"})
        InstallLabelled(kind, "1.Reducer of " + std::string(kind));
    RunAlone([](MainFrame& frame) {
        EXPECT_EQ(frame.subtractNames->Count(), 1);
        const std::u16string name = u"Reducer of SUBTRACT";
        for (const Menu& menu : menus)
            for (const std::u16string& text : Texts(frame.*menu.popup))
                EXPECT_NE(text, name) << menu.kind;
        EXPECT_EQ(Texts(frame.streamMenu), std::vector<std::u16string>{u"no STREAM plugin"});
        EXPECT_EQ(GetMenuState(frame.streamMenu, 40014, MF_BYCOMMAND), UINT{MF_GRAYED});
        const HMENU history = GetSubMenu(frame.openMenu, 5);
        EXPECT_EQ(Texts(history), std::vector<std::u16string>{u"no history to open"});
    });
}

TEST(PluginMenus, AMenuStopsAtAHundredEntriesAndTheListGoesOn)
{
    for (int i = 0; i < 101; ++i) {
        char label[16];
        std::snprintf(label, sizeof label, "%03d.N%03d", i, i);
        InstallLabelled("INPUT", label);
    }
    RunAlone([](MainFrame& frame) {
        EXPECT_EQ(frame.inputPlugins->Count(), 101);
        EXPECT_EQ(frame.inputNames->Count(), 101);
        ASSERT_EQ(GetMenuItemCount(frame.openAsMenu), 100);
        for (UINT i = 0; i < 100; ++i) {
            const std::string number = std::to_string(1000 + i).substr(1);
            EXPECT_EQ(EntryText(frame.openAsMenu, i, MF_BYPOSITION), u"N" + Wide(number));
            EXPECT_EQ(EntryText(frame.openAsMenu, 41000 + i, MF_BYCOMMAND), u"N" + Wide(number));
        }
        EXPECT_FALSE(HasEntry(frame.openAsMenu, 41100));
    });
}

TEST(PluginMenus, PluginsOfOneNameShareAnEntryThatMeansTheLaterOne)
{
    InstallLabelled("EFFECT", "1.Same");
    InstallLabelled("EFFECT", "2.Other");
    InstallLabelled("EFFECT", "3.Same");
    InstallLabelled("EFFECT", "4.Last");
    RunAlone([](MainFrame& frame) {
        EXPECT_EQ(frame.effectPlugins->Count(), 4);
        EXPECT_EQ(Texts(frame.effectMenu),
                  (std::vector<std::u16string>{u"Same", u"Other", u"Last"}));
        EXPECT_EQ(EntryText(frame.effectMenu, 41202, MF_BYCOMMAND), u"Last");
        u32 index = 99;
        EXPECT_EQ(frame.effectNames->GetUnsigned(u"Same", &index), Done);
        EXPECT_EQ(index, 2u);
        EXPECT_EQ(frame.effectNames->GetUnsigned(u"Last", &index), Done);
        EXPECT_EQ(index, 3u);
    });
}

TEST(PluginMenus, ANamelessPluginHasNoEntryAndTheNextOneMovesUp)
{
    InstallLabelled("ADJUST", "1.-");
    InstallLabelled("ADJUST", "2.Named");
    RunAlone([](MainFrame& frame) {
        EXPECT_EQ(frame.adjustPlugins->Count(), 2);
        EXPECT_EQ(Texts(frame.adjustMenu), std::vector<std::u16string>{u"Named"});
        EXPECT_EQ(EntryText(frame.adjustMenu, 41300, MF_BYCOMMAND), u"Named");
        u32 index = 99;
        EXPECT_EQ(frame.adjustNames->GetUnsigned(u"Named", &index), Done);
        EXPECT_EQ(index, 1u);
    });
}

TEST(PluginMenus, AKindOfNamelessPluginsAloneKeepsItsPlaceholder)
{
    InstallLabelled("EFFECT", "1.-");
    InstallLabelled("EFFECT", "2.-");
    RunAlone([](MainFrame& frame) {
        EXPECT_EQ(frame.effectPlugins->Count(), 2);
        EXPECT_EQ(Texts(frame.effectMenu), std::vector<std::u16string>{u"no EFFECT plugin"});
    });
}

TEST(PluginMenus, EntriesStandInTheOrderOfTheFilesAndNotOfTheNames)
{
    InstallLabelled("OUTPUT", "3.Apple");
    InstallLabelled("OUTPUT", "1.Pear");
    InstallLabelled("OUTPUT", "2.Melon");
    RunAlone([](MainFrame& frame) {
        EXPECT_EQ(Texts(frame.saveAsMenu),
                  (std::vector<std::u16string>{u"Pear", u"Melon", u"Apple"}));
    });
}

// The fixture can do nothing but tell its name: an effect and an adjustment by it warn about its
// settings and fail.
TEST(PluginMenus, ChoosingAnEntryHarmsNothing)
{
    Scope scope;
    SetLanguage(1033);
    for (const Menu& menu : menus)
        InstallLabelled(menu.kind, "1.One");
    RunAlone([](MainFrame& frame) {
        std::vector<std::u16string> told;
        OnModal([&](HWND dialog, bool box) {
            told.push_back(box ? BoxText(dialog) : ControlText(dialog, ControlHeadline));
            if (box)
                EndDialog(dialog, IDOK);
            else if (GetDlgItem(dialog, ControlFileList) != nullptr)
                EndDialog(dialog, 0);
        });
        const std::u16string warning =
            u"Failed to initialize plugin settings, but enforce next process...";
        for (const Menu& menu : menus) {
            SCOPED_TRACE(menu.kind);
            told.clear();
            for (UINT i = 0; i < 100; ++i)
                EXPECT_EQ(SendMessageW(frame.window, WM_COMMAND, menu.first + i, 0), 0);
            std::vector<std::u16string> expected;
            if (menu.first == 41000)
                expected = {u"Open As"};
            if (menu.first == 41200)
                expected = {warning, u"Effecting an image..."};
            if (menu.first == 41300)
                expected = {warning, u"Adjusting an image..."};
            EXPECT_EQ(told, expected);
        }
        EXPECT_EQ(frame.imagePresent, 0u);
        EXPECT_EQ(frame.openedPath[0], 0);
        EXPECT_TRUE(IsWindowEnabled(frame.window));
        OnModal(nullptr);
    });
}
