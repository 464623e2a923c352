// The plugin information dialog over the real controls, in the whole program.

#include "platform/testing/core/TestHome.h"
#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include "platform/testing/core/TestPaths.h"
#include <commctrl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

using namespace tavrix::testing;
namespace fs = std::filesystem;

namespace
{

using Text = std::u16string;
using Texts = std::vector<Text>;

const char* const kinds[] = {"INPUT", "OUTPUT", "EFFECT", "ADJUST", "SCALE", "SUBTRACT", "PRINT"};
const Text englishDescription = u"Description of selected plugin is displayed here.";
const Text japaneseDescription = u"こちらに選択したプラグインの説明が表示されます。";

std::string Fixture(const std::string& name)
{
    return tavrix::testing::InBuild("/tests/plugins/fixtures/") + name + ".dll";
}

fs::path PluginFile(const std::string& kind, const std::string& file)
{
    return fs::path(TestHome()) / "data" / "tavrix" / "PLUGINS" / kind / (file + ".dll");
}

/// Whether a plugin of this test's own folder is in the process.
bool AnyPluginMapped()
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find("/PLUGINS/") != std::string::npos)
            return true;
    return false;
}

/// The dialog while it is open.
struct Dialog {
    HWND window;

    HWND Control(int id) const { return GetDlgItem(window, id); }
    Text Of(int id) const { return ControlText(window, id); }

    HTREEITEM Next(WPARAM relation, HTREEITEM from = nullptr) const
    {
        return reinterpret_cast<HTREEITEM>(
            SendMessageW(Control(1080), TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(from)));
    }
    TVITEMW Item(HTREEITEM item, WCHAR* text, int capacity) const
    {
        TVITEMW record = {};
        record.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
        record.hItem = item;
        record.pszText = text;
        record.cchTextMax = capacity;
        EXPECT_NE(SendMessageW(Control(1080), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&record)),
                  0);
        return record;
    }
    Text ItemText(HTREEITEM item) const
    {
        WCHAR text[2000] = {};
        (void)Item(item, text, 2000);
        return text;
    }
    u32 Word(HTREEITEM item) const
    {
        WCHAR text[2000] = {};
        return static_cast<u32>(Item(item, text, 2000).lParam);
    }
    std::vector<HTREEITEM> Groups() const
    {
        std::vector<HTREEITEM> items;
        for (HTREEITEM i = Next(TVGN_ROOT); i != nullptr; i = Next(TVGN_NEXT, i))
            items.push_back(i);
        return items;
    }
    HTREEITEM Group(size_t kind) const { return Groups().at(kind); }
    std::vector<HTREEITEM> Children(size_t kind) const
    {
        std::vector<HTREEITEM> items;
        for (HTREEITEM i = Next(TVGN_CHILD, Group(kind)); i != nullptr; i = Next(TVGN_NEXT, i))
            items.push_back(i);
        return items;
    }
    Texts Names(size_t kind) const
    {
        Texts texts;
        for (const HTREEITEM item : Children(kind))
            texts.push_back(ItemText(item));
        return texts;
    }

    void Select(HTREEITEM item) const
    {
        SendMessageW(Control(1080), TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
        Pump(5);
    }
    void Select(size_t kind, size_t child) const { Select(Children(kind).at(child)); }
    void Expand(size_t kind) const
    {
        SendMessageW(Control(1080), TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(Group(kind)));
        Pump(20);
    }

    Text Cell(int row, int column) const
    {
        WCHAR text[2000] = {};
        LVITEMW record = {};
        record.iSubItem = column;
        record.pszText = text;
        record.cchTextMax = 2000;
        SendMessageW(Control(1081), LVM_GETITEMTEXTW, static_cast<WPARAM>(row),
                     reinterpret_cast<LPARAM>(&record));
        return text;
    }
    /// The second column from top to bottom, and the description behind it.
    Texts Details() const
    {
        Texts texts;
        for (int row = 0; row < 4; ++row)
            texts.push_back(Cell(row, 1));
        texts.push_back(Of(1083));
        return texts;
    }

    void Command(WPARAM id) const { SendMessageW(window, WM_COMMAND, id, 0); }

    /// The middles of the rows in which the tree shows a plugin's icon, each a little right of it.
    std::vector<POINT> PluginRows() const
    {
        constexpr uint32_t plug = 0xFFD048; // of resources/pictures/plugin.txt
        const Picture picture = WindowPixels(Control(1080));
        RECT place = {};
        GetWindowRect(Control(1080), &place);
        std::vector<POINT> rows;
        int last = -2;
        int top = 0;
        for (int y = 0; y < picture.height; ++y)
            for (int x = picture.width - 1; x >= 0; --x)
                if (picture.At(x, y) == plug) {
                    if (y != last + 1) {
                        top = y;
                        rows.push_back({});
                    }
                    rows.back() = {place.left + x + 12, place.top + (top + y) / 2};
                    last = y;
                    break;
                }
        return rows;
    }
};

/// Opens the dialog by its command, works with it and ends it.
void InDialog(MainFrame& frame, const std::function<void(const Dialog&)>& work)
{
    int dialogs = 0;
    OnModal([&](HWND window, bool box) {
        ASSERT_FALSE(box);
        ++dialogs;
        Pump(20);
        work({window});
        EndDialog(window, 0);
    });
    SendMessageW(frame.window, WM_COMMAND, 40068, 0);
    OnModal(nullptr);
    EXPECT_EQ(dialogs, 1);
    EXPECT_TRUE(IsWindowEnabled(frame.window));
}

/// Runs the program with no file. Without formats to read it tells so in a box at the start.
void RunAlone(const std::vector<Step>& steps)
{
    OnModal([](HWND box, bool) { EndDialog(box, IDOK); });
    RunProgram(u"", steps);
}

/// The same with the dialog as its one step.
void RunDialog(const std::function<void(const Dialog&)>& work)
{
    RunAlone({[&](MainFrame& frame) { InDialog(frame, work); }});
}

} // namespace

TEST(PluginInformation, WithNoPluginsEveryGroupHoldsNotFoundAndSelectingItChangesNothing)
{
    Scope scope;
    SetLanguage(1033);
    RunDialog([](const Dialog& dialog) {
        ASSERT_EQ(dialog.Groups().size(), 7u);
        for (size_t kind = 0; kind < 7; ++kind) {
            SCOPED_TRACE(kinds[kind]);
            EXPECT_EQ(dialog.ItemText(dialog.Group(kind)), Wide(kinds[kind]));
            EXPECT_EQ(dialog.Word(dialog.Group(kind)), 0xFFFF0000u + kind);
            ASSERT_EQ(dialog.Names(kind), Texts{u"NOT FOUND..."});
            EXPECT_EQ(dialog.Word(dialog.Children(kind)[0]), 0xFFFFFFFFu);
            dialog.Select(kind, 0);
            EXPECT_EQ(dialog.Next(TVGN_CARET), dialog.Children(kind)[0]);
            EXPECT_EQ(dialog.Details(), (Texts{u"", u"", u"", u"", englishDescription}));
        }
    });
}

TEST(PluginInformation, EachPluginStandsUnderItsKindWithKindAndIndexAsItsWord)
{
    for (const char* kind : kinds) {
        InstallLabelled(kind, "1.First " + std::string(kind));
        InstallLabelled(kind, "2.Second");
    }
    RunDialog([](const Dialog& dialog) {
        for (size_t kind = 0; kind < 7; ++kind) {
            SCOPED_TRACE(kinds[kind]);
            ASSERT_EQ(dialog.Names(kind), (Texts{u"First " + Wide(kinds[kind]), u"Second"}));
            EXPECT_EQ(dialog.Word(dialog.Children(kind)[0]), kind << 16);
            EXPECT_EQ(dialog.Word(dialog.Children(kind)[1]), (kind << 16) + 1);
        }
    });
}

TEST(PluginInformation, TheFourRowsAndTheDescriptionAreThoseOfTheSelectedPlugin)
{
    Scope scope;
    SetLanguage(1033);
    for (const char* kind : kinds) {
        const std::string word = kind;
        InstallLabelled(kind, "1.N" + word + ".V" + word + ".C" + word + ".D" + word + ".Text of " +
                                  word);
    }
    RunDialog([](const Dialog& dialog) {
        const Texts titles = {u"Name", u"Version", u"Copyright", u"Date"};
        EXPECT_EQ(SendMessageW(dialog.Control(1081), LVM_GETITEMCOUNT, 0, 0), 4);
        for (int row = 0; row < 4; ++row)
            EXPECT_EQ(dialog.Cell(row, 0), titles[static_cast<size_t>(row)]);
        EXPECT_EQ(SendMessageW(dialog.Control(1081), LVM_GETCOLUMNWIDTH, 0, 0), 50);
        EXPECT_EQ(SendMessageW(dialog.Control(1081), LVM_GETCOLUMNWIDTH, 1, 0), 180);
        EXPECT_EQ(dialog.Details(), (Texts{u"", u"", u"", u"", englishDescription}));
        // From the last kind to the first, so that no two look alike by order.
        for (size_t kind = 7; kind-- > 0;) {
            const Text word = Wide(kinds[kind]);
            dialog.Select(kind, 0);
            EXPECT_EQ(dialog.Details(), (Texts{u"N" + word, u"V" + word, u"C" + word, u"D" + word,
                                               u"Text of " + word}));
        }
    });
}

TEST(PluginInformation, APluginWithoutANameIsNotInTheTreeAndTheNextOneKeepsItsIndex)
{
    InstallLabelled("EFFECT", "1.-.9.c.d.Nameless");
    InstallLabelled("EFFECT", "2.Named.8.c.d.Right");
    InstallPlugin(Fixture("throws"));
    InstallPlugin(Fixture("nameless"));
    RunDialog([](const Dialog& dialog) {
        ASSERT_EQ(dialog.Names(2), Texts{u"Named"});
        EXPECT_EQ(dialog.Word(dialog.Children(2)[0]), 0x00020001u);
        dialog.Select(2, 0);
        EXPECT_EQ(dialog.Details(), (Texts{u"Named", u"8", u"c", u"d", u"Right"}));
        // A kind that has plugins and no name of one has no child at all. It stays a group.
        const Texts before = dialog.Details();
        EXPECT_TRUE(dialog.Children(0).empty());
        dialog.Select(dialog.Group(0));
        EXPECT_EQ(dialog.Details(), before);
    });
}

TEST(PluginInformation, WhatAPluginDoesNotAnswerKeepsTheTextsOfTheOneSelectedBefore)
{
    InstallLabelled("INPUT", "1.Alpha.1.Alice.May.About alpha");
    InstallLabelled("INPUT", "2.Beta.2.-.June.About beta");
    InstallLabelled("INPUT", "3.Gamma.-.Gina.-");
    RunDialog([](const Dialog& dialog) {
        dialog.Select(0, 0);
        EXPECT_EQ(dialog.Details(), (Texts{u"Alpha", u"1", u"Alice", u"May", u"About alpha"}));
        dialog.Select(0, 1);
        EXPECT_EQ(dialog.Details(), (Texts{u"Beta", u"2", u"Alice", u"June", u"About beta"}));
        dialog.Select(0, 2);
        EXPECT_EQ(dialog.Details(), (Texts{u"Gamma", u"2", u"Gina", u"June", u"About beta"}));
    });
}

TEST(PluginInformation, OnlyAChangeOfTheSelectionAsksThePlugin)
{
    InstallLabelled("INPUT", "1.One.1.Me.Today.Words");
    RunDialog([](const Dialog& dialog) {
        dialog.Select(0, 0);
        SetDlgItemTextW(dialog.window, 1083, TEXT("typed over"));
        NMHDR header = {dialog.Control(1080), 1080, NM_CLICK};
        SendMessageW(dialog.window, WM_NOTIFY, 1080, reinterpret_cast<LPARAM>(&header));
        EXPECT_EQ(dialog.Of(1083), u"typed over");
        header.code = TVN_SELCHANGEDW;
        SendMessageW(dialog.window, WM_NOTIFY, 1080, reinterpret_cast<LPARAM>(&header));
        EXPECT_EQ(dialog.Of(1083), u"Words");
    });
}

TEST(PluginInformation, GroupsAndNotFoundChangeNothingBehindAPlugin)
{
    InstallLabelled("ADJUST", "1.One.1.Me.Today.Words");
    RunDialog([](const Dialog& dialog) {
        dialog.Select(3, 0);
        const Texts shown = {u"One", u"1", u"Me", u"Today", u"Words"};
        ASSERT_EQ(dialog.Details(), shown);
        for (size_t kind = 0; kind < 7; ++kind) {
            dialog.Select(dialog.Group(kind));
            EXPECT_EQ(dialog.Details(), shown);
            if (kind == 3)
                continue;
            dialog.Select(kind, 0);
            EXPECT_EQ(dialog.Details(), shown);
        }
    });
}

TEST(PluginInformation, TheTreeListsMoreThanTheMenuTakes)
{
    for (int i = 0; i < 103; ++i) {
        char label[40];
        std::snprintf(label, sizeof label, "%03d.N%03d.V%03d", i, i, i);
        InstallLabelled("EFFECT", label);
    }
    RunAlone({[](MainFrame& frame) {
        EXPECT_EQ(GetMenuItemCount(frame.effectMenu), 100);
        InDialog(frame, [](const Dialog& dialog) {
            const std::vector<HTREEITEM> items = dialog.Children(2);
            ASSERT_EQ(items.size(), 103u);
            for (u32 i = 0; i < 103; ++i) {
                EXPECT_EQ(dialog.ItemText(items[i]),
                          u"N" + Wide(std::to_string(1000 + i).substr(1)));
                EXPECT_EQ(dialog.Word(items[i]), 0x00020000u + i);
            }
            dialog.Select(items[102]);
            EXPECT_EQ(dialog.Cell(0, 1), u"N102");
            EXPECT_EQ(dialog.Cell(1, 1), u"V102");
        });
    }});
}

namespace
{

struct Words {
    LANGID language;
    Text title;
    Text description;
    Texts names;
    Texts jpeg;
    Texts sample;
};

bool Holds(const Texts& names, const Text& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

// Files are taken by name: good.dll stands behind AVIF, BMP and GIF.
void ExpectBundled(const Words& words)
{
    Scope scope;
    SetLanguage(words.language);
    InstallBundledPlugins();
    InstallPlugin(Fixture("good"));
    InstallPlugin(Fixture("kind_EFFECT"), "EFFECT");
    InstallPlugin(Fixture("kind_PRINT"), "PRINT");
    RunDialog([&](const Dialog& dialog) {
        EXPECT_EQ(dialog.Of(1004), words.title);
        EXPECT_EQ(dialog.Of(1083), words.description);
        EXPECT_EQ(dialog.Of(2), u"x");
        ASSERT_EQ(dialog.Names(0), words.names);
        EXPECT_TRUE(Holds(dialog.Names(2), u"Name of EFFECT"));
        EXPECT_TRUE(Holds(dialog.Names(6), u"Name of PRINT"));
        dialog.Select(0, 6);
        EXPECT_EQ(dialog.Details(), words.jpeg);
        dialog.Select(0, 3);
        EXPECT_EQ(dialog.Details(), words.sample);
    });
}

} // namespace

TEST(PluginInformation, TheBundledPluginsTellAboutThemselvesInEnglish)
{
    ExpectBundled({1033,
                   u"Plugin Information",
                   englishDescription,
                   {u"AVIF reader", u"BMP reader", u"GIF reader", u"Sample", u"HEIF reader",
                    u"ICO reader", u"JPEG reader", u"JPEG XL reader", u"PCX reader", u"PNG reader",
                    u"PNM reader", u"TGA reader", u"TIFF reader", u"WebP reader"},
                   {u"JPEG reader", u"1.1", u"Copyright (c) 2026 The Tavrix authors", u"2026-11-22",
                    u"Reads JPEG pictures, baseline and progressive, grey, colour and CMYK."},
                   // It gives the number of the language that it was told, which is none here.
                   {u"Sample", u"00", u"Copyright (c) 2026 The Tavrix authors", u"2026-11-22",
                    u"Reads JPEG pictures, baseline and progressive, grey, colour and CMYK."}});
}

TEST(PluginInformation, TheBundledPluginsTellAboutThemselvesInJapanese)
{
    const Text text =
        u"ベースラインとプログレッシブの JPEG 画像 (グレー、カラー、CMYK) を読み込みます。";
    ExpectBundled(
        {1041,
         u"プラグイン情報",
         japaneseDescription,
         {u"AVIF 読み込み", u"BMP 読み込み", u"GIF 読み込み", u"見本", u"HEIF 読み込み",
          u"ICO 読み込み", u"JPEG 読み込み", u"JPEG XL 読み込み", u"PCX 読み込み", u"PNG 読み込み",
          u"PNM 読み込み", u"TGA 読み込み", u"TIFF 読み込み", u"WebP 読み込み"},
         {u"JPEG 読み込み", u"1.1", u"Copyright (c) 2026 The Tavrix authors", u"2026-11-22", text},
         {u"見本", u"17", u"Copyright (c) 2026 The Tavrix authors", u"2026-11-22", text}});
}

TEST(PluginInformation, ATextWithoutAnEndIsCutAndAnAnswerWithoutATextIsEmpty)
{
    InstallLabelled("INPUT", "1.One.1.Me.Today.Words");
    InstallPlugin(Fixture("silent_answers"));
    InstallPlugin(Fixture("unterminated"));
    RunDialog([](const Dialog& dialog) {
        ASSERT_EQ(dialog.Names(0), (Texts{u"One", u"Silent", Text(1023, u'b')}));
        dialog.Select(0, 0);
        EXPECT_EQ(dialog.Cell(1, 1), u"1");
        dialog.Select(0, 1);
        EXPECT_EQ(dialog.Details(), (Texts{u"Silent", u"", u"", u"", u""}));
        dialog.Select(0, 2);
        EXPECT_EQ(dialog.Details(), (Texts{Text(1023, u'b'), Text(1023, u'c'), Text(1023, u'd'),
                                           Text(1023, u'e'), Text(1023, u'f')}));
    });
}

TEST(PluginInformation, TheTreeShowsAFolderForEachGroupAndAPlugForEachPlugin)
{
    InstallLabelled("SCALE", "1.One");
    InstallLabelled("SCALE", "2.Two");
    RunDialog([](const Dialog& dialog) {
        const auto groupRows = [&] {
            constexpr uint32_t face = 0xFFD868; // of resources/pictures/folder.txt
            const Picture picture = WindowPixels(dialog.Control(1080));
            int rows = 0;
            bool before = false;
            for (int y = 0; y < picture.height; ++y) {
                bool found = false;
                for (int x = 0; x < picture.width; ++x)
                    found = found || picture.At(x, y) == face;
                rows += found && !before ? 1 : 0;
                before = found;
            }
            return rows;
        };
        EXPECT_EQ(groupRows(), 7);
        EXPECT_EQ(dialog.PluginRows().size(), 0u);
        dialog.Expand(4);
        EXPECT_EQ(groupRows(), 7);
        EXPECT_EQ(dialog.PluginRows().size(), 2u);
    });
}

TEST(PluginInformation, APluginIsSelectedByThePointer)
{
    InstallLabelled("OUTPUT", "1.One.1.Me.Today.Words");
    InstallLabelled("OUTPUT", "2.Two.2.You.Tomorrow.Others");
    RunDialog([](const Dialog& dialog) {
        dialog.Expand(1);
        const std::vector<POINT> rows = dialog.PluginRows();
        ASSERT_EQ(rows.size(), 2u);
        ClickScreen(rows[1].x, rows[1].y);
        Pump(20);
        EXPECT_EQ(dialog.Details(), (Texts{u"Two", u"2", u"You", u"Tomorrow", u"Others"}));
        ClickScreen(rows[0].x, rows[0].y);
        Pump(20);
        EXPECT_EQ(dialog.Details(), (Texts{u"One", u"1", u"Me", u"Today", u"Words"}));
    });
}

TEST(PluginInformation, APluginIsSelectedByTheKeys)
{
    InstallLabelled("INPUT", "1.One.1.Me.Today.Words");
    InstallLabelled("INPUT", "2.Two.2.You.Tomorrow.Others");
    RunDialog([](const Dialog& dialog) {
        EXPECT_EQ(GetFocus(), dialog.Control(1080)) << "the tree has the keyboard at the start";
        TypeKey(VK_HOME);
        TypeKey(VK_RIGHT); // opens the group
        TypeKey(VK_DOWN);
        TypeKey(VK_DOWN);
        Pump(20);
        EXPECT_EQ(dialog.Details(), (Texts{u"Two", u"2", u"You", u"Tomorrow", u"Others"}));
        TypeKey(VK_UP);
        Pump(20);
        EXPECT_EQ(dialog.Details(), (Texts{u"One", u"1", u"Me", u"Today", u"Words"}));
        TypeKey(VK_UP);
        Pump(20);
        EXPECT_EQ(dialog.Next(TVGN_CARET), dialog.Group(0));
        EXPECT_EQ(dialog.Cell(0, 1), u"One");
    });
}

TEST(PluginInformation, TabGoesFromTreeToListToDescriptionToButton)
{
    RunDialog([](const Dialog& dialog) {
        for (const int id : {1080, 1081, 1083, 2, 1080}) {
            EXPECT_EQ(GetFocus(), dialog.Control(id)) << id;
            TypeKey(VK_TAB);
            Pump(5);
        }
    });
}

namespace
{

/// Opens the dialog and acts; answers whether that closed it.
bool IsClosedBy(const std::function<void(const Dialog&)>& act)
{
    InstallLabelled("INPUT", "1.One.1.Me.Today.Words");
    static HWND opened = nullptr;
    static bool closed = true;
    RunAlone({[&](MainFrame& frame) {
        OnModal([&](HWND window, bool) {
            OnModal(nullptr);
            Pump(20);
            opened = window;
            const Dialog dialog = {window};
            dialog.Select(0, 0);
            act(dialog);
            // The loop ends at once if the act has ended the dialog.
            SetTimer(nullptr, 0, 300, [](HWND, UINT, UINT_PTR id, DWORD) {
                KillTimer(nullptr, id);
                if (!IsWindow(opened))
                    return;
                closed = false;
                EndDialog(opened, 0);
            });
        });
        SendMessageW(frame.window, WM_COMMAND, 40068, 0);
        EXPECT_FALSE(IsWindow(opened));
        EXPECT_TRUE(IsWindowEnabled(frame.window));
        EXPECT_FALSE(AnyPluginMapped());
    }});
    return closed;
}

} // namespace

TEST(PluginInformation, EscClosesIt)
{
    EXPECT_TRUE(IsClosedBy([](const Dialog&) { TypeKey(VK_ESCAPE); }));
}

TEST(PluginInformation, EscClosesItFromTheDescriptionToo)
{
    EXPECT_TRUE(IsClosedBy([](const Dialog& dialog) {
        SetFocus(dialog.Control(1083));
        TypeKey(VK_ESCAPE);
    }));
}

TEST(PluginInformation, EnterOnTheButtonClosesIt)
{
    EXPECT_TRUE(IsClosedBy([](const Dialog& dialog) {
        SetFocus(dialog.Control(2));
        TypeKey(VK_RETURN);
    }));
}

TEST(PluginInformation, EnterInTheTreeClosesIt)
{
    EXPECT_TRUE(IsClosedBy([](const Dialog& dialog) {
        SetFocus(dialog.Control(1080));
        TypeKey(VK_RETURN);
    }));
}

TEST(PluginInformation, AClickOnTheButtonClosesIt)
{
    EXPECT_TRUE(IsClosedBy([](const Dialog& dialog) { ClickControl(dialog.window, 2); }));
}

TEST(PluginInformation, TheCommandOfOkClosesIt)
{
    EXPECT_TRUE(IsClosedBy([](const Dialog& dialog) { dialog.Command(1); }));
}

TEST(PluginInformation, TheCommandsZeroAndThreeAndThoseOfItsControlsLeaveItOpen)
{
    EXPECT_FALSE(IsClosedBy([](const Dialog& dialog) {
        dialog.Command(0);
        dialog.Command(3);
        dialog.Command(1083);
    }));
}

TEST(PluginInformation, NothingOfAPluginStaysMappedWhileTheDialogIsOpenOrBehindIt)
{
    for (const char* kind : kinds)
        InstallLabelled(kind, "1.One.1.Me.Today.Words");
    RunAlone({[](MainFrame& frame) {
        EXPECT_FALSE(AnyPluginMapped());
        InDialog(frame, [&](const Dialog& dialog) {
            EXPECT_FALSE(AnyPluginMapped());
            for (size_t kind = 0; kind < 7; ++kind) {
                dialog.Select(kind, 0);
                EXPECT_FALSE(AnyPluginMapped()) << kinds[kind];
            }
        });
        EXPECT_FALSE(AnyPluginMapped());
    }});
}

TEST(PluginInformation, APluginWhoseFileGoesWhileTheDialogIsOpenIsANodeWithoutDetails)
{
    InstallLabelled("INPUT", "1.One.1.Me.Today.Words");
    InstallLabelled("INPUT", "2.Two.2.You.Tomorrow.Others");
    InstallLabelled("INPUT", "3.Three.3.They.Later.More");
    RunDialog([](const Dialog& dialog) {
        dialog.Select(0, 0);
        const Texts before = dialog.Details();
        fs::remove(PluginFile("INPUT", "2.Two.2.You.Tomorrow.Others"));
        dialog.Select(0, 1);
        EXPECT_EQ(dialog.Details(), before);
        EXPECT_EQ(dialog.Names(0), (Texts{u"One", u"Two", u"Three"}));
        dialog.Select(0, 2);
        EXPECT_EQ(dialog.Details(), (Texts{u"Three", u"3", u"They", u"Later", u"More"}));
    });
}

TEST(PluginInformation, APluginThatIsGoneWhenTheDialogOpensEndsItsGroup)
{
    for (const char* kind : {"INPUT", "OUTPUT"})
        for (const char* label : {"1.One", "2.Two", "3.Three"})
            InstallLabelled(kind, label);
    RunAlone({[](MainFrame& frame) {
        fs::remove(PluginFile("INPUT", "2.Two"));
        fs::remove(PluginFile("OUTPUT", "1.One"));
        InDialog(frame, [](const Dialog& dialog) {
            EXPECT_EQ(dialog.Names(0), Texts{u"One"});
            EXPECT_EQ(dialog.Names(1), Texts{u"NOT FOUND..."});
        });
    }});
}

TEST(PluginInformation, AHandedOverPictureWaitsForTheEndOfTheDialog)
{
    InstallPlugin(tavrix::testing::InBuild("/tests/shell-fixtures/quick.dll"));
    const std::string file = TestHome() + "/a.quick";
    std::ofstream(file) << "x";
    RunAlone({[&](MainFrame& frame) {
        InDialog(frame, [&](const Dialog& dialog) {
            dialog.Select(0, 0);
            Text path = DevicePath(file);
            COPYDATASTRUCT record = {};
            record.cbData = static_cast<DWORD>((path.size() + 1) * sizeof(WCHAR));
            record.lpData = path.data();
            EXPECT_EQ(SendMessageW(frame.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record)),
                      1);
            EXPECT_EQ(frame.imagePresent, 0u);
            OnModal(nullptr); // the progress dialog that follows is not this test's
        });
        EXPECT_EQ(frame.imagePresent, 1u);
    }});
}
