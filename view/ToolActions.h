// What each tool does at the pen's three events. Tools.cpp keeps the table of the tools and sends
// the events here; every tool has a file of its own.
//
// At a press the frame's two pen points have already moved on and the capture follows; at a drag
// and a lift moving them on is the tool's own part, since not each does. User-interface thread.
#pragma once

#include "shell/MainFrame.h"

struct ToolActions {
    /// The point of the press is the frame's `toolPoint`.
    void (*press)(MainFrame& frame);
    /// `at` is the event's point in the window.
    void (*drag)(MainFrame& frame, const MainFrame::Point& at);
    void (*lift)(MainFrame& frame, const MainFrame::Point& at);
};

extern const ToolActions ScrollActions;
extern const ToolActions SelectActions;
extern const ToolActions BrushActions;
extern const ToolActions PipetteActions;

/// A point of the window in picture coordinates.
inline MainFrame::Point ImagePointOf(const MainFrame& frame, MainFrame::Point point)
{
    frame.WindowToView(&point);
    frame.ViewToImage(&point);
    return point;
}

/// The event's point becomes the latest, the latest the one before.
inline void MovePenTo(MainFrame& frame, const MainFrame::Point& at)
{
    frame.toolPreviousPoint = frame.toolPoint;
    frame.toolPoint = at;
}
