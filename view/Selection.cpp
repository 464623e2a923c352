// The rectangular selection.

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
