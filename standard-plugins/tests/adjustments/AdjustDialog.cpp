#include "standard-plugins/tests/adjustments/AdjustDialog.h"

#include <commctrl.h>

using namespace tavrix::testing;

namespace plugintest
{

namespace
{

bool IsChecked(HWND dialog, int control)
{
    return SendDlgItemMessageW(dialog, control, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

u32 ShownChoice(HWND dialog, const AskedSetting& asked)
{
    u32 shown = 4711;
    for (u32 value = asked.least; value <= asked.most; ++value)
        if (IsChecked(dialog, asked.control + static_cast<int>(value - asked.least))) {
            EXPECT_EQ(shown, 4711u) << "two at a time";
            shown = value;
        }
    return shown;
}

} // namespace

void PrintTo(const DialogShape& shape, std::ostream* out)
{
    *out << shape.file;
}

i32 AdjustDialog::Ask(u32 language, const std::function<void(HWND)>& script)
{
    Load(GetParam().file, language);
    int shown = 0;
    OnModal([&](HWND dialog, bool) {
        if (++shown == 1)
            script(dialog);
        else
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    Raster image;
    Fill(&image, width, height, 24, Wild);
    const i32 result = plugin.Configure(nullptr, &image, WriterCallbacks());
    EXPECT_TRUE(PixelsOf(&image) == PixelsOf(width, height, Wild)) << "a dialog changes nothing";
    EXPECT_EQ(shown, 1);
    OnModal(nullptr);
    return result;
}

void AdjustDialog::Press(HWND dialog, int id)
{
    PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

std::vector<u32> AdjustDialog::Shown(HWND dialog)
{
    std::vector<u32> values;
    for (const AskedSetting& asked : GetParam().settings)
        switch (asked.kind) {
        case Asked::Trackbar:
            values.push_back(
                static_cast<u32>(SendDlgItemMessageW(dialog, asked.control, TBM_GETPOS, 0, 0)));
            break;
        case Asked::Check:
            values.push_back(IsChecked(dialog, asked.control));
            break;
        case Asked::Choice:
            values.push_back(ShownChoice(dialog, asked));
            break;
        }
    return values;
}

std::vector<std::u16string> AdjustDialog::Numbers(HWND dialog)
{
    std::vector<std::u16string> numbers;
    for (const AskedSetting& asked : GetParam().settings)
        numbers.push_back(asked.number ? ControlText(dialog, asked.number) : u"");
    return numbers;
}

void AdjustDialog::MoveAll(HWND dialog)
{
    for (const AskedSetting& asked : GetParam().settings)
        switch (asked.kind) {
        case Asked::Trackbar:
            SetFocus(GetDlgItem(dialog, asked.control));
            TypeKey(asked.standard == asked.most ? VK_HOME : VK_END);
            break;
        case Asked::Check:
            ClickControl(dialog, asked.control);
            break;
        case Asked::Choice:
            ClickControl(dialog, asked.control + static_cast<int>(asked.most - asked.least));
            break;
        }
}

std::vector<u32> AdjustDialog::StoredValues()
{
    const auto& settings = CurrentWriterHost().settings;
    std::vector<u32> values;
    for (const AskedSetting& asked : GetParam().settings)
        values.push_back(settings.contains(asked.key) ? static_cast<u32>(settings.at(asked.key))
                                                      : 4711);
    return values;
}

POINT AdjustDialog::PlaceOfPixel(HWND dialog, u32 x, u32 y)
{
    RECT place;
    GetWindowRect(GetDlgItem(dialog, GetParam().preview), &place);
    return {(place.left + place.right - static_cast<LONG>(width)) / 2 + static_cast<LONG>(x),
            (place.top + place.bottom - static_cast<LONG>(height)) / 2 + static_cast<LONG>(y)};
}

Pixels AdjustDialog::PreviewOf(HWND dialog)
{
    Pump(50);
    const Picture screen = ScreenPixels();
    Pixels pixels{width, height, {}};
    for (u32 y = 0; y < height; ++y)
        for (u32 x = 0; x < width; ++x) {
            const POINT at = PlaceOfPixel(dialog, x, y);
            const u32 color = screen.At(static_cast<int>(at.x), static_cast<int>(at.y));
            for (const int shift : {16, 8, 0})
                pixels.bytes.push_back(static_cast<u8>(color >> shift));
        }
    return pixels;
}

} // namespace plugintest
