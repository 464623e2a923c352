// The template with a dialog: its own resources, in both languages, found by its own module's
// handle.

#include "kit/tests/Loaded.h"
#include "platform/host/Modules.h"
#include "platform/host/Resources.h"
#include "platform/testing/WindowTesting.h"
#include "plugin/EffectPlugin.h"

// Declares for plugins what the two headers of the platform above declare, letter for letter.
#include "kit/include/tavrix/module.h"

#include <cstring>

using namespace kittest;
using namespace tavrix::testing;

namespace
{

constexpr LANGID English = 1033;
constexpr LANGID Japanese = 1041;
constexpr int ControlGreen = 1002;
constexpr int ControlRed = 1003;

class DialogOfATemplate : public KitTest
{
protected:
    i32 Configure(u32 language, std::function<void(HWND)> script)
    {
        OnModal([this, script](HWND dialog, bool) {
            caption.resize(40);
            caption.resize(static_cast<size_t>(GetWindowTextW(dialog, caption.data(), 40)));
            red = ControlText(dialog, ControlRed);
            cancel = ControlText(dialog, IDCANCEL);
            script(dialog);
        });
        Loaded<EffectPlugin> effect("Invert", language);
        Raster image;
        Fill(&image, 24, {{1, 2, 3}});
        return effect->Configure(nullptr, &image, Callbacks());
    }
    std::u16string caption;
    std::u16string red;
    std::u16string cancel;
};

TEST_F(DialogOfATemplate, OkKeepsTheCheckedColours)
{
    SetLanguage(English);
    EXPECT_EQ(Configure(0,
                        [](HWND dialog) {
                            ClickControl(dialog, ControlGreen);
                            ClickControl(dialog, IDOK);
                        }),
              1);
    EXPECT_EQ(CurrentTold().numbers[u"InvertChannels"], 5u);
    EXPECT_EQ(caption, u"Invert");
    EXPECT_EQ(red, u"&Red");
    EXPECT_EQ(cancel, u"Cancel");
}

TEST_F(DialogOfATemplate, ShowsWhatWasKeptBefore)
{
    CurrentTold().numbers[u"InvertChannels"] = 2;
    EXPECT_EQ(Configure(0,
                        [](HWND dialog) {
                            EXPECT_EQ(SendDlgItemMessageW(dialog, ControlGreen, BM_GETCHECK, 0, 0),
                                      BST_CHECKED);
                            EXPECT_EQ(SendDlgItemMessageW(dialog, ControlRed, BM_GETCHECK, 0, 0),
                                      BST_UNCHECKED);
                            ClickControl(dialog, ControlRed);
                            ClickControl(dialog, IDOK);
                        }),
              1);
    EXPECT_EQ(CurrentTold().numbers[u"InvertChannels"], 6u);
}

TEST_F(DialogOfATemplate, CancelIsNothingDoneAndKeepsNothing)
{
    EXPECT_EQ(Configure(0,
                        [](HWND dialog) {
                            ClickControl(dialog, ControlGreen);
                            ClickControl(dialog, IDCANCEL);
                        }),
              0);
    EXPECT_TRUE(CurrentTold().numbers.empty());
}

TEST_F(DialogOfATemplate, SpeaksJapaneseOnAJapaneseDevice)
{
    SetLanguage(Japanese);
    EXPECT_EQ(Configure(17, [](HWND dialog) { ClickControl(dialog, IDCANCEL); }), 0);
    EXPECT_EQ(caption, u"反転");
    EXPECT_EQ(red, u"赤(&R)");
    EXPECT_EQ(cancel, u"キャンセル");
}

TEST_F(DialogOfATemplate, SpeaksEnglishOnADeviceOfAnyOtherLanguage)
{
    SetLanguage(0x0407);
    EXPECT_EQ(Configure(0, [](HWND dialog) { ClickControl(dialog, IDCANCEL); }), 0);
    EXPECT_EQ(caption, u"Invert");
}

std::string Payload(HMODULE module, int id)
{
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), RT_RCDATA);
    if (found == nullptr)
        return "(none)";
    return {static_cast<const char*>(LockResource(LoadResource(module, found))),
            SizeofResource(module, found)};
}

TEST_F(KitTest, ResourcesAreThePluginsOwnAndGoWithIt)
{
    SetLanguage(English);
    HMODULE module = nullptr;
    {
        Loaded<EffectPlugin> heavy("Heavy one");
        Raster image;
        EXPECT_EQ(heavy->Process(&image, Callbacks()), 1);
        module = reinterpret_cast<HMODULE>(CurrentTold().numbers[u"HeavyModule"]);
        ASSERT_NE(module, nullptr);
        EXPECT_EQ(module, GetModuleHandleW(u"Heavy one.dll"));
        EXPECT_EQ(Payload(module, 7), "english");
        EXPECT_EQ(Payload(module, 8), "payload\n");
        SetLanguage(Japanese);
        EXPECT_EQ(Payload(module, 7), "japanese");
        EXPECT_EQ(Payload(nullptr, 7), "(none)") << "not among the program's";
    }
    EXPECT_EQ(Payload(module, 7), "(none)");
}

} // namespace
