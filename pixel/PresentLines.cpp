// Frames that are shown of a list of paged lines.

#include "pixel/ScreenSurface.h"

#include <algorithm>

i32 ScreenSurface::PresentLines(PagedLineList* list, u32 method)
{
    if (list == nullptr)
        return BadArgument;
    if (bits == nullptr)
        return WrongState;
    PagedLineInfo info = {};
    if (list->GetInfo(&info) < 1 || info.depth != 24)
        return Failed;
    // Lists have no way to the greys.
    if (depth != 24)
        return Failed;
    i32 status = BeginColor(method);
    if (status < 1)
        return status;
    const u32 rows = std::min(height, info.lineCount);
    const u32 columns = std::min(width, info.width);
    for (u32 y = 0; y < rows; ++y) {
        const i32 line = static_cast<i32>(y);
        u8* row = nullptr;
        status = list->LockLine(line, &row);
        if (status < 1)
            return status;
        ShowColorRow(row, y, columns, method);
        (void)list->UnlockLine(line);
    }
    EndColor();
    return Done;
}
