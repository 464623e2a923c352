// What the blur and the tones ask: over the real controls, in both languages.

#include "platform/testing/WindowTesting.h"
#include "standard-plugins/brightness-contrast/BrightnessContrastIds.h"
#include "standard-plugins/gaussian-blur/GaussianBlurIds.h"
#include "standard-plugins/tests/support/Changing.h"

#include <commctrl.h>

using namespace plugintest;
using namespace tavrix::testing;

namespace
{

template <typename Host>
class ChangeDialog : public ChangeTest<Host>
{
protected:
    /// Configure with a script for each window that comes up, the dialog and its boxes.
    i32 Configure(const std::string& library, u32 language,
                  const std::vector<std::function<void(HWND)>>& scripts)
    {
        this->Load(library, language);
        size_t next = 0;
        OnModal([&](HWND window, bool) {
            if (next < scripts.size())
                scripts[next++](window);
            else
                PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
        });
        Raster image;
        Fill(&image, 12, 10, 24, Wild);
        const i32 result = this->plugin.Configure(nullptr, &image, WriterCallbacks());
        EXPECT_TRUE(PixelsOf(&image) == PixelsOf(12, 10, Wild)) << "a dialog changes nothing";
        EXPECT_EQ(next, scripts.size());
        OnModal(nullptr);
        return result;
    }
    static void Press(HWND dialog, int id)
    {
        PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
    }
    static std::u16string Caption(HWND dialog)
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

class BlurDialog : public ChangeDialog<EffectPlugin>
{
protected:
    i32 Ask(u32 language, const std::vector<std::function<void(HWND)>>& scripts)
    {
        return Configure("GaussianBlur.dll", language, scripts);
    }
    /// What is typed over the radius that is shown, and then Enter.
    static std::function<void(HWND)> Type(const std::u16string& text)
    {
        return [text](HWND) {
            SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
            TypeKey(VK_DELETE);
            CommitText(text);
            TypeKey(VK_RETURN);
        };
    }
    static std::function<void(HWND)> Cancel()
    {
        return [](HWND dialog) { Press(dialog, IDCANCEL); };
    }
};

class ToneDialog : public ChangeDialog<AdjustPlugin>
{
protected:
    i32 Ask(u32 language, const std::function<void(HWND)>& script)
    {
        return Configure("BrightnessContrast.dll", language, {script});
    }
    static LRESULT Position(HWND dialog, int control)
    {
        return SendDlgItemMessageW(dialog, control, TBM_GETPOS, 0, 0);
    }
};

} // namespace

TEST_F(BlurDialog, ShowsTwoPixelsAtFirstAndThenWhatWasTakenLast)
{
    EXPECT_EQ(Ask(9, {[](HWND dialog) {
                      EXPECT_EQ(Caption(dialog), u"Gaussian Blur");
                      EXPECT_EQ(ControlText(dialog, ControlRadius), u"2");
                      EXPECT_EQ(GetFocus(), GetDlgItem(dialog, ControlRadius));
                      Press(dialog, IDOK);
                  }}),
              1);
    EXPECT_EQ(Stored(u"GaussianBlurRadius"), 20u);
    EXPECT_EQ(Ask(9, {Type(u"12.5")}), 1);
    EXPECT_EQ(Stored(u"GaussianBlurRadius"), 125u);
    EXPECT_EQ(Ask(9, {[](HWND dialog) {
                      EXPECT_EQ(ControlText(dialog, ControlRadius), u"12.5");
                      Press(dialog, IDCANCEL);
                  }}),
              0);
    EXPECT_EQ(Stored(u"GaussianBlurRadius"), 125u);
}

TEST_F(BlurDialog, TakesNumbersOfTheRangeHoweverTheyAreWritten)
{
    const struct {
        const char16_t* typed;
        u32 tenths;
        const char16_t* shown;
    } rows[] = {{u"0.1", 1, u"0.1"},    {u"100", 1000, u"100"}, {u"100.0", 1000, u"100"},
                {u" 7 ", 70, u"7"},     {u"3,4", 34, u"3.4"},   {u"007.5", 75, u"7.5"},
                {u"99.9", 999, u"99.9"}};
    for (const auto& row : rows) {
        EXPECT_EQ(Ask(9, {Type(row.typed)}), 1);
        EXPECT_EQ(Stored(u"GaussianBlurRadius"), row.tenths) << Utf8(row.typed);
        EXPECT_EQ(Ask(9, {[&row](HWND dialog) {
                          EXPECT_EQ(ControlText(dialog, ControlRadius), row.shown);
                          Press(dialog, IDCANCEL);
                      }}),
                  0);
    }
}

TEST_F(BlurDialog, AnythingElseIsRefusedAndTheDialogStays)
{
    Set(u"GaussianBlurRadius", 30);
    for (const char16_t* typed :
         {u"", u"0", u"0.0", u"100.1", u"101", u"1000", u"42949673", u"-3", u"2.55", u"2.", u".5",
          u"x", u"3x", u"1 2", u"1e1", u"999999999999999"})
        for (const u32 language : {9u, 17u}) {
            HWND asked = nullptr;
            EXPECT_EQ(Ask(language,
                          {[&](HWND dialog) {
                               asked = dialog;
                               Type(typed)(dialog);
                           },
                           [&](HWND box) {
                               EXPECT_EQ(BoxText(box),
                                         language == 17 ? u"半径は 0.1 から 100 ピクセルまでです。"
                                                        : u"The radius is from 0.1 to 100 pixels.");
                               EXPECT_EQ(BoxCaption(box),
                                         language == 17 ? u"ガウスぼかし" : u"Gaussian Blur");
                               Press(asked, IDCANCEL);
                               EndDialog(box, IDOK);
                           }}),
                      0)
                << Utf8(typed);
            EXPECT_EQ(Stored(u"GaussianBlurRadius"), 30u) << Utf8(typed);
        }
}

TEST_F(BlurDialog, AfterARefusalTheNumberIsMarkedToBeTypedOver)
{
    EXPECT_EQ(Ask(9, {[](HWND dialog) {
                          const HWND field = GetDlgItem(dialog, ControlRadius);
                          SetWindowTextW(field, u"500");
                          SendMessageW(field, EM_SETSEL, 1, 1);
                          ClickControl(dialog, IDOK);
                          EXPECT_EQ(GetFocus(), field);
                          EXPECT_EQ(SendMessageW(field, EM_GETSEL, 0, 0), MAKELONG(0, 3));
                          Press(dialog, IDCANCEL);
                      },
                      [](HWND box) { EndDialog(box, IDOK); }}),
              0);
}

TEST_F(BlurDialog, SpeaksJapaneseAndShowsWildStoredNumbersWithinTheRange)
{
    Set(u"GaussianBlurRadius", 0);
    EXPECT_EQ(Ask(17, {[](HWND dialog) {
                      EXPECT_EQ(Caption(dialog), u"ガウスぼかし");
                      EXPECT_EQ(ControlText(dialog, IDCANCEL), u"キャンセル");
                      EXPECT_EQ(ControlText(dialog, ControlRadius), u"0.1");
                      Press(dialog, IDCANCEL);
                  }}),
              0);
    Set(u"GaussianBlurRadius", 4294967295u);
    EXPECT_EQ(Ask(17, {[](HWND dialog) {
                      EXPECT_EQ(ControlText(dialog, ControlRadius), u"100");
                      Press(dialog, IDOK);
                  }}),
              1);
    EXPECT_EQ(Stored(u"GaussianBlurRadius"), 1000u);
}

TEST_F(BlurDialog, SettingThatCannotBeStoredIsAFailure)
{
    CurrentWriterHost().storesNothing = true;
    EXPECT_EQ(Ask(9, {[](HWND dialog) { Press(dialog, IDOK); }}), -1);
    PluginCallbacks callbacks = WriterCallbacks();
    callbacks.get = nullptr;
    EXPECT_EQ(plugin.Configure(nullptr, nullptr, callbacks), -4);
}

TEST_F(ToneDialog, ShowsTheMiddleAtFirstAndStoresWhatIsChosen)
{
    EXPECT_EQ(Ask(9,
                  [](HWND dialog) {
                      EXPECT_EQ(Caption(dialog), u"Brightness and Contrast");
                      EXPECT_EQ(Position(dialog, ControlBrightness), 100);
                      EXPECT_EQ(ControlText(dialog, ControlBrightnessNumber), u"0");
                      EXPECT_EQ(ControlText(dialog, ControlContrastNumber), u"0");
                      TypeKey(VK_LEFT);
                      TypeKey(VK_LEFT);
                      EXPECT_EQ(ControlText(dialog, ControlBrightnessNumber), u"-2");
                      TypeKey(VK_TAB);
                      TypeKey(VK_END);
                      EXPECT_EQ(ControlText(dialog, ControlContrastNumber), u"100");
                      TypeKey(VK_RETURN);
                  }),
              1);
    EXPECT_EQ(Stored(u"BrightnessContrastBrightness"), 98u);
    EXPECT_EQ(Stored(u"BrightnessContrastContrast"), 200u);
    EXPECT_EQ(Ask(9,
                  [](HWND dialog) {
                      EXPECT_EQ(ControlText(dialog, ControlBrightnessNumber), u"-2");
                      EXPECT_EQ(ControlText(dialog, ControlContrastNumber), u"100");
                      TypeKey(VK_HOME);
                      EXPECT_EQ(ControlText(dialog, ControlBrightnessNumber), u"-100");
                      TypeKey(VK_ESCAPE);
                  }),
              0);
    EXPECT_EQ(Stored(u"BrightnessContrastBrightness"), 98u);
}

TEST_F(ToneDialog, SpeaksJapaneseAndShowsWildStoredNumbersWithinTheRange)
{
    Set(u"BrightnessContrastContrast", 4294967295u);
    EXPECT_EQ(Ask(17,
                  [](HWND dialog) {
                      EXPECT_EQ(Caption(dialog), u"明るさとコントラスト");
                      EXPECT_EQ(ControlText(dialog, IDCANCEL), u"キャンセル");
                      EXPECT_EQ(ControlText(dialog, ControlContrastNumber), u"100");
                      Press(dialog, IDOK);
                  }),
              1);
    EXPECT_EQ(Stored(u"BrightnessContrastContrast"), 200u);
    EXPECT_EQ(Stored(u"BrightnessContrastBrightness"), 100u);
}
