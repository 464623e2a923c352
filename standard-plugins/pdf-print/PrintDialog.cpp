#include "standard-plugins/pdf-print/PrintDialog.h"

#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/WriteProblem.h"
#include "standard-plugins/pdf-print/FileNames.h"
#include "standard-plugins/pdf-print/PdfPrintIds.h"
#include "standard-plugins/pdf-print/PluginName.h"

namespace
{

const DialogNumbers dialogNumbers = {DialogEnglish, DialogJapanese};

// In the order of PaperKind and PageOrientation.
const BilingualText paperNames[] = {
    {PLUGIN_TEXT("A4"), PLUGIN_TEXT("A4")},
    {PLUGIN_TEXT("A5"), PLUGIN_TEXT("A5")},
    {PLUGIN_TEXT("A3"), PLUGIN_TEXT("A3")},
    {PLUGIN_TEXT("Letter"), PLUGIN_TEXT("レター")},
    {PLUGIN_TEXT("Legal"), PLUGIN_TEXT("リーガル")},
    {PLUGIN_TEXT("Size of the picture"), PLUGIN_TEXT("画像の大きさ")},
};
const BilingualText orientationNames[] = {
    {PLUGIN_TEXT("Automatic"), PLUGIN_TEXT("自動")},
    {PLUGIN_TEXT("Portrait"), PLUGIN_TEXT("縦")},
    {PLUGIN_TEXT("Landscape"), PLUGIN_TEXT("横")},
};
static_assert(sizeof paperNames / sizeof *paperNames == PaperCount);
static_assert(sizeof orientationNames / sizeof *orientationNames == OrientationCount);

const BilingualText nameMissing = {PLUGIN_TEXT("Enter the name of the file to print to."),
                                   PLUGIN_TEXT("印刷先のファイル名を入力してください。")};
const BilingualText nameTooLong = {PLUGIN_TEXT("The name of the file is too long."),
                                   PLUGIN_TEXT("ファイル名が長すぎます。")};
const BilingualText nameOfFolder = {PLUGIN_TEXT("This is the name of a folder."),
                                    PLUGIN_TEXT("これはフォルダの名前です。")};
const BilingualText wrongMargin = {PLUGIN_TEXT("Margins are from 0 to 50 millimetres."),
                                   PLUGIN_TEXT("余白は 0 から 50 ミリメートルまでです。")};
const BilingualText wrongResolution = {
    PLUGIN_TEXT("The resolution is from 10 to 2400 pixels an inch."),
    PLUGIN_TEXT("解像度は 1 インチあたり 10 から 2400 ピクセルまでです。")};
const BilingualText askReplacing = {PLUGIN_TEXT("This file is there already. Replace it?"),
                                    PLUGIN_TEXT("このファイルは既に存在します。上書きしますか？")};

void FillList(HWND dialog, int control, const BilingualText* names, uint32_t count, uint32_t chosen)
{
    for (uint32_t i = 0; i < count; ++i)
        SendDlgItemMessageW(dialog, control, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(InLanguage(names[i])));
    SendDlgItemMessageW(dialog, control, CB_SETCURSEL, chosen, 0);
}

uint32_t ChosenRow(HWND dialog, int control)
{
    const LRESULT row = SendDlgItemMessageW(dialog, control, CB_GETCURSEL, 0, 0);
    return row > 0 ? static_cast<uint32_t>(row) : 0;
}

bool IsChecked(HWND dialog, int control)
{
    return SendDlgItemMessageW(dialog, control, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void Enable(HWND dialog, int control, bool enabled)
{
    EnableWindow(GetDlgItem(dialog, control), enabled);
}

// Where the page is made for the picture it has neither a side to lie on nor a size to fit.
void EnableControls(HWND dialog)
{
    const bool hasPaper = ChosenRow(dialog, ControlPaper) != PaperOfPicture;
    Enable(dialog, ControlOrientation, hasPaper);
    Enable(dialog, ControlFit, hasPaper);
    Enable(dialog, ControlRealSize, hasPaper);
    Enable(dialog, ControlResolution, !hasPaper || !IsChecked(dialog, ControlFit));
}

void ShowSettings(HWND dialog, const PrintSettings& settings)
{
    const PageSettings& page = settings.page;
    SendDlgItemMessageW(dialog, ControlFile, EM_LIMITTEXT, MAX_PATH - 1, 0);
    SetDlgItemTextW(dialog, ControlFile, settings.file);
    FillList(dialog, ControlPaper, paperNames, PaperCount, page.paper);
    FillList(dialog, ControlOrientation, orientationNames, OrientationCount, page.orientation);
    SendDlgItemMessageW(dialog, ControlMargin, EM_LIMITTEXT, 2, 0);
    SetDlgItemInt(dialog, ControlMargin, page.margin, FALSE);
    SendDlgItemMessageW(dialog, ControlResolution, EM_LIMITTEXT, 4, 0);
    SetDlgItemInt(dialog, ControlResolution, page.resolution, FALSE);
    SendDlgItemMessageW(dialog, page.fitsPage ? ControlFit : ControlRealSize, BM_SETCHECK,
                        BST_CHECKED, 0);
    EnableControls(dialog);
}

bool Refuse(HWND dialog, int control, const BilingualText& text)
{
    MessageBoxW(dialog, InLanguage(text), InLanguage(pluginName), MB_OK | MB_ICONEXCLAMATION);
    SetFocus(GetDlgItem(dialog, control));
    SendDlgItemMessageW(dialog, control, EM_SETSEL, 0, -1);
    return false;
}

bool TakeNumber(HWND dialog, int control, uint32_t least, uint32_t most, uint32_t* number)
{
    BOOL isNumber = FALSE;
    *number = GetDlgItemInt(dialog, control, &isNumber, FALSE);
    return isNumber && *number >= least && *number <= most;
}

bool TakePage(HWND dialog, PageSettings* page)
{
    page->paper = ChosenRow(dialog, ControlPaper);
    page->orientation = ChosenRow(dialog, ControlOrientation);
    page->fitsPage = IsChecked(dialog, ControlFit);
    if (!TakeNumber(dialog, ControlMargin, 0, largestMargin, &page->margin))
        return Refuse(dialog, ControlMargin, wrongMargin);
    const uint32_t before = page->resolution;
    if (TakeNumber(dialog, ControlResolution, smallestResolution, largestResolution,
                   &page->resolution))
        return true;
    // A field that is not asked for may hold anything.
    page->resolution = before;
    if (!IsWindowEnabled(GetDlgItem(dialog, ControlResolution)))
        return true;
    return Refuse(dialog, ControlResolution, wrongResolution);
}

bool TakeFile(HWND dialog, PrintSettings* settings)
{
    TavrixChar typed[MAX_PATH];
    GetDlgItemTextW(dialog, ControlFile, typed, MAX_PATH);
    if (!MakeFilePath(settings->file, typed))
        return Refuse(dialog, ControlFile, settings->file[0] ? nameTooLong : nameMissing);
    if (!HasFolder(settings->file))
        return Refuse(dialog, ControlFile, TextOf(WriteProblem::Folder));
    const DWORD attributes = GetFileAttributesW(settings->file);
    settings->mayReplace = attributes != INVALID_FILE_ATTRIBUTES;
    if (!settings->mayReplace)
        return true;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return Refuse(dialog, ControlFile, nameOfFolder);
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
    if (!TakePage(dialog, &taken.page) || !TakeFile(dialog, &taken))
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
        EnableControls(dialog);
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
