// The dialog of an adjustment over its real controls. Each plugin's own file gives its shape and
// instantiates the tests of AdjustDialogTest.cpp, since the numbers of all scripts have the same
// names.
#pragma once

#include "platform/testing/WindowTesting.h"
#include "standard-plugins/tests/adjustments/Adjusting.h"

namespace plugintest
{

enum class Asked { Trackbar, Check, Choice };

struct AskedSetting {
    const char16_t* key;
    Asked kind;
    int control;
    u32 least;
    u32 most;
    u32 standard;
    /// Of a trackbar: the text beside it at `least`, at `most` and at `standard`.
    int number = 0;
    std::u16string leastText = {};
    std::u16string mostText = {};
    std::u16string standardText = {};
};

struct DialogShape {
    std::string file;
    std::u16string caption;
    std::u16string japaneseCaption;
    std::vector<AskedSetting> settings;
    int preview;
};

void PrintTo(const DialogShape& shape, std::ostream* out);

class AdjustDialog : public AdjustTest, public testing::WithParamInterface<DialogShape>
{
protected:
    /// Configure for a small picture, with a script for the dialog.
    i32 Ask(u32 language, const std::function<void(HWND)>& script);
    static void Press(HWND dialog, int id);
    /// What the controls show.
    static std::vector<u32> Shown(HWND dialog);
    static std::vector<std::u16string> Numbers(HWND dialog);
    /// Puts every control to its other end, by keys and clicks.
    static void MoveAll(HWND dialog);
    static std::vector<u32> StoredValues();
    /// The picture's pixels as the preview shows them.
    static Pixels PreviewOf(HWND dialog);
    /// Of the device screen, where the preview shows a pixel.
    static POINT PlaceOfPixel(HWND dialog, u32 x, u32 y);

    static constexpr u32 width = 12;
    static constexpr u32 height = 10;
};

} // namespace plugintest
