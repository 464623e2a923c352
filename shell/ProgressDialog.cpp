#include "shell/ProgressDialog.h"

#include "foundation/Language.h"
#include "resources/Ids.h"
#include "shell/JobEnd.h"
#include "shell/JobKinds.h"
#include "shell/MainFrame.h"
#include "shell/PluginCallbacks.h"

#include <commctrl.h>

ProgressState progressState = {};

namespace
{

constexpr WPARAM JobEnded = 1;

// The middle of the parent, by size alone: the result is measured from the screen's corner.
void Centre(HWND dialog)
{
    RECT parent = {};
    RECT own = {};
    GetWindowRect(GetParent(dialog), &parent);
    GetWindowRect(dialog, &own);
    const int x = ((parent.right - parent.left) - (own.right - own.left)) / 2;
    const int y = ((parent.bottom - parent.top) - (own.bottom - own.top)) / 2;
    SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

void Start(HWND dialog, JobRecord* record)
{
    progressState.record = record;
    progressState.dialog = dialog;
    progressState.statusLine = GetDlgItem(dialog, ControlProgressStatus);
    progressState.bar = GetDlgItem(dialog, ControlProgressBar);
    SendMessageW(progressState.bar, PBM_SETRANGE, 0, MAKELPARAM(0, ProgressSteps));
    Centre(dialog);

    const JobKind* kind = FindJobKind(record->kind);
    if (kind == nullptr)
        return;
    SetDlgItemTextW(dialog, ControlHeadline, InLanguage(kind->status, kind->japaneseStatus));
    if (record->kind == JobPrint) {
        EnableWindow(GetDlgItem(dialog, ControlAbort), TRUE);
        BringWindowToTop(dialog);
    }
    progressState.thread = CreateThread(nullptr, 0, kind->run, record->arguments, 0, nullptr);
    if (progressState.thread == nullptr)
        EndDialog(dialog, 0);
}

void End(HWND dialog)
{
    // The thread may still be giving things up behind its last message.
    if (progressState.thread != nullptr) {
        WaitForSingleObject(progressState.thread, INFINITE);
        CloseHandle(progressState.thread);
    }
    progressState.thread = nullptr;
    EndDialog(dialog, 1);
}

void Abort(HWND dialog)
{
    if (mainFrame != nullptr)
        mainFrame->abortRequested = 1;
    EnableWindow(GetDlgItem(dialog, ControlAbort), FALSE);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        Start(dialog, reinterpret_cast<JobRecord*>(lParam));
        return TRUE;
    case WM_COMMAND:
        if (wParam == JobEnded && lParam == 0)
            End(dialog);
        else if (LOWORD(wParam) == ControlAbort)
            Abort(dialog);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

i32 RunJob(HWND owner, HINSTANCE instance, JobRecord* record)
{
    HRSRC resource = FindResourceW(instance, MAKEINTRESOURCEW(DialogProgress), RT_DIALOG);
    if (resource == nullptr)
        return Failed;
    const auto* dialogTemplate =
        static_cast<LPCDLGTEMPLATEW>(LockResource(LoadResource(instance, resource)));
    const ScopedHold hold(mainFrame);
    const u32 kind = record->kind;
    const INT_PTR result = DialogBoxIndirectParamW(instance, dialogTemplate, owner, Procedure,
                                                   reinterpret_cast<LPARAM>(record));
    if (result == 0)
        ReportJobError(kind); // no thread: with the dialog gone the text comes as a box
    return static_cast<i32>(result);
}

void ReportJobError(u32 kind)
{
    const JobKind* row = FindJobKind(kind);
    if (row != nullptr && row->error != nullptr)
        ShowPluginMessage(InLanguage(row->error, row->japaneseError),
                          InLanguage(TEXT("ERROR"), TEXT("エラー")), MB_ICONHAND);
}

void PostJobEnd()
{
    PostMessageW(progressState.dialog, WM_COMMAND, JobEnded, 0);
}
