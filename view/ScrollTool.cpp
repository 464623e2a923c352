// Scrolling: the picture follows the pen pixel for pixel, without a limit. A marker shows while the
// pen is down.

#include "view/ToolActions.h"

namespace
{

// Both points are taken at the scroll in force, before either coordinate of it moves.
void ScrollWith(MainFrame& frame, const MainFrame::Point& at)
{
    const MainFrame::Point from = ImagePointOf(frame, frame.toolPoint);
    const MainFrame::Point to = ImagePointOf(frame, at);
    frame.scrollX += from.x - to.x;
    frame.scrollY += from.y - to.y;
    MovePenTo(frame, at);
}

void Press(MainFrame& frame)
{
    frame.toolPhase = MainFrame::PhasePressed;
    frame.RedrawView();
}

void Drag(MainFrame& frame, const MainFrame::Point& at)
{
    frame.toolPhase = MainFrame::PhaseDragging;
    ScrollWith(frame, at);
    frame.RedrawView();
}

void Lift(MainFrame& frame, const MainFrame::Point& at)
{
    frame.toolPhase = MainFrame::PhaseNone;
    ScrollWith(frame, at);
    frame.RedrawView();
}

} // namespace

constinit const ToolActions ScrollActions = {Press, Drag, Lift};
