#include "view/UrlDialog.h"

#include "foundation/Language.h"
#include "foundation/Result.h"
#include "resources/Ids.h"
#include "view/DialogResource.h"

namespace
{

void Start(HWND dialog, LPARAM address)
{
    SetWindowLongPtrW(dialog, DWLP_USER, address);
    SetDlgItemTextW(dialog, ControlUrl, reinterpret_cast<const WCHAR*>(address));
}

void Take(HWND dialog)
{
    auto* const address = reinterpret_cast<WCHAR*>(GetWindowLongPtrW(dialog, DWLP_USER));
    GetDlgItemTextW(dialog, ControlUrl, address, UrlCapacity);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        Start(dialog, lParam);
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK)
            Take(dialog);
        if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)
            EndDialog(dialog, LOWORD(wParam) == IDOK ? 1 : 0);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

i32 ShowUrlDialog(HWND owner, HINSTANCE instance, WCHAR* address)
{
    if (address == nullptr)
        return BadArgument;
    const u32 id = IsJapanese() ? DialogUrlJapanese : DialogUrlEnglish;
    const INT_PTR result =
        DialogBoxIndirectParamW(instance, FindDialogResource(instance, id), owner, Procedure,
                                reinterpret_cast<LPARAM>(address));
    if (result < 0)
        return Failed;
    return result == 1 ? Done : NothingDone;
}
