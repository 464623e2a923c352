#include "standard-plugins/common/pdf/device/PageDialog.h"

#include "standard-plugins/common/pdf/device/PageDialogIds.h"

namespace
{

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

const BilingualText wrongMargin = {PLUGIN_TEXT("Margins are from 0 to 50 millimetres."),
                                   PLUGIN_TEXT("余白は 0 から 50 ミリメートルまでです。")};
const BilingualText wrongResolution = {
    PLUGIN_TEXT("The resolution is from 10 to 2400 pixels an inch."),
    PLUGIN_TEXT("解像度は 1 インチあたり 10 から 2400 ピクセルまでです。")};

void FillList(HWND dialog, int control, const BilingualText* names, uint32_t count, uint32_t chosen)
{
    for (uint32_t i = 0; i < count; ++i)
        SendDlgItemMessageW(dialog, control, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(InLanguage(names[i])));
    SendDlgItemMessageW(dialog, control, CB_SETCURSEL, chosen, 0);
}

bool IsChecked(HWND dialog, int control)
{
    return SendDlgItemMessageW(dialog, control, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void Enable(HWND dialog, int control, bool enabled)
{
    EnableWindow(GetDlgItem(dialog, control), enabled);
}

} // namespace

void ShowPage(HWND dialog, const PageSettings& page, uint32_t papers)
{
    FillList(dialog, ControlPaper, paperNames, papers, page.paper);
    FillList(dialog, ControlOrientation, orientationNames, OrientationCount, page.orientation);
    SendDlgItemMessageW(dialog, ControlMargin, EM_LIMITTEXT, 2, 0);
    SetDlgItemInt(dialog, ControlMargin, page.margin, FALSE);
    SendDlgItemMessageW(dialog, ControlResolution, EM_LIMITTEXT, 4, 0);
    SetDlgItemInt(dialog, ControlResolution, page.resolution, FALSE);
    SendDlgItemMessageW(dialog, page.fitsPage ? ControlFit : ControlRealSize, BM_SETCHECK,
                        BST_CHECKED, 0);
    EnablePageControls(dialog);
}

// Where the page is made for the picture it has neither a side to lie on nor a size to fit.
void EnablePageControls(HWND dialog)
{
    const bool hasPaper = ChosenRow(dialog, ControlPaper) != PaperOfPicture;
    Enable(dialog, ControlOrientation, hasPaper);
    Enable(dialog, ControlFit, hasPaper);
    Enable(dialog, ControlRealSize, hasPaper);
    Enable(dialog, ControlResolution, !hasPaper || !IsChecked(dialog, ControlFit));
}

bool TakePage(HWND dialog, const BilingualText& caption, PageSettings* page)
{
    page->paper = ChosenRow(dialog, ControlPaper);
    page->orientation = ChosenRow(dialog, ControlOrientation);
    page->fitsPage = IsChecked(dialog, ControlFit);
    if (!TakeNumber(dialog, ControlMargin, 0, largestMargin, &page->margin))
        return RefuseField(dialog, ControlMargin, wrongMargin, caption);
    const uint32_t before = page->resolution;
    if (TakeNumber(dialog, ControlResolution, smallestResolution, largestResolution,
                   &page->resolution))
        return true;
    // A field that is not asked for may hold anything.
    page->resolution = before;
    if (!IsWindowEnabled(GetDlgItem(dialog, ControlResolution)))
        return true;
    return RefuseField(dialog, ControlResolution, wrongResolution, caption);
}

uint32_t ChosenRow(HWND dialog, int control)
{
    const LRESULT row = SendDlgItemMessageW(dialog, control, CB_GETCURSEL, 0, 0);
    return row > 0 ? static_cast<uint32_t>(row) : 0;
}

bool TakeNumber(HWND dialog, int control, uint32_t least, uint32_t most, uint32_t* number)
{
    BOOL isNumber = FALSE;
    *number = GetDlgItemInt(dialog, control, &isNumber, FALSE);
    return isNumber && *number >= least && *number <= most;
}

bool RefuseField(HWND dialog, int control, const BilingualText& text, const BilingualText& caption)
{
    MessageBoxW(dialog, InLanguage(text), InLanguage(caption), MB_OK | MB_ICONEXCLAMATION);
    SetFocus(GetDlgItem(dialog, control));
    SendDlgItemMessageW(dialog, control, EM_SETSEL, 0, -1);
    return false;
}
