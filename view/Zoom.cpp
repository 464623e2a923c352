// The zoom commands, fitting the picture to the view, and where the view starts. Any change of zoom
// loses the scroll position.

#include "resources/Ids.h"
#include "shell/MainFrame.h"

namespace
{

struct FixedZoom {
    u32 command;
    f64 zoom; // picture pixels for one screen pixel
};

constexpr FixedZoom fixedZooms[] = {
    {CommandZoom25, 4.0},   {CommandZoom50, 2.0},  {CommandZoom75, 4.0 / 3.0},
    {CommandZoom100, 1.0},  {CommandZoom200, 0.5}, {CommandZoom300, 1.0 / 3.0},
    {CommandZoom400, 0.25},
};

} // namespace

void MainFrame::SetZoom(u32 command)
{
    for (const FixedZoom& fixed : fixedZooms)
        if (fixed.command == command) {
            zoom = fixed.zoom;
            zoomCommand = command;
            UpdateZoomChecks();
            InitializeView();
            return;
        }
}

void MainFrame::InitializeView()
{
    scrollX = 0;
    scrollY = 0;
    RasterInfo info = {};
    info.size = sizeof info;
    if (image != nullptr && image->GetInfo(&info) > 0) {
        Point shown = {static_cast<f64>(info.width), static_cast<f64>(info.height)};
        ImageToView(&shown);
        const Point margin = {(viewWidth - shown.x) * 0.5, (viewHeight - shown.y) * 0.5};
        if (shown.x < viewWidth) {
            Point corner = margin;
            ViewToImage(&corner);
            scrollX -= corner.x;
        }
        if (shown.y < viewHeight) {
            Point corner = margin;
            ViewToImage(&corner);
            scrollY -= corner.y;
        }
    }
    RedrawView();
}

void MainFrame::FitToWindow(i32 centre)
{
    zoomCommand = CommandZoomWindow;
    RasterInfo info = {};
    info.size = sizeof info;
    if (image != nullptr)
        image->GetInfo(&info);
    // Unsigned division in 32 bits: what the width leaves of the height decides which side limits.
    if (viewWidth > 0 && viewHeight > 0) {
        const u32 heightForWidth =
            static_cast<u32>(viewHeight) * info.width / static_cast<u32>(viewWidth);
        zoom = heightForWidth >= info.height ? static_cast<f64>(info.width) / viewWidth
                                             : static_cast<f64>(info.height) / viewHeight;
    }
    UpdateZoomChecks();
    if (centre != 0)
        InitializeView();
}
