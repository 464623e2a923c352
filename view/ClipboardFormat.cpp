#include "view/ClipboardFormat.h"

#include "foundation/Language.h"
#include "resources/Ids.h"
#include "view/DialogResource.h"

#include <iterator>

namespace
{

struct Format {
    const WCHAR* name;
    const WCHAR* english; // what is told about it
    const WCHAR* japanese;
};

constexpr Format formats[] = {
    {TEXT("CF_DIB"),
     TEXT("Copy image to clipboard in Device Independent Bitmap (DIB) format. It can be handled by "
          "Pocket Word and other softwares."),
     TEXT("デバイス非依存BITMAP(DIB)形式でクリップボードにコピーします。Pocket Word等で扱える形式で"
          "す。")},
    {TEXT("CF_BITMAP"), TEXT("Copy image to clipboard in BITMAP format."),
     TEXT("BITMAP形式でクリップボードにコピーします。")},
};

i32 ChosenRow(HWND dialog)
{
    return static_cast<i32>(
        SendDlgItemMessageW(dialog, ControlClipboardFormat, LB_GETCURSEL, 0, 0));
}

void Start(HWND dialog, LPARAM last)
{
    for (const Format& format : formats)
        SendDlgItemMessageW(dialog, ControlClipboardFormat, LB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(format.name));
    SendDlgItemMessageW(dialog, ControlClipboardFormat, LB_SETCURSEL, static_cast<WPARAM>(last), 0);
    // A choice that the code makes is not told by the list.
    PostMessageW(dialog, WM_COMMAND, MAKELONG(ControlClipboardFormat, LBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, ControlClipboardFormat)));
}

void Describe(HWND dialog)
{
    const i32 row = ChosenRow(dialog);
    if (row < 0 || row >= static_cast<i32>(std::size(formats)))
        return;
    SetDlgItemTextW(dialog, ControlClipboardDescription,
                    InLanguage(formats[row].english, formats[row].japanese));
}

void OnListNotice(HWND dialog, u32 code)
{
    if (code == LBN_SELCHANGE)
        Describe(dialog);
    else if (code == LBN_DBLCLK)
        EndDialog(dialog, ChosenRow(dialog));
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        Start(dialog, lParam);
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == ControlClipboardFormat)
            OnListNotice(dialog, HIWORD(wParam));
        else if (LOWORD(wParam) == IDOK)
            EndDialog(dialog, ChosenRow(dialog));
        else if (LOWORD(wParam) == IDCANCEL)
            EndDialog(dialog, -1);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

i32 AskClipboardFormat(HWND owner, HINSTANCE instance, u32 last)
{
    const u32 id = IsJapanese() ? DialogClipboardJapanese : DialogClipboardEnglish;
    return static_cast<i32>(DialogBoxIndirectParamW(instance, FindDialogResource(instance, id),
                                                    owner, Procedure, static_cast<LPARAM>(last)));
}
