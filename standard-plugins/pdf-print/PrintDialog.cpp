#include "standard-plugins/pdf-print/PrintDialog.h"

#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/pdf/device/PageDialog.h"
#include "standard-plugins/common/pdf/device/PageDialogIds.h"
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/WriteProblem.h"
#include "standard-plugins/pdf-print/FileNames.h"
#include "standard-plugins/pdf-print/PdfPrintIds.h"
#include "standard-plugins/pdf-print/PluginName.h"

namespace
{

const DialogNumbers dialogNumbers = {DialogEnglish, DialogJapanese};

const BilingualText nameMissing = {PLUGIN_TEXT("Enter the name of the file to print to."),
                                   PLUGIN_TEXT("印刷先のファイル名を入力してください。")};
const BilingualText nameTooLong = {PLUGIN_TEXT("The name of the file is too long."),
                                   PLUGIN_TEXT("ファイル名が長すぎます。")};
const BilingualText nameOfFolder = {PLUGIN_TEXT("This is the name of a folder."),
                                    PLUGIN_TEXT("これはフォルダの名前です。")};
const BilingualText askReplacing = {PLUGIN_TEXT("This file is there already. Replace it?"),
                                    PLUGIN_TEXT("このファイルは既に存在します。上書きしますか？")};

void ShowSettings(HWND dialog, const PrintSettings& settings)
{
    SendDlgItemMessageW(dialog, ControlFile, EM_LIMITTEXT, MAX_PATH - 1, 0);
    SetDlgItemTextW(dialog, ControlFile, settings.file);
    ShowPage(dialog, settings.page, PaperCount);
}

bool TakeFile(HWND dialog, PrintSettings* settings)
{
    TavrixChar typed[MAX_PATH];
    GetDlgItemTextW(dialog, ControlFile, typed, MAX_PATH);
    if (!MakeFilePath(settings->file, typed))
        return RefuseField(dialog, ControlFile, settings->file[0] ? nameTooLong : nameMissing,
                           pluginName);
    if (!HasFolder(settings->file))
        return RefuseField(dialog, ControlFile, TextOf(WriteProblem::Folder), pluginName);
    const DWORD attributes = GetFileAttributesW(settings->file);
    settings->mayReplace = attributes != INVALID_FILE_ATTRIBUTES;
    if (!settings->mayReplace)
        return true;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return RefuseField(dialog, ControlFile, nameOfFolder, pluginName);
    SetDlgItemTextW(dialog, ControlFile, settings->file);
    if (MessageBoxW(dialog, InLanguage(askReplacing), InLanguage(pluginName),
                    MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES)
        return true;
    SetFocus(GetDlgItem(dialog, ControlFile));
    return false;
}

void OnOk(HWND dialog, PrintSettings* settings)
{
    PrintSettings taken = *settings;
    if (!TakePage(dialog, pluginName, &taken.page) || !TakeFile(dialog, &taken))
        return;
    *settings = taken;
    EndDialog(dialog, IDOK);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        ShowSettings(dialog, *reinterpret_cast<const PrintSettings*>(lParam));
        return TRUE;
    }
    auto* settings = reinterpret_cast<PrintSettings*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message != WM_COMMAND || !settings)
        return FALSE;
    switch (LOWORD(wParam)) {
    case IDOK:
        OnOk(dialog, settings);
        return TRUE;
    case IDCANCEL:
        EndDialog(dialog, IDCANCEL);
        return TRUE;
    case ControlPaper:
    case ControlFit:
    case ControlRealSize:
        EnablePageControls(dialog);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

int32_t AskPrintSettings(PrintSettings* settings, TavrixWindow owner)
{
    return ShowPluginDialog(dialogNumbers, owner, Procedure, reinterpret_cast<LPARAM>(settings));
}
