// What the effects ask, over the real controls and in both languages, and what their previews show:
// the very pixels that come of the effect.

#include "platform/testing/WindowTesting.h"
#include "standard-plugins/edges/EdgesIds.h"
#include "standard-plugins/emboss/EmbossIds.h"
#include "standard-plugins/gaussian-blur/GaussianBlurIds.h"
#include "standard-plugins/median/MedianIds.h"
#include "standard-plugins/mosaic/MosaicIds.h"
#include "standard-plugins/noise/NoiseIds.h"
#include "standard-plugins/oil/OilIds.h"
#include "standard-plugins/old-photo/OldPhotoIds.h"
#include "standard-plugins/posterise/PosteriseIds.h"
#include "standard-plugins/sharpen/SharpenIds.h"
#include "standard-plugins/tests/effects/Effects.h"

#include <commctrl.h>

#include <cstdlib>

using namespace effecttest;
using namespace tavrix::testing;

namespace
{

/// A trackbar with the text beside it, a check box (most 1, no text), or radio buttons (most above,
/// no text).
struct Control {
    const char16_t* key;
    int id;
    int number;
    u32 least;
    u32 most;
    u32 standard;
    /// As the text shows the standard value, and the greatest.
    const char16_t* shown;
    const char16_t* shownMost;
};

struct Dialog {
    const char* file;
    const char16_t* caption;
    const char16_t* japaneseCaption;
    int preview;
    std::vector<Control> controls;
};

const Dialog dialogs[] = {
    {"Sharpen",
     u"Sharpen",
     u"シャープ",
     ControlSharpenPreview,
     {{u"SharpenAmount", ControlAmount, ControlAmountNumber, 0, 500, 100, u"100", u"500"},
      {u"SharpenRadius", ControlSharpenRadius, ControlSharpenRadiusNumber, 1, 250, 10, u"1.0",
       u"25.0"},
      {u"SharpenThreshold", ControlThreshold, ControlThresholdNumber, 0, 255, 0, u"0", u"255"}}},
    {"Emboss",
     u"Emboss",
     u"エンボス",
     ControlEmbossPreview,
     {{u"EmbossLight", ControlLightAbove, 0, 0, 7, 7, nullptr, nullptr},
      {u"EmbossStrength", ControlEmbossStrength, ControlEmbossStrengthNumber, 0, 500, 100, u"100",
       u"500"},
      {u"EmbossColours", ControlKeepColours, 0, 0, 1, 0, nullptr, nullptr}}},
    {"Edges",
     u"Edges",
     u"輪郭抽出",
     ControlEdgesPreview,
     {{u"EdgesStrength", ControlEdgesStrength, ControlEdgesStrengthNumber, 10, 1000, 100, u"100",
       u"1000"},
      {u"EdgesGround", ControlDarkGround, -1, 0, 1, 0, nullptr, nullptr},
      {u"EdgesColours", ControlEdgesColours, 0, 0, 1, 0, nullptr, nullptr}}},
    {"Mosaic",
     u"Mosaic",
     u"モザイク",
     ControlMosaicPreview,
     {{u"MosaicSize", ControlBlockSize, ControlBlockSizeNumber, 2, 64, 8, u"8", u"64"}}},
    {"Median",
     u"Median",
     u"メディアン",
     ControlMedianPreview,
     {{u"MedianRadius", ControlMedianRadius, ControlMedianRadiusNumber, 1, 10, 1, u"1", u"10"}}},
    {"Noise",
     u"Noise",
     u"ノイズ",
     ControlNoisePreview,
     {{u"NoiseAmount", ControlNoiseAmount, ControlNoiseAmountNumber, 1, 100, 10, u"10", u"100"},
      {u"NoiseKind", ControlEven, -1, 0, 1, 0, nullptr, nullptr},
      {u"NoiseColours", ControlNoiseColours, 0, 0, 1, 1, nullptr, nullptr}}},
    {"OldPhoto",
     u"Old Photo",
     u"古い写真",
     ControlOldPhotoPreview,
     {{u"OldPhotoSepia", ControlSepia, ControlSepiaNumber, 0, 100, 100, u"100", u"100"},
      {u"OldPhotoCorners", ControlCorners, ControlCornersNumber, 0, 100, 30, u"30", u"100"}}},
    {"Oil",
     u"Oil Painting",
     u"油絵",
     ControlOilPreview,
     {{u"OilRadius", ControlOilRadius, ControlOilRadiusNumber, 1, 8, 3, u"3", u"8"},
      {u"OilLevels", ControlOilLevels, ControlOilLevelsNumber, 4, 64, 20, u"20", u"64"}}},
    {"Posterise",
     u"Posterise",
     u"ポスタリゼーション",
     ControlPosterisePreview,
     {{u"PosteriseLevels", ControlPosteriseLevels, ControlPosteriseLevelsNumber, 2, 64, 6, u"6",
       u"64"}}},
};

void PrintTo(const Dialog& dialog, std::ostream* out)
{
    *out << dialog.file;
}

std::string NameOf(const testing::TestParamInfo<Dialog>& info)
{
    return info.param.file;
}

constexpr u32 width = 50;
constexpr u32 height = 40;

class PreviewTest : public EffectTest
{
protected:
    /// Configure with a script for the dialog, which has to end it.
    i32 Ask(const std::string& file, u32 language, const std::function<void(HWND)>& script,
            bool withPicture = true)
    {
        Load(file + ".dll", language);
        int shown = 0;
        OnModal([&](HWND window, bool) {
            ++shown;
            script(window);
        });
        Raster image;
        Fill(&image, width, height, 24, Patchy);
        const i32 result =
            plugin.Configure(nullptr, withPicture ? &image : nullptr, WriterCallbacks());
        EXPECT_TRUE(PixelsOf(&image) == PixelsOf(width, height, Patchy)) << "only looked at";
        EXPECT_EQ(shown, 1);
        OnModal(nullptr);
        return result;
    }
    static void Press(HWND dialog, int id)
    {
        PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
    }
    static RECT PlaceIn(HWND dialog, HWND control)
    {
        RECT place = {};
        GetWindowRect(control, &place);
        POINT corner = {place.left, place.top};
        ScreenToClient(dialog, &corner);
        return {corner.x, corner.y, corner.x + place.right - place.left,
                corner.y + place.bottom - place.top};
    }
    /// The picture in the middle of the preview's place.
    static Pixels Previewed(HWND dialog, int preview)
    {
        UpdateWindow(dialog);
        const RECT place = PlaceIn(dialog, GetDlgItem(dialog, preview));
        POINT corner = {(place.left + place.right - static_cast<int>(width)) / 2,
                        (place.top + place.bottom - static_cast<int>(height)) / 2};
        ClientToScreen(dialog, &corner);
        const Picture screen = ScreenPixels();
        Pixels pixels{width, height, {}};
        for (int y = 0; y < static_cast<int>(height); ++y)
            for (int x = 0; x < static_cast<int>(width); ++x)
                for (int shift : {16, 8, 0})
                    pixels.bytes.push_back(
                        static_cast<u8>(screen.At(corner.x + x, corner.y + y) >> shift));
        EXPECT_EQ(screen.At(corner.x - 1, corner.y), 0x808080u) << "the ground beside it";
        return pixels;
    }
    static std::u16string CaptionOf(HWND dialog)
    {
        WCHAR text[64] = {};
        GetWindowTextW(dialog, text, 64);
        return text;
    }
    static uintptr_t Stored(const char16_t* key)
    {
        const auto& settings = CurrentWriterHost().settings;
        return settings.contains(key) ? settings.at(key) : 4711;
    }
};

class EffectDialog : public PreviewTest, public testing::WithParamInterface<Dialog>
{
protected:
    using PreviewTest::Ask;
    i32 Ask(u32 language, const std::function<void(HWND)>& script)
    {
        return Ask(GetParam().file, language, script);
    }
    /// As the control shows it.
    static u32 Shown(HWND dialog, const Control& control)
    {
        if (control.number > 0)
            return static_cast<u32>(SendDlgItemMessageW(dialog, control.id, TBM_GETPOS, 0, 0));
        const auto isChecked = [dialog](int id) {
            return SendDlgItemMessageW(dialog, id, BM_GETCHECK, 0, 0) == BST_CHECKED;
        };
        if (control.most == 1 && control.number == 0)
            return isChecked(control.id);
        u32 value = 99;
        for (u32 i = 0; i <= control.most; ++i)
            if (isChecked(control.id + static_cast<int>(i))) {
                EXPECT_EQ(value, 99u) << "two of a choice";
                value = i;
            }
        return value;
    }
    /// As the user does it: clicks, and the keys of a trackbar.
    static void Choose(HWND dialog, const Control& control, u32 value)
    {
        if (control.number > 0) {
            SetFocus(GetDlgItem(dialog, control.id));
            TypeKey(value == control.most ? VK_END : VK_HOME);
        } else if (control.most == 1 && control.number == 0) {
            if (Shown(dialog, control) != value)
                ClickControl(dialog, control.id);
        } else {
            ClickControl(dialog, control.id + static_cast<int>(value));
        }
        Pump(1);
    }
    /// One end of every range, another one than the standard value where there are two.
    static u32 Other(const Control& control)
    {
        return control.standard == control.most ? control.least : control.most;
    }
};

INSTANTIATE_TEST_SUITE_P(All, EffectDialog, testing::ValuesIn(dialogs), NameOf);

class BlurPreview : public PreviewTest
{
};

} // namespace

TEST_P(EffectDialog, ShowsItsStandardsAndStoresAllOnOk)
{
    EXPECT_EQ(Ask(9,
                  [](HWND dialog) {
                      for (const Control& control : GetParam().controls) {
                          EXPECT_EQ(Shown(dialog, control), control.standard) << Utf8(control.key);
                          if (control.shown) {
                              EXPECT_EQ(ControlText(dialog, control.number), control.shown);
                          }
                      }
                      Press(dialog, IDOK);
                  }),
              1);
    for (const Control& control : GetParam().controls)
        EXPECT_EQ(Stored(control.key), control.standard) << Utf8(control.key);
    EXPECT_EQ(CurrentWriterHost().settings.size(), GetParam().controls.size());
}

TEST_P(EffectDialog, StoresWhatIsChosenAndShowsItTheNextTime)
{
    EXPECT_EQ(Ask(9,
                  [](HWND dialog) {
                      for (const Control& control : GetParam().controls) {
                          Choose(dialog, control, Other(control));
                          if (control.shownMost && Other(control) == control.most) {
                              EXPECT_EQ(ControlText(dialog, control.number), control.shownMost);
                          }
                      }
                      Press(dialog, IDOK);
                  }),
              1);
    for (const Control& control : GetParam().controls)
        EXPECT_EQ(Stored(control.key), Other(control)) << Utf8(control.key);
    EXPECT_EQ(Ask(9,
                  [](HWND dialog) {
                      for (const Control& control : GetParam().controls)
                          EXPECT_EQ(Shown(dialog, control), Other(control)) << Utf8(control.key);
                      Press(dialog, IDCANCEL);
                  }),
              0);
}

TEST_P(EffectDialog, CancelStoresNothing)
{
    EXPECT_EQ(Ask(9,
                  [](HWND dialog) {
                      for (const Control& control : GetParam().controls)
                          Choose(dialog, control, Other(control));
                      TypeKey(VK_ESCAPE);
                  }),
              0);
    EXPECT_TRUE(CurrentWriterHost().settings.empty());
}

TEST_P(EffectDialog, ShowsWildStoredNumbersWithinTheRange)
{
    for (const u32 wild : {0u, 4294967295u}) {
        for (const Control& control : GetParam().controls)
            Set(control.key, wild);
        EXPECT_EQ(Ask(17,
                      [wild](HWND dialog) {
                          for (const Control& control : GetParam().controls)
                              EXPECT_EQ(Shown(dialog, control), wild ? control.most : control.least)
                                  << Utf8(control.key);
                          Press(dialog, IDOK);
                      }),
                  1);
        for (const Control& control : GetParam().controls)
            EXPECT_EQ(Stored(control.key), wild ? control.most : control.least);
    }
}

TEST_P(EffectDialog, SpeaksBothLanguagesAndHoldsAllItsControls)
{
    for (const u32 language : {9u, 17u})
        EXPECT_EQ(
            Ask(language,
                [language](HWND dialog) {
                    const bool japanese = language == 17;
                    EXPECT_EQ(CaptionOf(dialog),
                              japanese ? GetParam().japaneseCaption : GetParam().caption);
                    EXPECT_EQ(ControlText(dialog, IDCANCEL), japanese ? u"キャンセル" : u"Cancel");
                    RECT client = {};
                    GetClientRect(dialog, &client);
                    std::vector<int> ids = {IDOK, IDCANCEL};
                    for (int id = 1001; id <= GetParam().preview; ++id)
                        ids.push_back(id);
                    for (const int id : ids) {
                        ASSERT_TRUE(GetDlgItem(dialog, id)) << id;
                        const RECT place = PlaceIn(dialog, GetDlgItem(dialog, id));
                        EXPECT_TRUE(place.left >= 0 && place.top >= 0 &&
                                    place.right <= client.right && place.bottom <= client.bottom)
                            << id;
                    }
                    UpdateWindow(dialog);
                    if (const char* pictures = std::getenv("TAVRIX_EFFECT_PICTURES"))
                        SaveScreen(std::string(pictures) + "/" + GetParam().file +
                                   (japanese ? "-ja.png" : "-en.png"));
                    Press(dialog, IDCANCEL);
                }),
            0);
}

TEST_P(EffectDialog, PreviewIsWhatTheEffectMakesAndFollowsEveryControl)
{
    std::vector<Pixels> previews;
    EXPECT_EQ(Ask(9,
                  [&previews](HWND dialog) {
                      previews.push_back(Previewed(dialog, GetParam().preview));
                      for (const Control& control : GetParam().controls) {
                          Choose(dialog, control, Other(control));
                          previews.push_back(Previewed(dialog, GetParam().preview));
                      }
                      Press(dialog, IDCANCEL);
                  }),
              0);
    ASSERT_EQ(previews.size(), GetParam().controls.size() + 1);
    for (const Control& control : GetParam().controls)
        Set(control.key, control.standard);
    ExpectSame(previews[0], Apply(width, height, Patchy), "at first");
    for (size_t i = 0; i < GetParam().controls.size(); ++i) {
        const Control& control = GetParam().controls[i];
        Set(control.key, Other(control));
        ExpectSame(previews[i + 1], Apply(width, height, Patchy), Utf8(control.key));
        EXPECT_FALSE(previews[i] == previews[i + 1]) << Utf8(control.key) << " changes nothing";
    }
}

TEST_P(EffectDialog, WorksWithoutAPicture)
{
    EXPECT_EQ(Ask(
                  GetParam().file, 9,
                  [](HWND dialog) {
                      for (const Control& control : GetParam().controls)
                          Choose(dialog, control, Other(control));
                      const Pixels empty = Previewed(dialog, GetParam().preview);
                      EXPECT_EQ(empty.bytes, std::vector<u8>(empty.bytes.size(), 128));
                      Press(dialog, IDOK);
                  },
                  false),
              1);
    for (const Control& control : GetParam().controls)
        EXPECT_EQ(Stored(control.key), Other(control)) << Utf8(control.key);
}

TEST_P(EffectDialog, SettingThatCannotBeStoredIsAFailure)
{
    CurrentWriterHost().storesNothing = true;
    EXPECT_EQ(Ask(9, [](HWND dialog) { Press(dialog, IDOK); }), -1);
    PluginCallbacks callbacks = WriterCallbacks();
    callbacks.get = nullptr;
    EXPECT_EQ(plugin.Configure(nullptr, nullptr, callbacks), -4);
}

TEST_F(BlurPreview, FollowsWhatIsTypedOnceItIsANumber)
{
    std::vector<Pixels> previews;
    const auto type = [&previews](HWND dialog, const char16_t* text) {
        SetWindowTextW(GetDlgItem(dialog, ControlRadius), text);
        previews.push_back(Previewed(dialog, ControlBlurPreview));
    };
    EXPECT_EQ(Ask("GaussianBlur", 17,
                  [&](HWND dialog) {
                      previews.push_back(Previewed(dialog, ControlBlurPreview));
                      for (const char16_t* text : {u"3", u"3.", u"3.5", u"", u"200", u"12"})
                          type(dialog, text);
                      if (const char* pictures = std::getenv("TAVRIX_EFFECT_PICTURES"))
                          SaveScreen(std::string(pictures) + "/GaussianBlur-ja.png");
                      Press(dialog, IDCANCEL);
                  }),
              0);
    const u32 radiuses[] = {20, 30, 30, 35, 35, 35, 120};
    ASSERT_EQ(previews.size(), std::size(radiuses));
    for (size_t i = 0; i < previews.size(); ++i) {
        Set(u"GaussianBlurRadius", radiuses[i]);
        ExpectSame(previews[i], Apply(width, height, Patchy), std::to_string(i));
    }
}

TEST_F(BlurPreview, DialogWorksWithoutAPicture)
{
    EXPECT_EQ(Ask(
                  "GaussianBlur", 9,
                  [](HWND dialog) {
                      SetWindowTextW(GetDlgItem(dialog, ControlRadius), u"7");
                      const Pixels empty = Previewed(dialog, ControlBlurPreview);
                      EXPECT_EQ(empty.bytes, std::vector<u8>(empty.bytes.size(), 128));
                      Press(dialog, IDOK);
                  },
                  false),
              1);
    EXPECT_EQ(Stored(u"GaussianBlurRadius"), 70u);
}
