// The question that a reader asks, when it was told to: which colour lies behind the transparent
// parts of a picture. Over the real controls, in both languages.

#include "platform/testing/WindowTesting.h"
#include "standard-plugins/common/device/BackgroundDialogIds.h"
#include "standard-plugins/tests/support/Writing.h"

#include "plugin/InputPlugin.h"

#include "platform/testing/core/TestPaths.h"
#include <commctrl.h>

using namespace plugintest;
using namespace tavrix::testing;

namespace
{

struct Reader {
    const char* file;
    const char16_t* prefix;
};

const Reader readers[] = {
    {"PNG.dll", u"PngInput"},   {"GIF.dll", u"GifInput"},   {"WebP.dll", u"WebpInput"},
    {"TIFF.dll", u"TiffInput"}, {"AVIF.dll", u"AvifInput"}, {"JXL.dll", u"JxlInput"},
    {"HEIF.dll", u"HeifInput"}, {"BMP.dll", u"BmpInput"},   {"PNM.dll", u"PnmInput"},
    {"TGA.dll", u"TgaInput"},   {"PCX.dll", u"PcxInput"},   {"ICO.dll", u"IcoInput"},
};

void PrintTo(const Reader& reader, std::ostream* out)
{
    *out << reader.file;
}

using Settings = std::map<std::u16string, uintptr_t>;

Settings& Stored()
{
    return CurrentWriterHost().settings;
}

struct TrackbarRow {
    int bar;
    int number;
};
constexpr TrackbarRow rows[] = {{ControlBackgroundRed, ControlBackgroundRedNumber},
                                {ControlBackgroundGreen, ControlBackgroundGreenNumber},
                                {ControlBackgroundBlue, ControlBackgroundBlueNumber}};

class BackgroundDialog : public testing::TestWithParam<Reader>
{
protected:
    BackgroundDialog()
    {
        CurrentWriterHost() = {};
        const auto plugins = tavrix::testing::InBuild("/bin/PLUGINS");
        found = plugin.ScanIn(DevicePath(plugins).c_str(), ForgetPaths);
        Load(9);
    }
    ~BackgroundDialog() override { plugin.Unload(); }
    void Load(u32 language)
    {
        for (u32 i = 0; found > 0 && i < static_cast<u32>(found); ++i)
            if (Utf8(plugin.Path(i)).ends_with(std::string("\\") + GetParam().file)) {
                ASSERT_EQ(plugin.LoadByIndex(i, language), 1);
                return;
            }
        FAIL() << GetParam().file << " is not among the plugins";
    }
    std::u16string Key(const std::u16string& name) const { return GetParam().prefix + name; }
    void Store(uintptr_t red, uintptr_t green, uintptr_t blue, uintptr_t ask)
    {
        Stored() = Colour(red, green, blue, ask);
    }
    Settings Colour(uintptr_t red, uintptr_t green, uintptr_t blue, uintptr_t ask) const
    {
        return {{Key(u"BackgroundRed"), red},
                {Key(u"BackgroundGreen"), green},
                {Key(u"BackgroundBlue"), blue},
                {Key(u"AskBackground"), ask}};
    }
    /// Configure with `script` run once its dialog has come up, which has to close it.
    i32 Configure(const std::function<void(HWND)>& script)
    {
        OnModal([this, script](HWND dialog, bool) {
            ++dialogs;
            script(dialog);
        });
        return plugin.Configure(nullptr, WriterCallbacks());
    }
    static void Press(HWND dialog, int id)
    {
        PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
    }
    static void ExpectShown(HWND dialog, const std::vector<int>& channels)
    {
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(SendDlgItemMessageW(dialog, rows[i].bar, TBM_GETPOS, 0, 0), channels[i]);
            EXPECT_EQ(SendDlgItemMessageW(dialog, rows[i].bar, TBM_GETRANGEMIN, 0, 0), 0);
            EXPECT_EQ(SendDlgItemMessageW(dialog, rows[i].bar, TBM_GETRANGEMAX, 0, 0), 255);
            EXPECT_EQ(ControlText(dialog, rows[i].number), Wide(std::to_string(channels[i])));
        }
    }
    static bool IsAskChecked(HWND dialog)
    {
        return SendDlgItemMessageW(dialog, ControlBackgroundAsk, BM_GETCHECK, 0, 0) == BST_CHECKED;
    }
    /// The middle of the field that shows the colour, as it is on the screen.
    static uint32_t Swatch(HWND dialog)
    {
        Pump(1);
        RECT place = {};
        GetWindowRect(GetDlgItem(dialog, ControlBackgroundSwatch), &place);
        return ScreenPixels().At((place.left + place.right) / 2, (place.top + place.bottom) / 2) &
               0xffffff;
    }
    static std::u16string Caption(HWND dialog)
    {
        WCHAR text[64] = {};
        GetWindowTextW(dialog, text, 64);
        return text;
    }

    Scope scope;
    InputPlugin plugin;
    int dialogs = 0;

private:
    i32 found = 0;
};

INSTANTIATE_TEST_SUITE_P(Each, BackgroundDialog, testing::ValuesIn(readers), [](const auto& entry) {
    const std::string file = entry.param.file;
    return file.substr(0, file.find('.'));
});

} // namespace

TEST_P(BackgroundDialog, ComesOnlyWhereItWasAskedFor)
{
    const auto close = [](HWND dialog) { Press(dialog, IDCANCEL); };
    EXPECT_EQ(Configure(close), 1) << "nothing is stored";
    Store(1, 2, 3, 0);
    EXPECT_EQ(Configure(close), 1);
    EXPECT_EQ(dialogs, 0);
    EXPECT_EQ(Stored(), Colour(1, 2, 3, 0));
    Store(1, 2, 3, 1);
    EXPECT_EQ(Configure(close), 0);
    EXPECT_EQ(dialogs, 1);
}

TEST_P(BackgroundDialog, ShowsTheStoredColourAndStoresWhatIsChosen)
{
    Store(10, 200, 77, 1);
    EXPECT_EQ(Configure([](HWND dialog) {
                  ExpectShown(dialog, {10, 200, 77});
                  EXPECT_TRUE(IsAskChecked(dialog));
                  EXPECT_EQ(Swatch(dialog), 0x0ac84du);
                  EXPECT_EQ(GetFocus(), GetDlgItem(dialog, ControlBackgroundRed));
                  TypeKey(VK_RIGHT);
                  TypeKey(VK_TAB);
                  TypeKey(VK_HOME);
                  ExpectShown(dialog, {11, 0, 77});
                  EXPECT_EQ(Swatch(dialog), 0x0b004du);
                  Press(dialog, IDOK);
              }),
              1);
    EXPECT_EQ(Stored(), Colour(11, 0, 77, 1));
}

TEST_P(BackgroundDialog, IsWhiteAtFirst)
{
    Stored() = {{Key(u"AskBackground"), 1}};
    EXPECT_EQ(Configure([](HWND dialog) {
                  ExpectShown(dialog, {255, 255, 255});
                  EXPECT_EQ(Swatch(dialog), 0xffffffu);
                  Press(dialog, IDOK);
              }),
              1);
    EXPECT_EQ(Stored(), Colour(255, 255, 255, 1));
}

TEST_P(BackgroundDialog, CanBeToldNotToComeAgain)
{
    Store(1, 2, 3, 1);
    const auto uncheck = [](HWND dialog) {
        ClickControl(dialog, ControlBackgroundAsk);
        EXPECT_FALSE(IsAskChecked(dialog));
        Press(dialog, IDOK);
    };
    EXPECT_EQ(Configure(uncheck), 1);
    EXPECT_EQ(Stored(), Colour(1, 2, 3, 0));
    EXPECT_EQ(Configure(uncheck), 1);
    EXPECT_EQ(dialogs, 1);
}

TEST_P(BackgroundDialog, CancelStoresNothingByButtonKeyOrClosing)
{
    const std::function<void(HWND)> ways[] = {
        [](HWND dialog) { ClickControl(dialog, IDCANCEL); }, [](HWND) { TypeKey(VK_ESCAPE); },
        [](HWND dialog) { PostMessageW(dialog, WM_CLOSE, 0, 0); }};
    for (const auto& way : ways) {
        Store(5, 6, 7, 1);
        EXPECT_EQ(Configure([&way](HWND dialog) {
                      TypeKey(VK_RIGHT);
                      ClickControl(dialog, ControlBackgroundAsk);
                      way(dialog);
                  }),
                  0);
        EXPECT_EQ(Stored(), Colour(5, 6, 7, 1));
    }
    EXPECT_EQ(dialogs, 3);
}

TEST_P(BackgroundDialog, WildStoredValuesAreShownWithinTheirRange)
{
    Store(256, 4294967295u, 1000, 4711);
    EXPECT_EQ(Configure([](HWND dialog) {
                  ExpectShown(dialog, {255, 255, 255});
                  EXPECT_TRUE(IsAskChecked(dialog));
                  Press(dialog, IDOK);
              }),
              1);
    EXPECT_EQ(Stored(), Colour(255, 255, 255, 1));
}

TEST_P(BackgroundDialog, SpeaksTheLanguageThatThePluginWasTold)
{
    for (const bool japanese : {false, true}) {
        // The device speaks the other one: the plugin's own language decides.
        SetLanguage(japanese ? 1033 : 1041);
        Load(japanese ? 17 : 9);
        Store(1, 2, 3, 1);
        EXPECT_EQ(Configure([japanese](HWND dialog) {
                      EXPECT_EQ(Caption(dialog), japanese ? u"透明な部分の背景"
                                                          : u"Background of transparent parts");
                      EXPECT_EQ(ControlText(dialog, ControlBackgroundAsk),
                                japanese ? u"画像を開くたびに確認する(&A)"
                                         : u"&Ask each time a picture is opened");
                      EXPECT_EQ(ControlText(dialog, IDCANCEL),
                                japanese ? u"キャンセル" : u"Cancel");
                      ExpectShown(dialog, {1, 2, 3});
                      Press(dialog, IDOK);
                  }),
                  1);
        EXPECT_EQ(Stored(), Colour(1, 2, 3, 1));
    }
    EXPECT_EQ(dialogs, 2);
}

TEST_P(BackgroundDialog, FailsWhereNothingCanBeStoredOrTheCallbacksAreMissing)
{
    Store(1, 2, 3, 1);
    CurrentWriterHost().storesNothing = true;
    EXPECT_EQ(Configure([](HWND dialog) { Press(dialog, IDOK); }), -1);
    EXPECT_EQ(dialogs, 1);
    PluginCallbacks callbacks = WriterCallbacks();
    callbacks.put = nullptr;
    EXPECT_EQ(plugin.Configure(nullptr, callbacks), -4);
    callbacks.get = nullptr;
    EXPECT_EQ(plugin.Configure(nullptr, callbacks), 1) << "nobody tells it to ask";
    EXPECT_EQ(dialogs, 1);
}
