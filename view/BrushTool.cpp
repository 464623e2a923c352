// Painting: one stamp at each of the pen's events, and nothing between two of them. It is not
// confined to the selection and leaves nothing for undo. With Shift the pen picks a colour instead,
// asked anew at each event.

#include "foundation/Numbers.h"
#include "view/ToolActions.h"

namespace
{

constexpr u32 Opaque = 255;

bool PicksColor()
{
    return GetAsyncKeyState(VK_SHIFT) < 0;
}

MainFrame::Point WindowPointOf(const MainFrame& frame, MainFrame::Point point)
{
    frame.ImageToView(&point);
    frame.ViewToWindow(&point);
    return point;
}

// A stamp at the pen's latest point.
void Stamp(MainFrame& frame)
{
    if (frame.brush == nullptr || frame.image == nullptr)
        return;
    const MainFrame::Point centre = ImagePointOf(frame, frame.toolPoint);
    PixelRect painted = {};
    // A brush without a mask paints nothing.
    if (frame.brush->Stroke(frame.image, frame.faceColor | Opaque, TruncateToSigned(centre.x),
                            TruncateToSigned(centre.y), &painted) < 1)
        return;
    const MainFrame::Point topLeft =
        WindowPointOf(frame, {static_cast<f64>(painted.left), static_cast<f64>(painted.top)});
    const MainFrame::Point bottomRight =
        WindowPointOf(frame, {painted.right + 1.0, painted.bottom + 1.0});
    frame.RedrawRegion(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y);
}

void Press(MainFrame& frame)
{
    if (PicksColor()) {
        PipetteActions.press(frame);
        return;
    }
    frame.toolPhase = MainFrame::PhaseNone;
    Stamp(frame);
}

void Drag(MainFrame& frame, const MainFrame::Point& at)
{
    if (PicksColor()) {
        PipetteActions.drag(frame, at);
        return;
    }
    frame.toolPhase = MainFrame::PhaseNone;
    MovePenTo(frame, at);
    Stamp(frame);
}

} // namespace

constinit const ToolActions BrushActions = {Press, Drag, Drag};
