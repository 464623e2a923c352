#include "view/NewDialog.h"

#include "foundation/Language.h"
#include "resources/Ids.h"
#include "view/DialogResource.h"
#include "view/SizeFields.h"

namespace
{

struct Mode {
    const WCHAR* english;
    const WCHAR* japanese;
    u32 depth;
};

constexpr Mode Modes[] = {{TEXT("RGB24bits Color"), TEXT("RGB24ビットカラー"), 24}};

void FillModes(HWND dialog)
{
    const HWND list = GetDlgItem(dialog, ControlMode);
    for (const Mode& mode : Modes) {
        const WCHAR* name = InLanguage(mode.english, mode.japanese);
        const LRESULT row = SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
        SendMessageW(list, CB_SETITEMDATA, static_cast<WPARAM>(row), LPARAM{mode.depth});
    }
    SendMessageW(list, CB_SETCURSEL, 0, 0);
}

void Start(HWND dialog, LPARAM record)
{
    SetWindowLongPtrW(dialog, DWLP_USER, record);
    const auto& request = *reinterpret_cast<const NewRequest*>(record);
    ShowSize(dialog, request.info->width, request.info->height);
    FillUnits(dialog, false);
    FillModes(dialog);
    SendDlgItemMessageW(dialog, ControlWhite, BM_SETCHECK, BST_CHECKED, 0);
}

void Take(HWND dialog)
{
    const auto& request = *reinterpret_cast<NewRequest*>(GetWindowLongPtrW(dialog, DWLP_USER));
    ReadSize(dialog, &request.info->width, &request.info->height);
    request.info->depth = Modes[0].depth;
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

i32 ShowNewDialog(HWND owner, HINSTANCE instance, const NewRequest* request)
{
    if (request == nullptr || request->info == nullptr)
        return BadArgument;
    const u32 id = IsJapanese() ? DialogNewJapanese : DialogNewEnglish;
    const INT_PTR result =
        DialogBoxIndirectParamW(instance, FindDialogResource(instance, id), owner, Procedure,
                                reinterpret_cast<LPARAM>(request));
    if (result < 0)
        return Failed;
    return result == 1 ? Done : NothingDone;
}
