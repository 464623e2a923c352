// New: a blank picture in place of the one there is, of the size of what could be pasted into it.

#include "resources/Ids.h"
#include "shell/DibSize.h"
#include "shell/MainFrame.h"
#include "view/NewDialog.h"

namespace
{

/// The colours that a new picture can be filled with, by the dialog's choice.
constexpr u32 fillColors[] = {0xFFFFFFFF, 0x000000FF, 0xFFFFFF00};

u32 FillColor(u32 background)
{
    return background < 3 ? fillColors[background] : fillColors[0];
}

/// The size of the picture on the clipboard, if it offers one.
void ReadClipboardSize(HWND owner, RasterInfo* info)
{
    if (!OpenClipboard(owner))
        return;
    const HANDLE block = GetClipboardData(CF_DIB);
    if (block != nullptr)
        (void)ReadDibSize(block, LocalSize(block), &info->width, &info->height);
    CloseClipboard();
}

} // namespace

void MainFrame::NewImage()
{
    RasterInfo info = {};
    info.size = sizeof info;
    (void)image->GetInfo(&info);
    if (clipImage != nullptr)
        (void)clipImage->GetInfo(&info);
    else
        ReadClipboardSize(window, &info);
    u32 background = 0;
    const NewRequest request = {&info, &background};
    if (ShowNewDialog(window, instance, &request) < Done || info.width == 0 || info.height == 0)
        return;
    // Meant: it is not looked at. Lines that found no memory are told by whoever works on them.
    (void)image->Create(info.width, info.height, info.depth, nullptr, nullptr);
    (void)image->FillAll(FillColor(background));
    openedPath[0] = 0;
    savedPath[0] = 0;
    imagePresent = 1;
    EnableImageMenus();
    if (zoomCommand == CommandZoomWindow)
        FitToWindow(0);
    selectionActive = 0;
    UpdateClipMenus();
    InitializeView();
}
