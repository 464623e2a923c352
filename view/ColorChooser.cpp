#include "view/ColorChooser.h"

#include "foundation/Language.h"
#include "foundation/NumberText.h"
#include "resources/Ids.h"
#include "view/DialogResource.h"

#include <commctrl.h>

namespace
{

constexpr u32 FollowTimer = 1;
constexpr u32 FollowMilliseconds = 500;
constexpr u32 HighestValue = 255;
constexpr u32 FollowCommand = ControlRedBar; // sent by each of the three

/// A channel's controls, and where it lies in the platform's form of a colour.
struct Channel {
    i32 bar;
    i32 number;
    u32 shift;
};

constexpr Channel Channels[] = {
    {ControlRedBar, ControlRedNumber, 0},
    {ControlGreenBar, ControlGreenNumber, 8},
    {ControlBlueBar, ControlBlueNumber, 16},
};

WNDPROC trackbarProcedure = nullptr; // the same for all three

bool MovesBar(UINT message, WPARAM wParam)
{
    return message == WM_KEYDOWN || message == WM_KEYUP || message == WM_LBUTTONDOWN ||
           message == WM_LBUTTONUP || (message == WM_MOUSEMOVE && wParam == MK_LBUTTON);
}

// The dialog hears of an event before the trackbar does, so the swatch shows the position before it
// until the next one. That is meant.
LRESULT CALLBACK BarProcedure(HWND bar, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (MovesBar(message, wParam))
        SendMessageW(GetParent(bar), WM_COMMAND, FollowCommand, 0);
    return CallWindowProcW(trackbarProcedure, bar, message, wParam, lParam);
}

void PrepareBar(HWND bar)
{
    SendMessageW(bar, TBM_SETRANGE, TRUE, MAKELPARAM(0, HighestValue));
    const auto before = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(bar, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(BarProcedure)));
    if (before != nullptr)
        trackbarProcedure = before;
}

} // namespace

void ColorChooser::Start(HWND window)
{
    dialog = window;
    const HWND control = GetDlgItem(dialog, ControlColorSwatch);
    RECT place = {};
    GetWindowRect(control, &place);
    swatchWidth = place.right - place.left;
    swatchHeight = place.bottom - place.top;
    // Without its picture or its context the swatch stays empty, and the chooser works.
    (void)picture.Create(static_cast<u32>(swatchWidth), static_cast<u32>(swatchHeight), 24);
    if (control != nullptr)
        (void)swatch.AttachWindow(control);
    for (const Channel& channel : Channels)
        PrepareBar(GetDlgItem(dialog, channel.bar));
    SetColor(initialColor);
    SetTimer(dialog, FollowTimer, FollowMilliseconds, nullptr);
}

void ColorChooser::SetColor(COLORREF color)
{
    for (const Channel& channel : Channels)
        SendDlgItemMessageW(dialog, channel.bar, TBM_SETPOS, TRUE,
                            static_cast<LPARAM>(color >> channel.shift & HighestValue));
    FollowBars();
}

COLORREF ColorChooser::ChosenColor() const
{
    COLORREF color = 0;
    for (const Channel& channel : Channels) {
        const LRESULT position = SendDlgItemMessageW(dialog, channel.bar, TBM_GETPOS, 0, 0);
        color |= (static_cast<u32>(position) & HighestValue) << channel.shift;
    }
    return color;
}

void ColorChooser::FollowBars()
{
    const COLORREF color = ChosenColor();
    HDC target = nullptr;
    const HBRUSH brush = CreateSolidBrush(color);
    if (brush != nullptr && picture.GetDC(&target) >= 1) {
        const RECT area = {0, 0, swatchWidth, swatchHeight};
        FillRect(target, &area, brush);
    }
    if (brush != nullptr)
        DeleteObject(brush);
    ShowSwatch();
    for (const Channel& channel : Channels) {
        WCHAR digits[8] = {};
        (void)FormatUnsigned(color >> channel.shift & HighestValue, digits, 8);
        SetDlgItemTextW(dialog, channel.number, digits);
    }
}

void ColorChooser::ShowSwatch() const
{
    HDC source = nullptr;
    if (swatch.Handle() != nullptr && picture.GetDC(&source) >= 1)
        BitBlt(swatch.Handle(), 0, 0, swatchWidth, swatchHeight, source, 0, 0, SRCCOPY);
}

// "RGB" does nothing, and "HSB" and "CMYK" cannot be pressed: the chooser knows red, green and blue
// alone.
void ColorChooser::OnCommand(u32 id)
{
    switch (id) {
    case FollowCommand:
        FollowBars();
        break;
    case ControlColorRedo:
        SetColor(initialColor);
        break;
    case IDOK:
        choice->color = ChosenColor();
        Close(1);
        break;
    case IDCANCEL:
        Close(0);
        break;
    default:
        break;
    }
}

void ColorChooser::Close(INT_PTR result)
{
    const HWND closing = dialog;
    GiveUp();
    EndDialog(closing, result);
}

void ColorChooser::GiveUp()
{
    KillTimer(dialog, FollowTimer);
    (void)swatch.Detach();
    picture.Destroy();
    dialog = nullptr; // what comes behind the close changes nothing
}

INT_PTR CALLBACK ColorChooser::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<ColorChooser*>(lParam)->Start(window);
        return TRUE;
    }
    auto* chooser = reinterpret_cast<ColorChooser*>(GetWindowLongPtrW(window, DWLP_USER));
    if (chooser == nullptr || chooser->dialog != window)
        return FALSE;
    switch (message) {
    case WM_COMMAND:
        chooser->OnCommand(LOWORD(wParam));
        return TRUE;
    case WM_TIMER:
        chooser->ShowSwatch();
        return TRUE;
    case WM_PAINT:
        chooser->ShowSwatch();
        return FALSE; // the platform paints the rest
    case WM_DESTROY:
        chooser->GiveUp();
        return FALSE;
    default:
        return FALSE;
    }
}

i32 ColorChooser::Show(ColorChoice* asked)
{
    if (asked == nullptr)
        return BadArgument;
    if (choice != nullptr)
        return NothingDone;
    choice = asked;
    initialColor = asked->color;
    const INT_PTR result = DialogBoxIndirectParamW(
        asked->instance,
        FindDialogResource(asked->instance,
                           IsJapanese() ? DialogColorsJapanese : DialogColorsEnglish),
        asked->owner, Procedure, reinterpret_cast<LPARAM>(this));
    choice = nullptr;
    if (result < 0)
        return Failed;
    return result == 1 ? Done : NothingDone;
}

COLORREF ColorRefOfWord(u32 word)
{
    return word >> 24 | (word >> 16 & 0xFF) << 8 | (word >> 8 & 0xFF) << 16;
}

u32 WordOfColorRef(COLORREF color)
{
    return (color & 0xFF) << 24 | (color >> 8 & 0xFF) << 16 | (color >> 16 & 0xFF) << 8;
}
