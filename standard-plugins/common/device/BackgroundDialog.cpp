#include "standard-plugins/common/device/BackgroundDialog.h"

#include "standard-plugins/common/device/BackgroundDialogIds.h"
#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/PluginResult.h"

namespace
{

enum { Red, Green, Blue, Ask, SettingCount };

struct Swatch {
    COLORREF color;
};

RECT SwatchPlace(HWND dialog)
{
    RECT place;
    GetWindowRect(GetDlgItem(dialog, ControlBackgroundSwatch), &place);
    POINT corner = {place.left, place.top};
    ScreenToClient(dialog, &corner);
    return {corner.x, corner.y, corner.x + place.right - place.left,
            corner.y + place.bottom - place.top};
}

void OnPaint(HWND dialog, const Swatch& swatch)
{
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(dialog, &paint);
    const RECT place = SwatchPlace(dialog);
    const HBRUSH brush = CreateSolidBrush(swatch.color);
    FillRect(dc, &place, brush);
    DeleteObject(brush);
    EndPaint(dialog, &paint);
}

INT_PTR Handle(void* self, HWND dialog, UINT message, WPARAM, LPARAM)
{
    if (message != WM_PAINT)
        return FALSE;
    OnPaint(dialog, *static_cast<const Swatch*>(self));
    return TRUE;
}

void Follow(void* self, HWND dialog, const uint32_t* values)
{
    static_cast<Swatch*>(self)->color = RGB(values[Red], values[Green], values[Blue]);
    const RECT place = SwatchPlace(dialog);
    InvalidateRect(dialog, &place, FALSE);
}

} // namespace

int32_t AskBackground(const BackgroundSettings& settings, TavrixWindow owner,
                      TavrixPutPropertyCallback put, TavrixGetPropertyCallback get)
{
    if (ReadSetting(settings.ask, get) == 0)
        return PluginDone;
    const DialogSetting rows[SettingCount] = {
        {settings.red, SettingControl::Trackbar, ControlBackgroundRed, ControlBackgroundRedNumber},
        {settings.green, SettingControl::Trackbar, ControlBackgroundGreen,
         ControlBackgroundGreenNumber},
        {settings.blue, SettingControl::Trackbar, ControlBackgroundBlue,
         ControlBackgroundBlueNumber},
        {settings.ask, SettingControl::Check, ControlBackgroundAsk, 0},
    };
    Swatch swatch = {};
    const DialogFollower follower = {&swatch, Handle, Follow};
    return AskSettings({{DialogBackgroundEnglish, DialogBackgroundJapanese}, rows, SettingCount},
                       owner, put, get, &follower);
}
