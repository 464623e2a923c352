// The dialog about the program. Its words, the version among them, stand in its templates.
#include "foundation/Language.h"
#include "resources/Ids.h"
#include "shell/MainFrame.h"
#include "view/DialogResource.h"

namespace
{

constexpr const WCHAR* WebAddress = TEXT("https://tavrix.org/");
constexpr u32 FirstOtherId = 3; // commands below it end the dialog

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    switch (message) {
    case WM_INITDIALOG:
        SetDlgItemTextW(dialog, ControlAboutAddress, WebAddress);
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) != 0 && LOWORD(wParam) < FirstOtherId)
            EndDialog(dialog, 0);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

void MainFrame::ShowAbout()
{
    const u32 id = IsJapanese() ? DialogAboutJapanese : DialogAboutEnglish;
    DialogBoxIndirectParamW(instance, FindDialogResource(instance, id), window, Procedure, 0);
}
