// The one level of undo: a snapshot of what a command is about to change, and where it goes back.
// The menu's entry is the only record that there is one.

#include "resources/Ids.h"
#include "shell/MainFrame.h"

namespace
{

/// Whether the raster was made and has every line that its height names.
bool HoldsAllLines(Raster& snapshot)
{
    RasterInfo info = {};
    info.size = sizeof info;
    (void)snapshot.GetInfo(&info);
    if (info.depth == 0)
        return false;
    for (u32 y = 0; y < info.height; ++y) {
        u8* line = nullptr;
        if (snapshot.LockLines(static_cast<i32>(y), &line, nullptr) < Done)
            return false;
    }
    return true;
}

} // namespace

void MainFrame::TakeUndo(Raster* raster, i32 x, i32 y)
{
    if (undoEnabled == 0)
        return;
    // The command goes on without a snapshot that found no memory. What there is of it is given up,
    // so that Undo does not put half a picture back.
    if (raster->SnapshotTo(&undoImage) < Done)
        undoImage.Reset();
    undoX = x;
    undoY = y;
    FetchMenus();
    EnableMenuItem(editMenu, CommandUndo, MF_BYCOMMAND | MF_ENABLED);
}

void MainFrame::PutUndoBack()
{
    if (undoX >= 0 || undoY >= 0) {
        RasterInfo info = {};
        info.size = sizeof info;
        (void)undoImage.GetInfo(&info);
        (void)undoImage.CopyTo(0, 0, static_cast<i32>(info.width), static_cast<i32>(info.height),
                               image, undoX, undoY, SRCCOPY);
        undoImage.Reset();
        return;
    }
    (void)image->TakeFrom(&undoImage);
    if (zoomCommand == CommandZoomWindow)
        FitToWindow(0);
    InitializeView();
}

void MainFrame::Undo()
{
    if (undoEnabled != 1)
        return;
    FetchMenus();
    // The key sends the command whatever state the entry has. Without this a second one would take
    // over what the first left.
    const UINT state = GetMenuState(editMenu, CommandUndo, MF_BYCOMMAND);
    if ((state & MF_GRAYED) == 0 && HoldsAllLines(undoImage))
        PutUndoBack();
    RedrawView();
    EnableMenuItem(editMenu, CommandUndo, MF_BYCOMMAND | MF_GRAYED);
}
