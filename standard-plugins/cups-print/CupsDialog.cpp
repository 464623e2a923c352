#include "standard-plugins/cups-print/CupsDialog.h"

#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/pdf/device/PageDialog.h"
#include "standard-plugins/common/pdf/device/PageDialogIds.h"
#include "standard-plugins/cups-print/CupsPrintIds.h"
#include "standard-plugins/cups-print/PluginName.h"
#include "standard-plugins/cups-print/Utf8.h"

namespace
{

const DialogNumbers dialogNumbers = {DialogEnglish, DialogJapanese};

const BilingualText wrongCopies = {PLUGIN_TEXT("From 1 to 99 copies can be printed."),
                                   PLUGIN_TEXT("部数は 1 から 99 までです。")};

struct Asking {
    CupsSettings* settings;
    const PrinterList* printers;
};

void ShowPrinters(HWND dialog, const Asking& asking)
{
    const PrinterList& printers = *asking.printers;
    for (uint32_t i = 0; i < printers.count; ++i) {
        TavrixChar name[sizeof(PrinterName)];
        (void)ToWide(printers.names[i].text, name, sizeof name / sizeof *name);
        SendDlgItemMessageW(dialog, ControlPrinter, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(name));
    }
    const uint32_t chosen = FindPrinter(printers, asking.settings->printer.text);
    SendDlgItemMessageW(dialog, ControlPrinter, CB_SETCURSEL,
                        chosen < printers.count ? chosen : printers.standard, 0);
}

void ShowAll(HWND dialog, const Asking& asking)
{
    ShowPrinters(dialog, asking);
    ShowPage(dialog, asking.settings->page, printerPapers);
    SendDlgItemMessageW(dialog, ControlCopies, EM_LIMITTEXT, 2, 0);
    SetDlgItemInt(dialog, ControlCopies, asking.settings->copies, FALSE);
}

void OnOk(HWND dialog, const Asking& asking)
{
    CupsSettings taken = *asking.settings;
    if (!TakePage(dialog, pluginName, &taken.page))
        return;
    if (!TakeNumber(dialog, ControlCopies, 1, mostCopies, &taken.copies)) {
        (void)RefuseField(dialog, ControlCopies, wrongCopies, pluginName);
        return;
    }
    taken.printer = asking.printers->names[ChosenRow(dialog, ControlPrinter)];
    *asking.settings = taken;
    EndDialog(dialog, IDOK);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        ShowAll(dialog, *reinterpret_cast<const Asking*>(lParam));
        return TRUE;
    }
    const auto* asking = reinterpret_cast<const Asking*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message != WM_COMMAND || !asking)
        return FALSE;
    switch (LOWORD(wParam)) {
    case IDOK:
        OnOk(dialog, *asking);
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

int32_t AskCupsSettings(CupsSettings* settings, const PrinterList& printers, TavrixWindow owner)
{
    Asking asking = {settings, &printers};
    return ShowPluginDialog(dialogNumbers, owner, Procedure, reinterpret_cast<LPARAM>(&asking));
}
