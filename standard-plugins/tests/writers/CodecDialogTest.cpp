// What the writers of GIF, TIFF, WebP and JPEG XL ask: over the real controls, in both languages.

#include "platform/testing/WindowTesting.h"
#include "standard-plugins/tests/support/Writing.h"

#include <commctrl.h>

using namespace plugintest;
using namespace tavrix::testing;

namespace
{

enum class Kind { Trackbar, Check, Choice };

struct Control {
    const char16_t* key;
    Kind kind;
    int id;
    int number; // beside a trackbar
    u32 least;
    u32 most;
    u32 standard;
};

struct Form {
    const char* name;
    const char* file;
    const char16_t* caption;
    std::vector<Control> controls;
    /// The text of a control in each language.
    int textId;
    const char16_t* english;
    const char16_t* japanese;
    std::vector<int> tabOrder;
};

const Form forms[] = {
    {"Gif",
     "GIF.dll",
     u"GIF",
     {{u"GifOutputColors", Kind::Trackbar, 1001, 1002, 2, 256, 256},
      {u"GifOutputDiffusion", Kind::Check, 1003, 0, 0, 1, 1},
      {u"GifOutputInterlaced", Kind::Check, 1004, 0, 0, 1, 0}},
     1003,
     u"&Diffusion: mixes the colours that are missing",
     u"誤差拡散: 足りない色を混ぜて表す(&D)",
     {1001, 1003, 1004, IDOK, IDCANCEL}},
    {"Tiff",
     "TIFF.dll",
     u"TIFF",
     {{u"TiffOutputCompression", Kind::Choice, 1010, 0, 0, 3, 2},
      {u"TiffOutputPredictor", Kind::Check, 1001, 0, 0, 1, 1}},
     1001,
     u"Differences of neigh&bours (LZW, Deflate)",
     u"隣の画素との差分を使う (LZW、Deflate)(&S)",
     {1010, 1001, IDOK, IDCANCEL}},
    {"WebP",
     "WebP.dll",
     u"WebP",
     {{u"WebpOutputLossless", Kind::Check, 1005, 0, 0, 1, 0},
      {u"WebpOutputQuality", Kind::Trackbar, 1001, 1002, 0, 100, 90},
      {u"WebpOutputEffort", Kind::Trackbar, 1003, 1004, 0, 6, 4}},
     1005,
     u"&Lossless",
     u"劣化なし(&L)",
     {1005, 1001, 1003, IDOK, IDCANCEL}},
    {"Jxl",
     "JXL.dll",
     u"JPEG XL",
     {{u"JxlOutputLossless", Kind::Check, 1005, 0, 0, 1, 0},
      {u"JxlOutputQuality", Kind::Trackbar, 1001, 1002, 1, 100, 90},
      {u"JxlOutputEffort", Kind::Trackbar, 1003, 1004, 1, 9, 3}},
     1005,
     u"&Lossless",
     u"劣化なし(&L)",
     {1005, 1001, 1003, IDOK, IDCANCEL}},
};

void PrintTo(const Form& form, std::ostream* out)
{
    *out << form.name;
}

std::u16string Digits(u32 number)
{
    return Wide(std::to_string(number));
}

class CodecDialog : public WriterTest, public testing::WithParamInterface<Form>
{
protected:
    i32 Configure(u32 language, const std::function<void(HWND)>& script)
    {
        Load(GetParam().file, language);
        OnModal([this, script](HWND dialog, bool) {
            ++dialogs;
            script(dialog);
        });
        return plugin.Configure(nullptr, WriterCallbacks());
    }
    static LRESULT Ask(HWND dialog, int control, UINT message, WPARAM first = 0, LPARAM second = 0)
    {
        return SendDlgItemMessageW(dialog, control, message, first, second);
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
    static void ExpectShown(HWND dialog, const Control& control, u32 value)
    {
        switch (control.kind) {
        case Kind::Trackbar:
            EXPECT_EQ(Ask(dialog, control.id, TBM_GETRANGEMIN),
                      static_cast<LRESULT>(control.least));
            EXPECT_EQ(Ask(dialog, control.id, TBM_GETRANGEMAX), static_cast<LRESULT>(control.most));
            EXPECT_EQ(Ask(dialog, control.id, TBM_GETPOS), static_cast<LRESULT>(value));
            EXPECT_EQ(ControlText(dialog, control.number), Digits(value));
            break;
        case Kind::Check:
            EXPECT_EQ(IsChecked(dialog, control.id), value != 0);
            break;
        case Kind::Choice:
            for (u32 i = 0; i <= control.most; ++i)
                EXPECT_EQ(IsChecked(dialog, control.id + static_cast<int>(i)), i == value);
            break;
        }
    }
    /// Makes it another value, which is returned.
    static u32 Change(HWND dialog, const Control& control, u32 value)
    {
        switch (control.kind) {
        case Kind::Trackbar:
            SetFocus(GetDlgItem(dialog, control.id));
            TypeKey(VK_LEFT);
            EXPECT_EQ(ControlText(dialog, control.number), Digits(value - 1));
            return value - 1;
        case Kind::Check:
            ClickControl(dialog, control.id);
            return 1 - value;
        default:
            ClickControl(dialog, control.id + 1);
            return 1;
        }
    }
    uintptr_t Stored(const char16_t* key)
    {
        const auto& settings = CurrentWriterHost().settings;
        return settings.contains(key) ? settings.at(key) : 4711;
    }

    int dialogs = 0;
};

INSTANTIATE_TEST_SUITE_P(Each, CodecDialog, testing::ValuesIn(forms),
                         [](const auto& entry) { return std::string(entry.param.name); });

} // namespace

TEST_P(CodecDialog, ShowsItsStandardsAndStoresWhatIsChosen)
{
    std::vector<u32> chosen;
    EXPECT_EQ(Configure(9,
                        [&](HWND dialog) {
                            WCHAR text[64] = {};
                            GetWindowTextW(dialog, text, 64);
                            EXPECT_EQ(std::u16string(text), GetParam().caption);
                            for (const Control& control : GetParam().controls) {
                                ExpectShown(dialog, control, control.standard);
                                chosen.push_back(Change(dialog, control, control.standard));
                            }
                            Press(dialog, IDOK);
                        }),
              1);
    ASSERT_EQ(chosen.size(), GetParam().controls.size());
    for (size_t i = 0; i < chosen.size(); ++i)
        EXPECT_EQ(Stored(GetParam().controls[i].key), chosen[i]);
    EXPECT_EQ(Configure(9,
                        [&](HWND dialog) {
                            for (size_t i = 0; i < chosen.size(); ++i)
                                ExpectShown(dialog, GetParam().controls[i], chosen[i]);
                            Press(dialog, IDCANCEL);
                        }),
              0);
    EXPECT_EQ(dialogs, 2);
}

TEST_P(CodecDialog, CancelStoresNothingByButtonKeyOrClosing)
{
    const std::function<void(HWND)> ways[] = {
        [](HWND dialog) { ClickControl(dialog, IDCANCEL); }, [](HWND) { TypeKey(VK_ESCAPE); },
        [](HWND dialog) { PostMessageW(dialog, WM_CLOSE, 0, 0); }};
    for (const auto& way : ways)
        EXPECT_EQ(Configure(9,
                            [&](HWND dialog) {
                                const Control& control = GetParam().controls[0];
                                (void)Change(dialog, control, control.standard);
                                way(dialog);
                            }),
                  0);
    EXPECT_EQ(dialogs, 3);
    EXPECT_TRUE(CurrentWriterHost().settings.empty());
}

TEST_P(CodecDialog, EnterIsOk)
{
    EXPECT_EQ(Configure(9, [](HWND) { TypeKey(VK_RETURN); }), 1);
    for (const Control& control : GetParam().controls)
        EXPECT_EQ(Stored(control.key), control.standard);
}

TEST_P(CodecDialog, WildStoredSettingsAreShownWithinTheirRange)
{
    for (const u32 wild : {4294967295u, 0u}) {
        for (const Control& control : GetParam().controls)
            Set(control.key, wild);
        const auto expected = [wild](const Control& control) {
            return wild == 0 ? control.least : control.most;
        };
        EXPECT_EQ(Configure(9,
                            [&](HWND dialog) {
                                for (const Control& control : GetParam().controls)
                                    ExpectShown(dialog, control, expected(control));
                                Press(dialog, IDOK);
                            }),
                  1);
        for (const Control& control : GetParam().controls)
            EXPECT_EQ(Stored(control.key), expected(control));
    }
}

TEST_P(CodecDialog, SpeaksTheLanguageThatThePluginWasTold)
{
    for (const u32 language : {9u, 17u})
        EXPECT_EQ(Configure(language,
                            [&](HWND dialog) {
                                const bool isEnglish = language == 9;
                                EXPECT_EQ(ControlText(dialog, IDCANCEL),
                                          isEnglish ? u"Cancel" : u"キャンセル");
                                EXPECT_EQ(ControlText(dialog, GetParam().textId),
                                          isEnglish ? GetParam().english : GetParam().japanese);
                                for (const Control& control : GetParam().controls)
                                    ExpectShown(dialog, control, control.standard);
                                Press(dialog, IDCANCEL);
                            }),
                  0);
}

TEST_P(CodecDialog, SettingThatCannotBeStoredIsAFailure)
{
    CurrentWriterHost().storesNothing = true;
    EXPECT_EQ(Configure(9, [](HWND dialog) { Press(dialog, IDOK); }), -1);
}

TEST_P(CodecDialog, TabKeyGoesDownTheDialogAndTheScreenHoldsIt)
{
    for (const u32 language : {9u, 17u}) {
        std::vector<int> order;
        EXPECT_EQ(Configure(language,
                            [&](HWND dialog) {
                                RECT place = {};
                                GetWindowRect(dialog, &place);
                                EXPECT_GE(place.left, 0);
                                EXPECT_GE(place.top, 0);
                                EXPECT_LE(place.right, 640);
                                EXPECT_LE(place.bottom, 480);
                                for (int i = 0; i < 10; ++i) {
                                    const auto id =
                                        static_cast<int>(GetWindowLongPtrW(GetFocus(), GWLP_ID));
                                    if (!order.empty() && id == order[0])
                                        break;
                                    order.push_back(id);
                                    TypeKey(VK_TAB);
                                    Pump(1);
                                }
                                Press(dialog, IDCANCEL);
                            }),
                  0);
        EXPECT_EQ(order, GetParam().tabOrder);
    }
}
