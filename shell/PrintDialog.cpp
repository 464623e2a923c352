#include "shell/PrintDialog.h"

#include "foundation/Language.h"
#include "resources/Ids.h"
#include "shell/PluginCallbacks.h"
#include "view/DialogResource.h"

namespace
{

void SetStatus(HWND dialog, const WCHAR* english, const WCHAR* japanese)
{
    SetDlgItemTextW(dialog, ControlPrintStatus, InLanguage(english, japanese));
}

void Start(HWND dialog, LPARAM record)
{
    SetWindowLongPtrW(dialog, DWLP_USER, record);
    SetStatus(dialog, TEXT("First, configure your printer."),
              TEXT("まず初めに、印刷設定を行ってください"));
}

void Configure(HWND dialog)
{
    const auto* record = reinterpret_cast<JobRecord*>(GetWindowLongPtrW(dialog, DWLP_USER));
    const auto& arguments = *static_cast<const PrintArguments*>(record->arguments);
    // Settings that the user cancelled (0) count as set. That is meant.
    if (arguments.host->Configure(dialog, JobCallbacks) < 0)
        SetStatus(dialog, TEXT("Configuration might not be set correctly."),
                  TEXT("印刷設定が正しく行われなかった可能性があります。"));
    else
        SetStatus(dialog, TEXT("Configuration is set correctly."),
                  TEXT("印刷設定が正しく行われました。"));
}

void OnCommand(HWND dialog, u32 id)
{
    switch (id) {
    case ControlPrintConfigure:
        Configure(dialog);
        break;
    case IDOK:
        EndDialog(dialog, 1);
        break;
    case IDCANCEL:
        EndDialog(dialog, 0);
        break;
    default:
        break;
    }
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        Start(dialog, lParam);
        return TRUE;
    case WM_COMMAND:
        OnCommand(dialog, LOWORD(wParam));
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

i32 ShowPrintDialog(HWND owner, HINSTANCE instance, const JobRecord* record)
{
    if (record == nullptr || record->arguments == nullptr)
        return BadArgument;
    const u32 id = IsJapanese() ? DialogPrintJapanese : DialogPrintEnglish;
    const INT_PTR result =
        DialogBoxIndirectParamW(instance, FindDialogResource(instance, id), owner, Procedure,
                                reinterpret_cast<LPARAM>(record));
    if (result < 0)
        return Failed;
    return result == 1 ? Done : NothingDone;
}
