// Both menus against one table that was typed by hand: every entry's identifier, text, position and
// state, before a picture, after one, and after each change of state; and the identifiers that no
// command stands behind.

#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <string>
#include <vector>

using namespace tavrix::testing;

namespace
{

constexpr UINT Gray = MF_GRAYED;
constexpr UINT Checked = MF_CHECKED;
constexpr UINT Popup = 1;     // in place of an identifier
constexpr UINT Separator = 0; // likewise
constexpr UINT Absent = 2;    // likewise: the entry is in the other language's menu alone

struct Row {
    int depth;
    UINT english;
    UINT japanese;
    const char16_t* englishText; // without the key's name
    const char16_t* japaneseText;
    UINT state; // as the menu begins
};

const Row rows[] = {
    {0, Popup, Popup, u"&File", u"ﾌｧｲﾙ(&F)", 0},
    {1, 40017, 40017, u"&New", u"新規作成(&N)", 0},
    {1, Separator, Separator, u"", u"", 0},
    {1, Popup, Popup, u"&Open", u"開く", 0},
    {2, 40003, 40003, u"&File", u"ファイル(&F)", 0},
    {2, 40197, 40197, u"&URL", u"URL(&U)", 0},
    {2, 40202, 40202, u"IrOBEX", u"赤外線デバイス", 0},
    {2, Separator, Separator, u"", u"", 0},
    {2, Popup, Popup, u"Open As", u"指定形式で開く", 0},
    {3, 40014, 40014, u"no INPUT plugin", u"読み込みプラグインがありません", Gray},
    {2, Popup, Popup, u"&History", u"履歴", 0},
    {3, 40014, 40014, u"no history to open", u"履歴がありません", Gray},
    {1, Popup, Popup, u"&Save", u"保存(&S)", 0},
    {2, 40004, 40004, u"&Save", u"ファイル(&S)", Gray},
    {2, 40184, 40184, u"&Virtual Save", u"仮想保存(&V)", Gray},
    {2, Separator, Separator, u"", u"", 0},
    {2, Popup, Popup, u"Save As", u"指定形式で保存", Gray},
    {3, 40014, 40014, u"no OUTPUT plugin", u"書き出しプラグインがありません", Gray},
    {1, Separator, Separator, u"", u"", 0},
    {1, Popup, Popup, u"Stream", u"送受信", 0},
    {2, 40014, 40014, u"no STREAM plugin", u"送受信プラグインがありません", Gray},
    {1, Popup, Popup, u"&Print", u"印刷(&P)", Gray},
    {2, 40014, 40014, u"no PRINT plugin", u"印刷プラグインがありません", Gray},
    {1, 40002, 40002, u"&Exit", u"終了(&E)", 0},
    {0, Popup, Popup, u"&Edit", u"編集", 0},
    {1, 40205, 40205, u"Undo", u"元に戻す", Gray},
    {1, Separator, Separator, u"", u"", 0},
    {1, 40056, 40056, u"Select &All", u"全選択(&A)", Gray},
    {1, 40074, 40074, u"&Deselect", u"選択解除(&D)", Gray},
    {1, 40073, 40073, u"Reverse", u"選択を反転する", Gray},
    {1, Separator, Separator, u"", u"", 0},
    {1, Popup, Popup, u"&Copy", u"コピー(&C)", 0},
    {2, 40036, 40036, u"To Memory", u"メモリへ", Gray},
    {2, 40194, 40194, u"To Clipboard", u"クリップボードへ", Gray},
    {1, Popup, Popup, u"&Paste", u"貼り付け(&P)", 0},
    {2, 40037, 40037, u"From Memory", u"メモリから(&P)", Gray},
    {2, 40195, 40195, u"From Clipboard", u"クリップボードから", Gray},
    {1, Separator, Separator, u"", u"", 0},
    {1, Popup, Popup, u"C&lear", u"クリア(&L)", 0},
    {2, 40159, 40159, u"Memory", u"メモリ", Gray},
    {2, 40193, 40193, u"Clipboard", u"クリップボード", Gray},
    {0, Popup, Popup, u"&Tools", u"ツール", 0},
    {1, 40125, 40125, u"Scroll", u"スクロール", Gray},
    {1, Separator, Separator, u"", u"", 0},
    {1, Popup, Popup, u"Select", u"選択", 0},
    {2, 40160, 40163, u"Point", u"座標", Gray},
    {2, 40105, 40105, u"Rectangle", u"長方形", Gray},
    {2, 40095, 40095, u"Round", u"ラウンド", Gray},
    {2, 40106, 40106, u"Ellipse", u"楕円", Gray},
    {2, 40107, 40107, u"Free Pass", u"フリーパス", Gray},
    {2, 40162, 40162, u"Smoothing", u"滑らかにする", Gray},
    {1, Popup, Popup, u"Graphic", u"図形", Gray},
    {2, 40154, 40154, u"Line", u"直線", Gray},
    {2, 40158, 40158, u"Curve", u"曲線", Gray},
    {2, 40155, 40155, u"Rectangle", u"長方形", Gray},
    {2, 40156, 40156, u"Round", u"ラウンド", Gray},
    {2, 40157, 40157, u"Ellipse", u"楕円", Gray},
    {1, Popup, Popup, u"Brush/Pen", u"ブラシ／ペン", 0},
    {2, Absent, 40152, u"", u"効果ブラシ", Gray},
    {2, Absent, 40151, u"", u"調整ブラシ", Gray},
    {2, Absent, Separator, u"", u"", 0},
    {2, 40119, 40119, u"Brush", u"ブラシ", Gray},
    {2, 40120, 40120, u"Airbrush", u"エアーブラシ", Gray},
    {2, 40124, 40121, u"Solid Pen", u"ソリッドペン", Gray},
    {2, 40122, 40122, u"Soft Pen", u"ソフトペン", Gray},
    {2, 40123, 40123, u"User Def.", u"ユーザー定義", Gray},
    {1, Popup, Popup, u"Eraser", u"消しゴム", 0},
    {2, 40126, 40126, u"Color Eraser", u"色消しゴム", Gray},
    {2, 40129, 40129, u"Alpha Eraser", u"α消しゴム", Gray},
    {2, 40130, 40130, u"User Def.", u"ユーザー定義", Gray},
    {1, 40161, 40161, u"Pipet", u"スポイト", Gray},
    {1, 40030, 40030, u"Text", u"文字", Gray},
    {1, 40201, 40201, u"Mirelook", u"Mirelook", 0},
    {0, Popup, Popup, u"&Image", u"画像(&I)", 0},
    {1, Popup, Popup, u"Mode", u"モード", Gray},
    {2, 40066, 40066, u"Index Color", u"インデックスカラー", Gray},
    {2, 40064, 40064, u"RGB24bits Color", u"RGB24ビットカラー", Gray | Checked},
    {2, 40065, 40065, u"RGBA32bits Color", u"RGBA32ビットカラー", Gray},
    {1, Popup, Popup, u"Layer", u"レイヤー", Gray},
    {2, 40178, 40178, u"Main Layer", u"主レイヤー", Gray | Checked},
    {2, 40179, 40179, u"Text Layer", u"文字レイヤー", Gray},
    {2, 40180, 40180, u"New Layer", u"新規レイヤー", Gray},
    {2, 40181, 40181, u"Delete", u"レイヤー削除", Gray},
    {1, Separator, Separator, u"", u"", 0},
    {1, Popup, Popup, u"Effect", u"効果(&E)", Gray},
    {2, 40009, 40009, u"no EFFECT plugin", u"効果プラグインがありません", Gray},
    {1, Popup, Popup, u"Adjust", u"調整(&A)", Gray},
    {2, 40010, 40010, u"no ADJUST plugin", u"調整プラグインがありません", Gray},
    {1, 40005, 40005, u"&Resolution", u"解像度変更(&R)", Gray},
    {1, 40006, 40006, u"&Size", u"サイズ変更(&S)", Gray},
    {1, Popup, Popup, u"Rotate", u"画像回転", Gray},
    {2, 40045, 40045, u"180 deg.", u"180°", 0},
    {2, 40047, 40048, u"90 deg. (c.w.)", u"90°(時計回り)", Gray},
    {2, 40048, 40048, u"90 deg. (c.c.w.)", u"90°(反時計回り)", 0},
    {2, 40050, 40050, u"horiz reverse", u"水平方向に反転", 0},
    {2, 40051, 40051, u"verti reverse", u"垂直方向に反転", 0},
    {1, Separator, Separator, u"", u"", 0},
    {1, 40008, 40008, u"Substractor", u"減色", Gray},
    {1, Separator, Separator, u"", u"", 0},
    {1, Popup, Popup, u"Reload", u"再読込", Gray},
    {2, 40007, 40007, u"the file Opened", u"開いたファイル", Gray},
    {2, 40185, 40185, u"the file Saved", u"保存したファイル", Gray},
    {0, Popup, Popup, u"In&fo", u"情報", 0},
    {1, 205, 205, u"&Image", u"画像", Gray},
    {1, 40060, 40060, u"&Palette", u"パレット", Gray},
    {0, Popup, Popup, u"&Display", u"表示(&D)", 0},
    {1, Popup, Popup, u"Window", u"ウィンドウ", 0},
    {2, 40118, 40118, u"Toolbox", u"ツールボックス", Checked},
    {2, 40153, 40153, u"Colorbox", u"カラーボックス", Checked},
    {1, Separator, Separator, u"", u"", 0},
    {1, Popup, Popup, u"Coordinate", u"座標", Gray},
    {2, 40012, 40012, u"Initialize", u"初期化", 0},
    {2, 40063, 40063, u"Centering", u"中央配置", Gray | Checked},
    {1, Popup, Popup, u"Zoom", u"倍率", 0},
    {2, 40025, 40025, u"25%", u"25%", 0},
    {2, 40024, 40024, u"50%", u"50%", 0},
    {2, 40026, 40026, u"75%", u"75%", 0},
    {2, 40018, 40018, u"100%", u"100%", Checked},
    {2, 40022, 40022, u"200%", u"200%", 0},
    {2, 40115, 40115, u"300%", u"300%", 0},
    {2, 40023, 40023, u"400%", u"400%", 0},
    {2, 40020, 40020, u"Window Adjusted", u"ｳｨﾝﾄﾞｳにあわせる", 0},
    {1, Popup, Popup, u"Method", u"メソッド", 0},
    {2, 40015, 40015, u"built-in NN", u"ﾆｱﾚｽﾄﾈｲﾊﾞｰ(内蔵)", Checked},
    {2, 40016, 40016, u"no SCALE plugin", u"伸縮プラグインがありません", Gray},
    {1, Popup, Popup, u"Rotation", u"回転", 0},
    {2, 40041, 40041, u"0 deg.", u"0°", Checked},
    {2, 40040, 40040, u"90 deg.", u"90°", Gray},
    {2, 40042, 40042, u"180 deg.", u"180°", Gray},
    {2, 40043, 40043, u"270 deg.", u"270°", Gray},
    {1, Separator, Separator, u"", u"", 0},
    {1, Popup, Popup, u"Dither", u"ディザ", 0},
    {2, Popup, Popup, u"Method", u"メソッド", 0},
    {3, 40149, 40149, u"Bayer's", u"Bayer型", Checked},
    {3, 40137, 40137, u"Random", u"ﾗﾝﾀﾞﾑﾃﾞｨｻﾞ", Gray},
    {2, Popup, Popup, u"Colors", u"色数", 0},
    {3, 40142, 40142, u"2bits(4)", u"2bits(4)", Gray},
    {3, 40143, 40143, u"4bits(16)", u"4bits(16)", Gray},
    {3, 40144, 40144, u"8bits(256)", u"8bits(256)", Gray},
    {3, 40145, 40145, u"10bits(1,024)", u"10bits(1,024)", Gray},
    {3, 40146, 40146, u"RGB555(32,768)", u"RGB555(32,768)", Checked},
    {3, 40147, 40147, u"16bits(65,536)", u"16bits(65,536)", Gray},
    {2, 40138, 40164, u"On", u"オン", Checked},
    {1, Popup, Popup, u"Screen", u"スクリーン", 0},
    {2, 40203, 40203, u"Color", u"カラー", Checked},
    {2, 40204, 40204, u"Mono", u"モノクロ", 0},
    {0, Popup, Popup, u"&Help", u"ﾍﾙﾌﾟ(&H)", 0},
    {1, 207, 207, u"About Tavrix", u"Tavrixについて", 0},
    {1, 40068, 40068, u"Plugins Info", u"プラグイン情報", 0},
};

/// What the state of the entries hangs on.
struct State {
    bool japanese = false;
    bool picture = false;
    bool selection = false;
    bool clip = false;
    bool clipboard = false;
    bool undo = false;
    bool scale = false;    // a plugin of the kind is there
    bool subtract = false; // likewise
    bool toolbox = true;
    bool colorbox = true;
    bool mono = false;
    bool dither = false;
    UINT zoom = 40018;
};

bool IsOneOf(UINT id, std::initializer_list<UINT> ids)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

bool IsOneOf(const char16_t* text, std::initializer_list<const char16_t*> texts)
{
    return std::find(texts.begin(), texts.end(), std::u16string_view(text)) != texts.end();
}

UINT With(UINT state, UINT flag, bool on)
{
    return on ? state | flag : state & ~flag;
}

/// The rules, by hand: what is gray and what is checked.
UINT ExpectedState(const Row& row, const State& state)
{
    const UINT id = state.japanese ? row.japanese : row.english;
    UINT expected = row.state;
    if (id == Popup)
        return With(
            expected, Gray,
            (expected & Gray) != 0 &&
                !(state.picture &&
                  IsOneOf(row.englishText, {u"Save As", u"&Print", u"Mode", u"Layer", u"Effect",
                                            u"Adjust", u"Rotate", u"Reload", u"Coordinate"})));
    if (state.picture && IsOneOf(id, {40004, 40184, 40056, 40036, 40194, 40125, 40161, 40030, 40105,
                                      40119, 40126, 40006, 40007, 40185, 205, 40060}))
        expected &= ~Gray;
    if (id == 40074)
        expected = With(expected, Gray, !state.selection);
    if (IsOneOf(id, {40037, 40159}))
        expected = With(expected, Gray, !state.clip);
    if (IsOneOf(id, {40195, 40193}))
        expected = With(expected, Gray, !state.clipboard);
    if (id == 40205)
        expected = With(expected, Gray, !state.undo);
    if (id == 40005)
        expected = With(expected, Gray, !(state.picture && state.scale));
    if (id == 40008)
        expected = With(expected, Gray, !(state.picture && state.subtract));
    if (IsOneOf(id, {40025, 40024, 40026, 40018, 40022, 40115, 40023, 40020}))
        expected = With(expected, Checked, id == state.zoom);
    if (id == 40118)
        expected = With(expected, Checked, state.toolbox);
    if (id == 40153)
        expected = With(expected, Checked, state.colorbox);
    if (id == 40203)
        expected = With(expected, Checked, !state.mono);
    if (id == 40204)
        expected = With(expected, Checked, state.mono);
    if (id == 40164) // the English menu's entry keeps the mark it begins with
        expected = With(expected, Checked, state.dither);
    return expected;
}

std::u16string TextOf(HMENU menu, UINT position)
{
    WCHAR text[200] = {};
    GetMenuStringW(menu, position, text, 200, MF_BYPOSITION);
    const std::u16string whole = text;
    return whole.substr(0, whole.find(u'\t'));
}

bool StandsForPlugins(const Row& row)
{
    return IsOneOf(row.english, {40014, 40009, 40010, 40016}) &&
           !IsOneOf(row.englishText, {u"no history to open", u"no STREAM plugin"});
}

/// Compares the popup that begins at `at` of the table and whatever lies below it. Where plugins
/// stand in place of a placeholder, what they put there is not looked at.
void ExpectMenu(HMENU menu, size_t* at, int depth, const State& state)
{
    UINT position = 0;
    while (*at < std::size(rows) && rows[*at].depth == depth) {
        const Row& row = rows[(*at)++];
        const UINT id = state.japanese ? row.japanese : row.english;
        if (id == Absent)
            continue;
        const std::u16string text = state.japanese ? row.japaneseText : row.englishText;
        SCOPED_TRACE(std::string(text.begin(), text.end()) + " at depth " + std::to_string(depth) +
                     ", position " + std::to_string(position));
        if (StandsForPlugins(row) && TextOf(menu, position) != text) {
            const UINT first = position;
            while (GetMenuItemID(menu, static_cast<int>(position)) >= 41000 &&
                   static_cast<int>(position) < GetMenuItemCount(menu))
                ++position;
            EXPECT_GT(position, first);
            continue;
        }
        EXPECT_EQ(TextOf(menu, position), text);
        const UINT found = GetMenuState(menu, position, MF_BYPOSITION);
        HMENU below = GetSubMenu(menu, static_cast<int>(position));
        if (id == Separator) {
            EXPECT_NE(found & MF_SEPARATOR, 0u);
        } else {
            EXPECT_EQ(found & (Gray | Checked | MF_DISABLED), ExpectedState(row, state));
            EXPECT_EQ(below != nullptr, id == Popup);
        }
        if (id == Popup) {
            ExpectMenu(below, at, depth + 1, state);
        } else if (id != Separator) {
            EXPECT_EQ(GetMenuItemID(menu, static_cast<int>(position)), id);
        }
        ++position;
    }
    EXPECT_EQ(GetMenuItemCount(menu), static_cast<int>(position));
}

void ExpectMenus(MainFrame& frame, const State& state, const char* after)
{
    SCOPED_TRACE(after);
    frame.FetchMenus();
    size_t at = 0;
    ExpectMenu(frame.mainMenu, &at, 0, state);
    EXPECT_EQ(at, std::size(rows));
}

void Send(MainFrame& frame, UINT id)
{
    SendMessageW(frame.window, WM_COMMAND, id, 0);
}

std::u16string SmallPicture()
{
    return DevicePath(WriteTestPng(40, 30));
}

std::u16string BrokenPicture()
{
    return DevicePath(TruncateFile(WriteTestPng(40, 30, "broken.png"), 1, 2));
}

void DismissBoxes()
{
    OnModal([](HWND dialog, bool box) {
        if (box)
            EndDialog(dialog, IDOK);
    });
}

void FollowEveryChange(MainFrame& frame, State state)
{
    state.picture = true;
    ExpectMenus(frame, state, "a picture");
    Send(frame, 40056);
    state.selection = true;
    ExpectMenus(frame, state, "Select All");
    Send(frame, 40074);
    state.selection = false;
    ExpectMenus(frame, state, "Deselect");
    for (UINT zoom : {40025u, 40024u, 40026u, 40022u, 40115u, 40023u, 40020u, 40018u}) {
        Send(frame, zoom);
        state.zoom = zoom;
        ExpectMenus(frame, state, "a zoom");
    }
    Send(frame, 40118);
    state.toolbox = false;
    ExpectMenus(frame, state, "the toolbox hidden");
    Send(frame, 40153);
    state.colorbox = false;
    ExpectMenus(frame, state, "the colorbox hidden");
    Send(frame, 40118);
    Send(frame, 40153);
    state.toolbox = state.colorbox = true;
    ExpectMenus(frame, state, "both shown again");
    Send(frame, 40204);
    state.mono = true;
    ExpectMenus(frame, state, "four greys");
    Send(frame, 40203);
    state.mono = false;
    ExpectMenus(frame, state, "colours");
    Send(frame, 40164);
    state.dither = true;
    ExpectMenus(frame, state, "dithering");
    Send(frame, 40164);
    state.dither = false;
    ExpectMenus(frame, state, "no dithering");

    frame.clipImage = new (std::nothrow) Raster(&frame.allocator);
    frame.clipboardHasImage = 1;
    frame.UpdateClipMenus();
    state.clip = state.clipboard = true;
    ExpectMenus(frame, state, "both clips filled");
    Send(frame, 40159);
    EXPECT_EQ(frame.clipImage, nullptr);
    state.clip = false;
    ExpectMenus(frame, state, "Clear memory");

    frame.undoEnabled = 1;
    frame.TakeUndo(frame.image, 0, 0);
    state.undo = true;
    ExpectMenus(frame, state, "a snapshot");
    Send(frame, 40205);
    state.undo = false;
    ExpectMenus(frame, state, "Undo");
}

void RunWithPicture(LANGID language)
{
    Scope scope;
    SetLanguage(language);
    InstallBundledPlugins();
    State state;
    state.japanese = language == 1041;
    RunProgram(u"", [&](MainFrame& frame) {
        ExpectMenus(frame, state, "the start");
        frame.OpenFile(SmallPicture().c_str());
        ASSERT_EQ(frame.imagePresent, 1u);
        FollowEveryChange(frame, state);
    });
}

} // namespace

TEST(MenuTable, WithoutPluginsAndPictureTheEnglishMenuIsAsItsResource)
{
    Scope scope;
    SetLanguage(1033);
    DismissBoxes();
    RunProgram(u"", [](MainFrame& frame) { ExpectMenus(frame, State{}, "the start"); });
}

TEST(MenuTable, WithoutPluginsAndPictureTheJapaneseMenuIsAsItsResourceButForTheDitherMark)
{
    Scope scope;
    SetLanguage(1041);
    DismissBoxes();
    State state;
    state.japanese = true;
    RunProgram(u"", [&](MainFrame& frame) { ExpectMenus(frame, state, "the start"); });
}

TEST(MenuTable, TheEnglishMenuFollowsThePictureAndEachChangeOfState)
{
    RunWithPicture(1033);
}

TEST(MenuTable, TheJapaneseMenuFollowsThePictureAndEachChangeOfState)
{
    RunWithPicture(1041);
}

TEST(MenuTable, PluginsThatStretchAndReduceColoursEnableTheirEntriesOnceThereIsAPicture)
{
    InstallBundledPlugins();
    InstallLabelled("SCALE", "1.Stretch");
    InstallLabelled("SUBTRACT", "1.Reduce");
    State state;
    state.scale = state.subtract = true;
    RunProgram(u"", [&](MainFrame& frame) {
        ExpectMenus(frame, state, "the start");
        frame.OpenFile(SmallPicture().c_str());
        state.picture = true;
        ExpectMenus(frame, state, "a picture");
    });
}

TEST(MenuTable, ALaterLoadThatFailsLeavesTheEntriesEnabled)
{
    InstallBundledPlugins();
    DismissBoxes();
    State state;
    state.picture = true;
    RunProgram(u"", [&](MainFrame& frame) {
        frame.OpenFile(SmallPicture().c_str());
        frame.OpenFile(BrokenPicture().c_str());
        ExpectMenus(frame, state, "a load that failed");
    });
}

namespace
{

/// All of the frame that a command could change.
struct Remembered {
    explicit Remembered(MainFrame& frame)
        : tool(frame.tool), phase(frame.toolPhase), zoom(frame.zoom),
          command(frame.zoomCommand), scroll{frame.scrollX, frame.scrollY},
          selection(frame.selectionActive), present(frame.imagePresent), dither(frame.dither),
          mono(frame.monoScreen), colors{frame.faceColor, frame.backgroundColor},
          windows{frame.showToolbox, frame.showColorbox}, screen(ScreenPixels().pixels)
    {
    }
    bool operator==(const Remembered&) const = default;

    u32 tool;
    u32 phase;
    f64 zoom;
    u32 command;
    std::vector<f64> scroll;
    u32 selection;
    u32 present;
    u32 dither;
    u32 mono;
    std::vector<u32> colors;
    std::vector<u32> windows;
    std::vector<uint32_t> screen;
};

} // namespace

TEST(MenuTable, IdentifiersWithoutACommandChangeNothing)
{
    const UINT idle[] = {1,     40009, 40010, 40014, 40015, 40016, 40040, 40041, 40042,
                         40043, 40063, 40064, 40065, 40066, 40073, 40095, 40106, 40107,
                         40120, 40121, 40122, 40123, 40124, 40130, 40137, 40138, 40142,
                         40143, 40144, 40145, 40146, 40147, 40149, 40151, 40152, 40154,
                         40155, 40156, 40157, 40158, 40160, 40162, 40163, 40178, 40179,
                         40180, 40181, 40192, 40008, 41400, 41499, 41600, 39999, 65535};
    InstallBundledPlugins();
    bool loaded = false; // the load's progress is not meant
    size_t dialogs = 0;
    OnModal([&](HWND dialog, bool) {
        if (!loaded)
            return;
        ++dialogs;
        EndDialog(dialog, 0);
    });
    RunProgram(u"", [&](MainFrame& frame) {
        frame.OpenFile(SmallPicture().c_str());
        loaded = true;
        Send(frame, 40056);
        Pump(20);
        const Remembered before(frame);
        State state;
        state.picture = state.selection = true;
        for (UINT id : idle) {
            EXPECT_EQ(SendMessageW(frame.window, WM_COMMAND, id, 0), 0) << id;
            Pump(1);
            EXPECT_TRUE(Remembered(frame) == before) << id;
        }
        ExpectMenus(frame, state, "commands that do nothing");
        EXPECT_EQ(dialogs, 0u);
    });
}

TEST(MenuTable, ControlPAndControlQDoNothing)
{
    InstallBundledPlugins();
    RunProgram(u"", {[](MainFrame& frame) {
                         frame.OpenFile(SmallPicture().c_str());
                         SetFocus(frame.window);
                         TypeKey('P', MK_CONTROL);
                         TypeKey('Q', MK_CONTROL);
                     },
                     [](MainFrame& frame) {
                         Pump(50);
                         EXPECT_TRUE(IsWindow(frame.window));
                         EXPECT_EQ(frame.handOvers.closed, 0u);
                         State state;
                         state.picture = true;
                         ExpectMenus(frame, state, "both keys");
                     }});
}
