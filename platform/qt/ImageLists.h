// Image lists and the pictures in them, for the controls that draw them. A control keeps the handle
// and asks again at each painting: the program may replace pictures and destroy the list while
// controls still show it. Handles are looked up before use and never given out twice; null, stale
// and foreign ones have no pictures. User-interface thread.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <QPixmap>
#include <QSize>

namespace tavrix::platform
{

/// The picture at an index, in the list's size; a null pixmap for a bad list or index.
CE_API QPixmap ImageListPicture(HIMAGELIST list, int index);
/// The size of the list's pictures in pixels; an invalid size for a bad list.
CE_API QSize ImageListSize(HIMAGELIST list);

} // namespace tavrix::platform
