// The dialog about the picture's palette. It says whether there is one, and shows nothing of it:
// the entries are not drawn and the other button has no action. That is meant.
#include "foundation/Language.h"
#include "resources/Ids.h"
#include "shell/MainFrame.h"
#include "view/DialogResource.h"

namespace
{

void Start(HWND dialog, Raster& image)
{
    ColorTable* palette = nullptr;
    (void)image.GetPalette(&palette);
    if (palette == nullptr || palette->Count() < 1) {
        SetDlgItemTextW(dialog, ControlPaletteState, TEXT("No Palette..."));
        return;
    }
    PaletteEntry* entries = nullptr;
    (void)palette->GetData(&entries);
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        Start(dialog, *reinterpret_cast<Raster*>(lParam));
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)
            EndDialog(dialog, 0);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

void MainFrame::ShowPaletteInformation()
{
    const u32 id = IsJapanese() ? DialogPaletteJapanese : DialogPaletteEnglish;
    DialogBoxIndirectParamW(instance, FindDialogResource(instance, id), window, Procedure,
                            reinterpret_cast<LPARAM>(image));
}
