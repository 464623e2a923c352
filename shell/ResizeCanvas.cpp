// Size: another canvas around the picture, whose pixels stay as they are.

#include "resources/Ids.h"
#include "shell/MainFrame.h"
#include "view/CanvasAnchor.h"
#include "view/SizeDialog.h"

#include <memory>
#include <new>

void MainFrame::ResizeCanvas()
{
    SizeRequest request = {};
    request.anchor = ControlAnchorCenter;
    request.old.size = sizeof request.old;
    (void)image->GetInfo(&request.old);
    if (ShowSizeDialog(window, instance, &request) < Done)
        return;
    const std::unique_ptr<Raster> canvas(new (std::nothrow) Raster);
    if (canvas == nullptr) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    // Meant: it is not looked at. A canvas that could not be made whole takes the picture's place
    // with as many lines as there are, and Undo or Reload is the way back. What the old picture
    // does not cover stays blank, whatever the background colour.
    (void)canvas->Create(request.width, request.height, 24, nullptr, nullptr);
    const RasterInfo& old = request.old;
    i32 x = 0;
    i32 y = 0;
    if (const CanvasAnchor* anchor = FindCanvasAnchor(request.anchor)) {
        x = PlaceOnCanvas(anchor->across, old.width, request.width);
        y = PlaceOnCanvas(anchor->down, old.height, request.height);
    }
    (void)image->CopyTo(0, 0, static_cast<i32>(old.width), static_cast<i32>(old.height),
                        canvas.get(), x, y, SRCCOPY);
    TakeUndo(image, -1, -1);
    (void)image->TakeFrom(canvas.get());
    image->UnlockAll();
    // Meant: the selection stays as it is, and the zoom is not fitted anew.
    InitializeView();
}
