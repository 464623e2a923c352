// What the writers ask: over the real controls, in both languages.

#include "platform/testing/WindowTesting.h"
#include "standard-plugins/jpeg-output/JpegOutputIds.h"
#include "standard-plugins/png-output/PngOutputIds.h"
#include "standard-plugins/tests/support/Writing.h"

#include <commctrl.h>

using namespace plugintest;
using namespace tavrix::testing;

namespace
{

class WriterDialog : public WriterTest
{
protected:
    /// Configure with `script` run once its dialog has come up, which has to close it.
    i32 Configure(const std::string& library, u32 language, const std::function<void(HWND)>& script)
    {
        Load(library, language);
        OnModal([this, script](HWND dialog, bool) {
            ++dialogs;
            script(dialog);
        });
        return plugin.Configure(nullptr, WriterCallbacks());
    }
    static LRESULT Ask(HWND dialog, int control, UINT message)
    {
        return SendDlgItemMessageW(dialog, control, message, 0, 0);
    }
    static bool IsChecked(HWND dialog, int control)
    {
        return Ask(dialog, control, BM_GETCHECK) == BST_CHECKED;
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
    /// The controls to which the tab key goes, from the one that has the focus.
    static std::vector<int> TabOrder()
    {
        std::vector<int> order;
        for (int i = 0; i < 10; ++i) {
            const int id = static_cast<int>(GetWindowLongPtrW(GetFocus(), GWLP_ID));
            if (!order.empty() && id == order[0])
                break;
            order.push_back(id);
            TypeKey(VK_TAB);
            Pump(1);
        }
        return order;
    }
    uintptr_t Stored(const char16_t* key)
    {
        const auto& settings = CurrentWriterHost().settings;
        return settings.contains(key) ? settings.at(key) : 4711;
    }

    int dialogs = 0;
    std::vector<int> order;
};

} // namespace

TEST_F(WriterDialog, PngShowsItsStandardsAndStoresWhatIsChosen)
{
    EXPECT_EQ(Configure("PNG.dll", 9,
                        [](HWND dialog) {
                            EXPECT_EQ(Caption(dialog), u"PNG");
                            EXPECT_EQ(Ask(dialog, ControlCompression, TBM_GETRANGEMIN), 0);
                            EXPECT_EQ(Ask(dialog, ControlCompression, TBM_GETRANGEMAX), 9);
                            EXPECT_EQ(Ask(dialog, ControlCompression, TBM_GETPOS), 6);
                            EXPECT_EQ(ControlText(dialog, ControlCompressionNumber), u"6");
                            EXPECT_FALSE(IsChecked(dialog, ControlInterlaced));
                            EXPECT_EQ(GetFocus(), GetDlgItem(dialog, ControlCompression));
                            TypeKey(VK_RIGHT);
                            TypeKey(VK_RIGHT);
                            EXPECT_EQ(ControlText(dialog, ControlCompressionNumber), u"8");
                            ClickControl(dialog, ControlInterlaced);
                            Press(dialog, IDOK);
                        }),
              1);
    EXPECT_EQ(Stored(u"PngOutputCompression"), 8u);
    EXPECT_EQ(Stored(u"PngOutputInterlaced"), 1u);
    EXPECT_EQ(Configure("PNG.dll", 9,
                        [](HWND dialog) {
                            EXPECT_EQ(Ask(dialog, ControlCompression, TBM_GETPOS), 8);
                            EXPECT_TRUE(IsChecked(dialog, ControlInterlaced));
                            Press(dialog, IDCANCEL);
                        }),
              0);
    EXPECT_EQ(dialogs, 2);
}

TEST_F(WriterDialog, JpegShowsItsStandardsAndStoresWhatIsChosen)
{
    EXPECT_EQ(Configure("JPEG.dll", 9,
                        [](HWND dialog) {
                            EXPECT_EQ(Caption(dialog), u"JPEG");
                            EXPECT_EQ(Ask(dialog, ControlQuality, TBM_GETRANGEMIN), 1);
                            EXPECT_EQ(Ask(dialog, ControlQuality, TBM_GETRANGEMAX), 100);
                            EXPECT_EQ(Ask(dialog, ControlQuality, TBM_GETPOS), 90);
                            EXPECT_EQ(ControlText(dialog, ControlQualityNumber), u"90");
                            EXPECT_TRUE(IsChecked(dialog, ControlSamplingAutomatic));
                            EXPECT_FALSE(IsChecked(dialog, ControlProgressive));
                            TypeKey(VK_LEFT);
                            EXPECT_EQ(ControlText(dialog, ControlQualityNumber), u"89");
                            ClickControl(dialog, ControlSampling422);
                            EXPECT_FALSE(IsChecked(dialog, ControlSamplingAutomatic));
                            ClickControl(dialog, ControlProgressive);
                            Press(dialog, IDOK);
                        }),
              1);
    EXPECT_EQ(Stored(u"JpegOutputQuality"), 89u);
    EXPECT_EQ(Stored(u"JpegOutputSampling"), 2u);
    EXPECT_EQ(Stored(u"JpegOutputProgressive"), 1u);
}

TEST_F(WriterDialog, CancelStoresNothingByButtonKeyOrClosing)
{
    const std::function<void(HWND)> ways[] = {
        [](HWND dialog) { ClickControl(dialog, IDCANCEL); }, [](HWND) { TypeKey(VK_ESCAPE); },
        [](HWND dialog) { PostMessageW(dialog, WM_CLOSE, 0, 0); }};
    for (const char* library : {"PNG.dll", "JPEG.dll"})
        for (const auto& way : ways)
            EXPECT_EQ(Configure(library, 9,
                                [&way](HWND dialog) {
                                    TypeKey(VK_LEFT);
                                    way(dialog);
                                }),
                      0);
    EXPECT_TRUE(CurrentWriterHost().settings.empty());
}

TEST_F(WriterDialog, EnterIsOk)
{
    for (const char* library : {"PNG.dll", "JPEG.dll"})
        EXPECT_EQ(Configure(library, 9, [](HWND) { TypeKey(VK_RETURN); }), 1);
    EXPECT_EQ(Stored(u"PngOutputCompression"), 6u);
    EXPECT_EQ(Stored(u"JpegOutputQuality"), 90u);
}

TEST_F(WriterDialog, WildStoredSettingsAreShownWithinTheirRange)
{
    Set(u"PngOutputCompression", 77);
    Set(u"PngOutputInterlaced", 4294967295u);
    EXPECT_EQ(Configure("PNG.dll", 9, [](HWND dialog) { Press(dialog, IDOK); }), 1);
    EXPECT_EQ(Stored(u"PngOutputCompression"), 9u);
    EXPECT_EQ(Stored(u"PngOutputInterlaced"), 1u);
    Set(u"JpegOutputQuality", 0);
    Set(u"JpegOutputSampling", 17);
    EXPECT_EQ(Configure("JPEG.dll", 9,
                        [](HWND dialog) {
                            EXPECT_EQ(ControlText(dialog, ControlQualityNumber), u"1");
                            EXPECT_TRUE(IsChecked(dialog, ControlSampling420));
                            Press(dialog, IDOK);
                        }),
              1);
    EXPECT_EQ(Stored(u"JpegOutputQuality"), 1u);
    EXPECT_EQ(Stored(u"JpegOutputSampling"), 3u);
}

TEST_F(WriterDialog, SpeaksTheLanguageThatThePluginWasTold)
{
    // The device speaks English: the plugin's own language decides.
    SetLanguage(1033);
    EXPECT_EQ(Configure("PNG.dll", 17,
                        [](HWND dialog) {
                            EXPECT_EQ(ControlText(dialog, IDCANCEL), u"キャンセル");
                            EXPECT_EQ(Ask(dialog, ControlCompression, TBM_GETPOS), 6);
                            Press(dialog, IDCANCEL);
                        }),
              0);
    EXPECT_EQ(Configure("JPEG.dll", 17,
                        [](HWND dialog) {
                            EXPECT_EQ(ControlText(dialog, ControlSampling444),
                                      u"4:&4:4: 1 画素ごと");
                            Press(dialog, IDCANCEL);
                        }),
              0);
}

TEST_F(WriterDialog, SettingThatCannotBeStoredIsAFailure)
{
    CurrentWriterHost().storesNothing = true;
    EXPECT_EQ(Configure("PNG.dll", 9, [](HWND dialog) { Press(dialog, IDOK); }), -1);
    Load("PNG.dll");
    PluginCallbacks callbacks = WriterCallbacks();
    callbacks.put = nullptr;
    EXPECT_EQ(plugin.Configure(nullptr, callbacks), -4);
}

TEST_F(WriterDialog, TabKeyGoesDownTheDialogAndTheScreenHoldsIt)
{
    const auto look = [this](HWND dialog) {
        RECT place = {};
        GetWindowRect(dialog, &place);
        EXPECT_GE(place.left, 0);
        EXPECT_GE(place.top, 0);
        EXPECT_LE(place.right, 640);
        EXPECT_LE(place.bottom, 480);
        order = TabOrder();
        Press(dialog, IDCANCEL);
    };
    for (const u32 language : {9u, 17u}) {
        EXPECT_EQ(Configure("PNG.dll", language, look), 0);
        EXPECT_EQ(order, (std::vector<int>{ControlCompression, ControlInterlaced, IDOK, IDCANCEL}));
        EXPECT_EQ(Configure("JPEG.dll", language, look), 0);
        EXPECT_EQ(order, (std::vector<int>{ControlQuality, ControlSamplingAutomatic,
                                           ControlProgressive, IDOK, IDCANCEL}));
    }
}
