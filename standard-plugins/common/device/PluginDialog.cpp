#include "standard-plugins/common/device/PluginDialog.h"

#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginResult.h"

#include <commctrl.h>
#include <tavrix/module.h>

namespace
{

// The pages of a trackbar's whole way.
constexpr uint32_t pages = 10;

struct Asking {
    const SettingsDialog* dialog;
    const DialogFollower* follower;
    uint32_t values[mostDialogSettings];
};

// A point and the digits behind it, as many as `one` has zeros.
void AddFraction(WCHAR* end, uint32_t size, uint32_t one)
{
    *end++ = '.';
    for (uint32_t digit = one / 10; digit > 0; digit /= 10)
        *end++ = static_cast<WCHAR>('0' + size / digit % 10);
    *end = 0;
}

void ShowNumber(HWND window, const DialogSetting& row, LRESULT value)
{
    if (!row.number)
        return;
    const int number = static_cast<int>(value) - static_cast<int>(row.zero);
    const auto size = static_cast<uint32_t>(number < 0 ? -number : number);
    WCHAR text[32];
    const int length = wsprintfW(text, number < 0 ? TEXT("-%u") : TEXT("%u"), size / row.one);
    if (row.one > 1)
        AddFraction(text + length, size, row.one);
    SetDlgItemTextW(window, row.number, text);
}

LRESULT PositionOf(HWND window, int control)
{
    return SendDlgItemMessageW(window, control, TBM_GETPOS, 0, 0);
}

void ShowTrackbar(HWND window, const DialogSetting& row, uint32_t value)
{
    const PluginSetting& setting = row.setting;
    const uint32_t page = (setting.most - setting.least) / pages;
    SendDlgItemMessageW(window, row.control, TBM_SETRANGEMIN, FALSE,
                        static_cast<LPARAM>(setting.least));
    SendDlgItemMessageW(window, row.control, TBM_SETRANGEMAX, FALSE,
                        static_cast<LPARAM>(setting.most));
    SendDlgItemMessageW(window, row.control, TBM_SETPAGESIZE, 0,
                        static_cast<LPARAM>(page > 1 ? page : 1));
    SendDlgItemMessageW(window, row.control, TBM_SETPOS, TRUE, static_cast<LPARAM>(value));
    ShowNumber(window, row, static_cast<LRESULT>(value));
}

void SetCheck(HWND window, int control, bool checked)
{
    SendDlgItemMessageW(window, control, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

bool IsChecked(HWND window, int control)
{
    return SendDlgItemMessageW(window, control, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void ShowValue(HWND window, const DialogSetting& row, uint32_t value)
{
    const uint32_t least = row.setting.least;
    switch (row.kind) {
    case SettingControl::Trackbar:
        ShowTrackbar(window, row, value);
        break;
    case SettingControl::Check:
        SetCheck(window, row.control, value != 0);
        break;
    case SettingControl::Choice:
        for (uint32_t i = least; i <= row.setting.most; ++i)
            SetCheck(window, row.control + static_cast<int>(i - least), i == value);
        break;
    }
}

uint32_t ShownValue(HWND window, const DialogSetting& row, uint32_t before)
{
    const uint32_t least = row.setting.least;
    switch (row.kind) {
    case SettingControl::Trackbar:
        return static_cast<uint32_t>(PositionOf(window, row.control));
    case SettingControl::Check:
        return IsChecked(window, row.control) ? 1 : 0;
    case SettingControl::Choice:
        for (uint32_t i = least; i <= row.setting.most; ++i)
            if (IsChecked(window, row.control + static_cast<int>(i - least)))
                return i;
        break;
    }
    return before;
}

void ShowValues(HWND window, const Asking& asking)
{
    for (uint32_t i = 0; i < asking.dialog->count; ++i)
        ShowValue(window, asking.dialog->settings[i], asking.values[i]);
}

void TakeValues(HWND window, Asking* asking)
{
    for (uint32_t i = 0; i < asking->dialog->count; ++i)
        asking->values[i] = ShownValue(window, asking->dialog->settings[i], asking->values[i]);
}

void FollowTrackbars(HWND window, const Asking& asking)
{
    for (uint32_t i = 0; i < asking.dialog->count; ++i) {
        const DialogSetting& row = asking.dialog->settings[i];
        if (row.kind == SettingControl::Trackbar)
            ShowNumber(window, row, PositionOf(window, row.control));
    }
}

void TellFollower(HWND window, const Asking& asking)
{
    if (asking.follower)
        asking.follower->changed(asking.follower->self, window, asking.values);
}

void OnChange(HWND window, Asking* asking)
{
    FollowTrackbars(window, *asking);
    TakeValues(window, asking);
    TellFollower(window, *asking);
}

void OnCommand(HWND window, Asking* asking, int id)
{
    if (id == IDOK)
        TakeValues(window, asking);
    else if (id != IDCANCEL)
        OnChange(window, asking);
    if (id == IDOK || id == IDCANCEL)
        EndDialog(window, id);
}

Asking* AskingOf(HWND window)
{
    return reinterpret_cast<Asking*>(GetWindowLongPtrW(window, DWLP_USER));
}

INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        ShowValues(window, *AskingOf(window));
        TellFollower(window, *AskingOf(window));
        return TRUE;
    }
    Asking* asking = AskingOf(window);
    if (!asking)
        return FALSE;
    switch (message) {
    case WM_HSCROLL:
        OnChange(window, asking);
        return TRUE;
    case WM_COMMAND:
        OnCommand(window, asking, LOWORD(wParam));
        return TRUE;
    default:
        return asking->follower ? asking->follower->handle(asking->follower->self, window, message,
                                                           wParam, lParam)
                                : FALSE;
    }
}

} // namespace

int32_t ShowPluginDialog(const DialogNumbers& numbers, TavrixWindow owner, DLGPROC procedure,
                         LPARAM parameter)
{
    const HINSTANCE module = TavrixThisModule();
    const int number = SpeaksJapanese() ? numbers.japanese : numbers.english;
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(number), RT_DIALOG);
    if (!found)
        return PluginFailed;
    const auto* shape = static_cast<LPCDLGTEMPLATEW>(LockResource(LoadResource(module, found)));
    const INT_PTR result =
        DialogBoxIndirectParamW(module, shape, static_cast<HWND>(owner), procedure, parameter);
    if (result == IDOK)
        return PluginDone;
    return result == IDCANCEL ? PluginNothing : PluginFailed;
}

void ShowSettings(HWND dialog, const uint32_t* values)
{
    Asking* asking = AskingOf(dialog);
    for (uint32_t i = 0; i < asking->dialog->count; ++i)
        asking->values[i] = values[i];
    ShowValues(dialog, *asking);
    TellFollower(dialog, *asking);
}

int32_t AskSettings(const SettingsDialog& dialog, TavrixWindow owner, TavrixPutPropertyCallback put,
                    TavrixGetPropertyCallback get, const DialogFollower* follower)
{
    if (!put || !get || dialog.count > mostDialogSettings)
        return PluginBadArgument;
    Asking asking = {};
    asking.dialog = &dialog;
    asking.follower = follower;
    ReadSettings(dialog, get, asking.values);
    const int32_t result =
        ShowPluginDialog(dialog.numbers, owner, Procedure, reinterpret_cast<LPARAM>(&asking));
    if (result != PluginDone)
        return result;
    for (uint32_t i = 0; i < dialog.count; ++i)
        if (!StoreSetting(dialog.settings[i].setting, asking.values[i], put))
            return PluginFailed;
    return PluginDone;
}
