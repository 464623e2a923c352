// Effect and Adjust with the plugins that come with the program, by their menu entries: the whole
// picture, a selection, and the way back.

#include "image/Raster.h"
#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "platform/testing/core/TestPaths.h"

using namespace tavrix::testing;

namespace
{

constexpr int Width = 60;
constexpr int Height = 45;
constexpr f64 Sigma = 3;

struct Part {
    int left = 0;
    int top = 0;
    int right = Width - 1;
    int bottom = Height - 1;
    bool Holds(int x, int y) const { return x >= left && x <= right && y >= top && y <= bottom; }
};

/// `shift` 16 red, 8 green, 0 blue.
int Channel(int x, int y, int shift)
{
    return static_cast<int>(TestColor(x, y) >> shift & 255);
}

/// The blur of the test picture inside a part, with the part's edges repeated beyond it.
f64 Blurred(const Part& part, int x, int y, int shift)
{
    f64 sum = 0;
    f64 weights = 0;
    for (int j = -9; j <= 9; ++j)
        for (int i = -9; i <= 9; ++i) {
            const f64 weight = std::exp(-(i * i + j * j) / (2 * Sigma * Sigma));
            sum += weight * Channel(std::clamp(x + i, part.left, part.right),
                                    std::clamp(y + j, part.top, part.bottom), shift);
            weights += weight;
        }
    return sum / weights;
}

/// Brighter by 20 of 100: by 51 of 255.
f64 Brighter(const Part&, int x, int y, int shift)
{
    return std::min(255, Channel(x, y, shift) + 51);
}

/// What stands in the picture, against `inside` in the part and the test picture outside.
void ExpectPicture(MainFrame& frame, const Part& part, f64 (*inside)(const Part&, int, int, int),
                   f64 allowed)
{
    for (int y = 0; y < Height; ++y)
        for (int x = 0; x < Width; ++x) {
            u32 pixel = 0;
            ASSERT_EQ(frame.image->GetPixel(x, y, &pixel), 1);
            for (const int shift : {16, 8, 0}) {
                const int got = static_cast<int>(pixel >> (shift + 8) & 255);
                if (inside && part.Holds(x, y))
                    ASSERT_NEAR(got, inside(part, x, y, shift), allowed) << x << ", " << y;
                else
                    ASSERT_EQ(got, Channel(x, y, shift)) << x << ", " << y;
            }
        }
    frame.image->UnlockAll();
}

/// Chooses a plugin's entry and answers its dialog; the progress dialog needs no answer.
void Choose(MainFrame& frame, HMENU menu, const std::u16string& name,
            const std::function<void(HWND)>& answer)
{
    UINT entry = 0;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        WCHAR text[200] = {};
        GetMenuStringW(menu, static_cast<UINT>(i), text, 200, MF_BYPOSITION);
        if (std::u16string(text) == name)
            entry = GetMenuItemID(menu, i);
    }
    ASSERT_NE(entry, 0u) << Utf8(name.c_str());
    int dialogs = 0;
    const auto before = tavrix::platform::Hooks().modalStarted;
    OnModal([&](HWND dialog, bool box) {
        if (GetDlgItem(dialog, ControlProgressBar) != nullptr) {
            before(dialog, box);
            return;
        }
        ++dialogs;
        answer(dialog);
    });
    SendMessageW(frame.window, WM_COMMAND, entry, 0);
    OnModal(before);
    EXPECT_EQ(dialogs, 1);
}

void TakeBack(MainFrame& frame)
{
    SendMessageW(frame.window, WM_COMMAND, CommandUndo, 0);
    ExpectPicture(frame, {}, nullptr, 0);
}

void Select(MainFrame& frame, const Part& part)
{
    frame.selectionActive = 1;
    frame.selectionLeft = part.left;
    frame.selectionTop = part.top;
    frame.selectionRight = part.right;
    frame.selectionBottom = part.bottom;
}

void RunWithPlugins(const std::vector<Step>& steps)
{
    WriteSettings(u"[Tavrix]\r\nShowToolbox=0\r\nShowColorbox=0\r\nEnableUndo=1\r\n");
    InstallBundledPlugins();
    InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/EFFECT/GaussianBlur.dll"), "EFFECT");
    InstallPlugin(tavrix::testing::InBuild("/bin/PLUGINS/ADJUST/BrightnessContrast.dll"), "ADJUST");
    EXPECT_EQ(RunProgramOn(WriteTestPng(Width, Height), steps), 0);
}

constexpr Part Selected = {11, 7, 40, 25};

} // namespace

TEST(Changing, ThePictureAndASelectionAreBlurredAndTakenBack)
{
    const auto type = [](HWND) {
        SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
        CommitText(u"3");
        TypeKey(VK_RETURN);
    };
    // Half a step of rounding, and what is rounded between rows and columns.
    constexpr f64 allowed = 0.51;
    RunWithPlugins({[&](MainFrame& frame) {
                        Choose(frame, frame.effectMenu, u"Gaussian Blur...", type);
                        ExpectPicture(frame, {}, Blurred, allowed);
                    },
                    TakeBack,
                    [&](MainFrame& frame) {
                        Choose(frame, frame.effectMenu, u"Gaussian Blur...",
                               [](HWND) { TypeKey(VK_ESCAPE); });
                        ExpectPicture(frame, {}, nullptr, 0);
                    },
                    [&](MainFrame& frame) {
                        Select(frame, Selected);
                        Choose(frame, frame.effectMenu, u"Gaussian Blur...", type);
                        ExpectPicture(frame, Selected, Blurred, allowed);
                    },
                    TakeBack});
}

TEST(Changing, ThePictureAndASelectionAreMadeBrighterAndTakenBack)
{
    const auto twentyUp = [](HWND dialog) {
        // A page of the scale is 20.
        TypeKey(VK_NEXT);
        EXPECT_EQ(GetDlgItemInt(dialog, 1002, nullptr, TRUE), 20u);
        TypeKey(VK_RETURN);
    };
    RunWithPlugins({[&](MainFrame& frame) {
                        Choose(frame, frame.adjustMenu, u"Brightness and Contrast...", twentyUp);
                        ExpectPicture(frame, {}, Brighter, 0);
                    },
                    TakeBack,
                    [&](MainFrame& frame) {
                        Select(frame, Selected);
                        Choose(frame, frame.adjustMenu, u"Brightness and Contrast...",
                               [](HWND) { TypeKey(VK_RETURN); });
                        ExpectPicture(frame, Selected, Brighter, 0);
                    },
                    TakeBack});
}

TEST(Changing, PluginsAreNamedInTheMenusOfBothLanguages)
{
    SetLanguage(1041);
    RunWithPlugins({[&](MainFrame& frame) {
        Choose(frame, frame.adjustMenu, u"明るさとコントラスト...",
               [](HWND) { TypeKey(VK_ESCAPE); });
        Choose(frame, frame.effectMenu, u"ガウスぼかし...", [](HWND dialog) {
            EXPECT_EQ(ControlText(dialog, IDCANCEL), u"キャンセル");
            TypeKey(VK_RETURN);
        });
        EXPECT_TRUE(StatusTexts().empty());
    }});
}
