// Selecting a rectangle, from where the pen came down to where it is.

#include "view/ToolActions.h"

namespace
{

// The first corner is taken from the press each time: the pen's latest point does not follow the
// drag. NormalizeSelection may have put the corners into other places since.
void SpanTo(MainFrame& frame, const MainFrame::Point& at)
{
    const MainFrame::Point first = ImagePointOf(frame, frame.toolPoint);
    const MainFrame::Point second = ImagePointOf(frame, at);
    frame.selectionLeft = first.x;
    frame.selectionTop = first.y;
    frame.selectionRight = second.x;
    frame.selectionBottom = second.y;
    frame.NormalizeSelection();
}

// Nothing is redrawn: a selection that stood keeps its marks until the pen moves.
void Press(MainFrame& frame)
{
    frame.toolPhase = MainFrame::PhaseNone;
    frame.selecting = 1;
    const MainFrame::Point corner = ImagePointOf(frame, frame.toolPoint);
    frame.selectionLeft = corner.x;
    frame.selectionTop = corner.y;
    frame.selectionRight = corner.x;
    frame.selectionBottom = corner.y;
}

void Drag(MainFrame& frame, const MainFrame::Point& at)
{
    frame.toolPhase = MainFrame::PhaseNone;
    frame.selecting = 1;
    SpanTo(frame, at);
    frame.RedrawView();
}

void Lift(MainFrame& frame, const MainFrame::Point& at)
{
    frame.toolPhase = MainFrame::PhaseNone;
    frame.selecting = 0;
    SpanTo(frame, at);
    MovePenTo(frame, at);
    if (frame.selectionTop == frame.selectionBottom ||
        frame.selectionLeft == frame.selectionRight) {
        // Meant: a bare tap drops the selection, while its marks stay on the screen and its menu
        // entries as they are until something else brings them up to date.
        frame.selectionActive = 0;
        return;
    }
    frame.selectionActive = 1;
    frame.RedrawView();
    frame.UpdateClipMenus();
}

} // namespace

constinit const ToolActions SelectActions = {Press, Drag, Lift};
