// The command for text, through the whole program, its dialog and real fonts. What is to be in the
// picture is worked out from a large bitmap that the test draws with the platform's own letters.

#include "shell/tests/FlowTesting.h"
#include "view/tests/DialogTesting.h"
#include "view/tests/EnumeratedFonts.h"

#include "settings/VariantStack.h"

#include "platform/testing/Faults.h"

#include <cmath>
#include <limits>

using namespace flowtest;
using dialogtest::Dialog;
using Text = std::u16string;

namespace
{

constexpr u32 TextCommand = 40030;
constexpr int Font = 1029;
constexpr int FontSize = 1033;
constexpr int Letters = 1035;

const Text latin = u"Quick brown foxes jump over";
const Text japanese = u"日本語の文字をここに描く";
const Text latinFont = u"DejaVu Sans";
const Text japaneseFont = u"VL Gothic";

/// Sends the command; `script` has the dialog.
void Open(MainFrame& frame, const std::function<void(const Dialog&)>& script)
{
    EXPECT_EQ(dialogtest::Open([&] { Send(frame, TextCommand); }, script), 1);
}

/// Has a text drawn in the font and the size that the list has at `row`.
void Draw(MainFrame& frame, const Text& text, const Text& font, WPARAM row)
{
    Open(frame, [&](const Dialog& dialog) {
        SetDlgItemTextW(dialog.window, Letters, text.c_str());
        EXPECT_GE(SendMessageW(dialog.Control(Font), CB_SELECTSTRING, static_cast<WPARAM>(-1),
                               reinterpret_cast<LPARAM>(font.c_str())),
                  0)
            << Utf8(font.c_str());
        EXPECT_EQ(dialog.Of(Font), font);
        SendMessageW(dialog.Control(FontSize), CB_SETCURSEL, row, 0);
        ClickControl(dialog.window, IDOK);
    });
}

/// The shares of ink, 0 to 64, of a text in a region of that size: counted pixel by pixel in a
/// bitmap eight times as large.
std::vector<u32> Shares(int width, int height, const Text& text, const Text& font, int size)
{
    struct {
        BITMAPINFOHEADER header;
        RGBQUAD colors[2];
    } format = {};
    format.header = {40, 8 * width, 8 * height, 1, 1, 0, 0, 0, 0, 0, 0};
    format.colors[0] = {255, 255, 255, 0};
    LOGFONTW record = {};
    record.lfHeight = 8 * size;
    record.lfWeight = 400;
    record.lfCharSet = 1;
    font.copy(record.lfFaceName, 31);

    void* bits = nullptr;
    const HDC dc = CreateCompatibleDC(nullptr);
    const HFONT made = CreateFontIndirectW(&record);
    const HBITMAP bitmap =
        CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(&format), 0, &bits, nullptr, 0);
    const HGDIOBJ fontBefore = SelectObject(dc, made);
    const HGDIOBJ bitmapBefore = SelectObject(dc, bitmap);
    RECT whole = {0, 0, 8 * width, 8 * height};
    FillRect(dc, &whole, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    SetTextColor(dc, 0);
    EXPECT_GT(DrawTextW(dc, text.c_str(), -1, &whole, 16), 0);

    std::vector<u32> shares(static_cast<size_t>(width * height));
    const int rowBytes = (width + 3) / 4 * 4;
    for (int y = 0; y < 8 * height; ++y)
        for (int x = 0; x < 8 * width; ++x) {
            const u8 byte = static_cast<u8*>(bits)[(8 * height - 1 - y) * rowBytes + x / 8];
            if ((byte & (128 >> x % 8)) != 0)
                ++shares[static_cast<size_t>(y / 8 * width + x / 8)];
        }
    SelectObject(dc, fontBefore);
    SelectObject(dc, bitmapBefore);
    DeleteDC(dc);
    DeleteObject(bitmap);
    DeleteObject(made);
    return shares;
}

/// A colour with that share of another laid over it.
u32 Blended(u32 old, u32 color, u32 share)
{
    u32 blended = 0;
    for (const u32 shift : {16u, 8u, 0u}) {
        const u32 weight = share * 256;
        blended |=
            ((16384 - weight) * (old >> shift & 255) + weight * (color >> shift & 255)) / 16384
            << shift;
    }
    return blended;
}

/// The test picture with text of that colour in the area, and nowhere else. How many pixels the
/// text has changed.
int ExpectText(Raster& raster, Area area, const std::vector<u32>& shares, u32 color, int width,
               int height)
{
    int changed = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const u32 before = TestColor(x, y);
            u32 expected = before;
            if (area.Holds(x, y))
                expected =
                    Blended(before, color,
                            shares[static_cast<size_t>(
                                (y - area.top) * (area.right - area.left + 1) + x - area.left)]);
            changed += expected != before;
            if (PixelOf(raster, x, y) != expected) {
                ADD_FAILURE() << x << ", " << y << ": " << std::hex << PixelOf(raster, x, y)
                              << " for " << expected;
                return 0;
            }
        }
    return changed;
}

constexpr int Width = 300;
constexpr int Height = 200;

} // namespace

TEST(DrawLetters, TextInBothScriptsArrivesInTheSelectionAndNowhereElse)
{
    Scope scope;
    const struct {
        Text text;
        Text font;
        WPARAM row;
        int size;
        Area area;
        u32 color;
    } rows[] = {
        {latin, latinFont, 0, 10, {20, 30, 119, 89}, 0x20408000},
        {latin, latinFont, 1, 20, {0, 0, 299, 199}, 0xFFFFFF00},
        {japanese, japaneseFont, 1, 20, {31, 17, 160, 120}, 0x000000FF},
        {japanese, japaneseFont, 6, 100, {5, 5, 280, 190}, 0xC0100080},
        {u"a\r\n文", japaneseFont, 3, 40, {100, 50, 199, 170}, 0x01FE7F33},
    };
    std::vector<Step> steps;
    for (const auto& row : rows)
        steps.push_back([row](MainFrame& frame) {
            for (int y = 0; y < Height; ++y)
                for (int x = 0; x < Width; ++x)
                    ASSERT_EQ(frame.image->SetPixel(x, y, TestColor(x, y) << 8), Done);
            frame.image->UnlockAll();
            Select(frame, row.area.left, row.area.top, row.area.right, row.area.bottom);
            frame.faceColor = row.color;
            Draw(frame, row.text, row.font, row.row);
            const std::vector<u32> shares =
                Shares(row.area.right - row.area.left + 1, row.area.bottom - row.area.top + 1,
                       row.text, row.font, row.size);
            EXPECT_GT(ExpectText(*frame.image, row.area, shares, row.color >> 8, Width, Height),
                      100)
                << Utf8(row.text.c_str());
            EXPECT_NE(std::count(shares.begin(), shares.end(), 64u), 0) << "full ink somewhere";
            EXPECT_EQ(frame.faceColor, row.color) << "its alpha stays";
        });
    RunOnPicture(steps, Width, Height);
}

TEST(DrawLetters, WithoutASelectionTheCornersThatAreStoredCountCutToWholePixels)
{
    Scope scope;
    RunOnPicture(
        [](MainFrame& frame) {
            Select(frame, 20.9, 30.2, 119.99, 89.5);
            frame.selectionActive = 0;
            Draw(frame, latin, latinFont, 1);
            EXPECT_GT(ExpectText(*frame.image, {20, 30, 119, 89},
                                 Shares(100, 60, latin, latinFont, 20), 0, Width, Height),
                      100);
        },
        Width, Height);
}

TEST(DrawLetters, WhatHangsOverTheEdgesIsCutButForTheBottomWhereNothingIsDrawn)
{
    Scope scope;
    RunOnPicture(
        [](MainFrame& frame) {
            Select(frame, 0, 100, 120, 200);
            Draw(frame, latin, latinFont, 1);
            ExpectPicture(*frame.image, Unchanged, Everywhere, Width, Height);
            Select(frame, 250, 100, 349, 199);
            Draw(frame, latin, latinFont, 1);
            const std::vector<u32> shares = Shares(100, 100, latin, latinFont, 20);
            EXPECT_GT(ExpectText(*frame.image, {250, 100, 349, 199}, shares, 0, Width, Height), 50);
        },
        Width, Height);
}

TEST(DrawLetters, GivingUpAndTextsWithoutInkChangeNothing)
{
    Scope scope;
    SwitchUndoOn();
    RunOnPicture(
        [](MainFrame& frame) {
            Select(frame, 10, 10, 200, 150);
            for (const auto& way : std::vector<std::function<void(const Dialog&)>>{
                     [](const Dialog& dialog) { ClickControl(dialog.window, IDCANCEL); },
                     [](const Dialog&) { TypeKey(VK_ESCAPE); },
                     [](const Dialog& dialog) { PostMessageW(dialog.window, WM_CLOSE, 0, 0); }})
                Open(frame, [&](const Dialog& dialog) {
                    Pump(20);
                    SetDlgItemTextW(dialog.window, Letters, latin.c_str());
                    way(dialog);
                });
            for (const Text& text : {Text(), Text(u"\r\n"), Text(u"\n"), Text(u"   ")})
                Draw(frame, text, latinFont, 6);
            ExpectPicture(*frame.image, Unchanged, Everywhere, Width, Height);
            EXPECT_FALSE(CanUndo(frame));
            Draw(frame, latin, latinFont, 1);
            EXPECT_FALSE(CanUndo(frame)) << "drawing text is not undone";
            EXPECT_FALSE(HasSnapshot(frame));
        },
        Width, Height);
}

TEST(DrawLetters, TheViewShowsTheTextAtOnce)
{
    Scope scope;
    HideToolWindows();
    RunOnPicture(
        [](MainFrame& frame) {
            const Area area = {0, 0, 199, 99};
            Select(frame, area.left, area.top, area.right, area.bottom);
            frame.selectionFrame = 0;
            frame.faceColor = 0xFF000000;
            Draw(frame, u"■■■", japaneseFont, 4);
            Pump(50);
            const std::vector<u32> shares = Shares(200, 100, u"■■■", japaneseFont, 50);
            const size_t at =
                static_cast<size_t>(std::find(shares.begin(), shares.end(), 64u) - shares.begin());
            ASSERT_LT(at, shares.size());
            MainFrame::Point point = {static_cast<f64>(at % 200), static_cast<f64>(at / 200)};
            frame.ImageToView(&point);
            frame.ViewToWindow(&point);
            frame.WindowToScreen(&point);
            EXPECT_EQ(ScreenPixels().At(static_cast<int>(point.x), static_cast<int>(point.y)),
                      0xFF0000u);
        },
        Width, Height);
}

TEST(DrawLetters, APictureOfOnePixelAndNoPictureAtAllAreSurvived)
{
    Scope scope;
    RunOnPicture(
        [](MainFrame& frame) {
            Select(frame, 0, 0, 0, 0);
            Draw(frame, u"■", japaneseFont, 0);
            Select(frame, -20, -20, 0, 0);
            Draw(frame, u"■", japaneseFont, 1);
            EXPECT_EQ(InfoOf(*frame.image).width, 1u);
            frame.image->Reset();
            Draw(frame, u"■", japaneseFont, 0);
            EXPECT_EQ(InfoOf(*frame.image).height, 0u);
        },
        1, 1);
}

TEST(DrawLetters, AnEmptyDocumentStaysEmpty)
{
    Scope scope;
    InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/PNG.dll"));
    EXPECT_EQ(RunProgram(u"",
                         [](MainFrame& frame) {
                             Draw(frame, latin, latinFont, 1);
                             Select(frame, 0, 0, 50, 50);
                             Draw(frame, latin, latinFont, 1);
                             EXPECT_EQ(frame.imagePresent, 0u);
                             EXPECT_EQ(InfoOf(*frame.image).height, 0u);
                         }),
              0);
}

TEST(DrawLetters, CornersThatNoDragLeavesAreSurvived)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        const f64 nan = std::nan("");
        const f64 far = std::numeric_limits<f64>::infinity();
        const f64 rows[][4] = {{29, 34, 10, 20},         {10, 34, 29, 20},
                               {-30, -30, -3, -3},       {nan, nan, nan, nan},
                               {-far, -far, far, far},   {far, far, -far, -far},
                               {-1e300, 0, 1e300, 4},    {0, 0, 4e9, 4e9},
                               {1000, 1000, 1010, 1010}, {0, 0, 2147483646.0, 0}};
        for (const auto& row : rows) {
            SCOPED_TRACE(::testing::Message()
                         << row[0] << ' ' << row[1] << ' ' << row[2] << ' ' << row[3]);
            Select(frame, row[0], row[1], row[2], row[3]);
            Draw(frame, latin, latinFont, 0);
            ExpectPicture(*frame.image, Unchanged, {1, 1, 59, 49});
        }
    });
}

TEST(DrawLetters, ASizeThatIsTypedAndNotInTheListDrawsNothingOutsideTheSelection)
{
    Scope scope;
    RunOnPicture(
        [](MainFrame& frame) {
            for (const char16_t* size : {u"24", u"", u"-1", u"99999999999", u"x"}) {
                Select(frame, 20, 30, 119, 89);
                Open(frame, [&](const Dialog& dialog) {
                    SetDlgItemTextW(dialog.window, Letters, latin.c_str());
                    SetDlgItemTextW(dialog.window, FontSize, size);
                    dialog.Close();
                });
                for (int y = 0; y < Height; ++y)
                    for (int x = 0; x < Width; ++x)
                        if (!Area{20, 30, 119, 89}.Holds(x, y)) {
                            ASSERT_EQ(PixelOf(*frame.image, x, y), TestColor(x, y));
                        }
            }
            Select(frame, 20, 100, 119, 159);
            Open(frame, [&](const Dialog& dialog) {
                SetDlgItemTextW(dialog.window, Letters, latin.c_str());
                SendMessageW(dialog.Control(Font), CB_SELECTSTRING, static_cast<WPARAM>(-1),
                             reinterpret_cast<LPARAM>(latinFont.c_str()));
                SetDlgItemTextW(dialog.window, FontSize, TEXT("20"));
                dialog.Close();
            });
            const std::vector<u32> shares = Shares(100, 60, latin, latinFont, 20);
            for (int y = 100; y < 160; ++y)
                for (int x = 20; x < 120; ++x)
                    ASSERT_EQ(PixelOf(*frame.image, x, y),
                              Blended(TestColor(x, y), 0,
                                      shares[static_cast<size_t>((y - 100) * 100 + x - 20)]));
        },
        Width, Height);
}

TEST(DrawLetters, WithoutAStackThePersonIsToldInBothLanguagesAndNoDialogOpens)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        Select(frame, 0, 0, 30, 30);
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            const Answering answering;
            bool fired = false;
            SetAllocationFault([&](SIZE_T size) {
                const bool fires = !fired && size == sizeof(VariantStack);
                fired = fired || fires;
                return fires;
            });
            Send(frame, TextCommand);
            SetAllocationFault(nullptr);
            EXPECT_TRUE(answering.headlines.empty());
            ExpectOneBox(frame, answering,
                         language == 1041 ? u"文字列バッファの作成に失敗しました。"
                                          : u"Failed to create a buffer for string.",
                         language == 1041 ? u"エラー" : u"ERROR", 16);
        }
        ExpectPicture(*frame.image);
    });
}

TEST(DrawLetters, AnyShortageOfMemoryIsSurvivedAndChangesNothingOutside)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        Select(frame, 5, 5, 40, 40);
        EnumeratedFonts fonts;
        fonts.made = {{latinFont, 4}};
        ForEveryFault(
            FaultKind::Allocation,
            [&] {
                OnModal([](HWND window, bool box) {
                    if (!box)
                        SetDlgItemTextW(window, Letters, latin.c_str());
                    PostMessageW(window, WM_COMMAND, IDOK, 0);
                });
                Send(frame, TextCommand);
                OnModal({});
            },
            [&](bool) {
                for (const int at : {4, 41})
                    for (int i = 0; i < PictureHeight; ++i) {
                        ASSERT_EQ(PixelOf(*frame.image, at, i), TestColor(at, i));
                        ASSERT_EQ(PixelOf(*frame.image, i, at), TestColor(i, at));
                    }
            });
    });
}

TEST(DrawLetters, TheDialogIsTheOneOfTheLanguage)
{
    Scope scope;
    RunOnPicture([](MainFrame& frame) {
        for (const LANGID language : {LANGID{1033}, LANGID{1041}}) {
            SetLanguage(language);
            Open(frame, [&](const Dialog& dialog) {
                EXPECT_EQ(dialog.Caption(), language == 1041 ? u"文字の編集" : u"Edit Letters");
                dialog.Command(IDCANCEL);
            });
        }
    });
}
