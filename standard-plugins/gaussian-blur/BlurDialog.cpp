#include "standard-plugins/gaussian-blur/BlurDialog.h"

#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/filtering/device/FilterPane.h"
#include "standard-plugins/gaussian-blur/GaussianBlurIds.h"

namespace
{

const DialogNumbers dialogNumbers = {DialogBlurEnglish, DialogBlurJapanese};
const BilingualText wrongRadius = {PLUGIN_TEXT("The radius is from 0.1 to 100 pixels."),
                                   PLUGIN_TEXT("半径は 0.1 から 100 ピクセルまでです。")};

constexpr int longestRadius = 15;

struct Asking {
    uint32_t* tenths;
    const BilingualText* caption;
    FilterPane* pane;
};

void ShowRadius(HWND dialog, const Asking& asking)
{
    TavrixChar text[8];
    FormatRadius(*asking.tenths, text);
    SendDlgItemMessageW(dialog, ControlRadius, EM_LIMITTEXT, longestRadius, 0);
    SetDlgItemTextW(dialog, ControlRadius, text);
}

bool TypedRadius(HWND dialog, uint32_t* tenths)
{
    TavrixChar text[longestRadius + 1] = {};
    GetDlgItemTextW(dialog, ControlRadius, text, longestRadius + 1);
    return ParseRadius(text, tenths);
}

// What is typed may be half a number; the preview waits for the rest.
void OnTyped(HWND dialog, const Asking& asking)
{
    uint32_t tenths = 0;
    if (TypedRadius(dialog, &tenths))
        FollowValues(asking.pane, dialog, &tenths);
}

void OnOk(HWND dialog, const Asking& asking)
{
    if (TypedRadius(dialog, asking.tenths)) {
        EndDialog(dialog, IDOK);
        return;
    }
    MessageBoxW(dialog, InLanguage(wrongRadius), InLanguage(*asking.caption),
                MB_OK | MB_ICONEXCLAMATION);
    SetFocus(GetDlgItem(dialog, ControlRadius));
    SendDlgItemMessageW(dialog, ControlRadius, EM_SETSEL, 0, -1);
}

void OnCommand(HWND dialog, const Asking& asking, WPARAM wParam)
{
    if (LOWORD(wParam) == IDOK)
        OnOk(dialog, asking);
    else if (LOWORD(wParam) == IDCANCEL)
        EndDialog(dialog, IDCANCEL);
    else if (LOWORD(wParam) == ControlRadius && HIWORD(wParam) == EN_CHANGE)
        OnTyped(dialog, asking);
}

void OnStart(HWND dialog, const Asking& asking)
{
    ShowRadius(dialog, asking);
    FollowValues(asking.pane, dialog, asking.tenths);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        OnStart(dialog, *reinterpret_cast<const Asking*>(lParam));
        return TRUE;
    }
    const auto* asking = reinterpret_cast<const Asking*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!asking)
        return FALSE;
    switch (message) {
    case WM_COMMAND:
        OnCommand(dialog, *asking, wParam);
        return TRUE;
    case WM_PAINT:
        PaintPane(*asking->pane, dialog);
        return TRUE;
    default:
        return FALSE;
    }
}

const TavrixChar* SkipBlanks(const TavrixChar* text)
{
    while (*text == ' ')
        ++text;
    return text;
}

bool IsDigit(TavrixChar character)
{
    return character >= '0' && character <= '9';
}

} // namespace

bool ParseRadius(const TavrixChar* text, uint32_t* tenths)
{
    text = SkipBlanks(text);
    if (!IsDigit(*text))
        return false;
    uint32_t number = 0;
    for (; IsDigit(*text); ++text)
        // Beyond the range it stays there, however many digits follow.
        number = number > mostRadius ? number : 10 * number + static_cast<uint32_t>(*text - '0');
    number *= 10;
    if (*text == '.' || *text == ',') {
        ++text;
        if (!IsDigit(*text))
            return false;
        number += static_cast<uint32_t>(*text++ - '0');
    }
    if (*SkipBlanks(text) || number < leastRadius || number > mostRadius)
        return false;
    *tenths = number;
    return true;
}

void FormatRadius(uint32_t tenths, TavrixChar* text)
{
    TavrixChar reversed[8];
    uint32_t count = 0;
    if (tenths % 10 != 0) {
        reversed[count++] = static_cast<TavrixChar>('0' + tenths % 10);
        reversed[count++] = '.';
    }
    uint32_t whole = tenths / 10;
    do {
        reversed[count++] = static_cast<TavrixChar>('0' + whole % 10);
        whole /= 10;
    } while (whole != 0 && count < 7);
    for (uint32_t i = 0; i < count; ++i)
        text[i] = reversed[count - 1 - i];
    text[count] = 0;
}

int32_t AskRadius(uint32_t* tenths, const BilingualText& caption, TavrixWindow owner,
                  TavrixImageHandle image, RasterFunctionTable* rasters)
{
    FilterPane pane = {};
    pane.image = image;
    pane.rasters = rasters;
    const Asking asking = {tenths, &caption, &pane};
    const int32_t result =
        ShowPluginDialog(dialogNumbers, owner, Procedure, reinterpret_cast<LPARAM>(&asking));
    FreePane(&pane);
    return result;
}
