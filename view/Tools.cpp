// The table of the tools, and what is common to all of them: choosing one, showing it in the
// toolbox, and the way of the pen's events to the tool in force. There is no hover: a move counts
// while the button is down, and a lift while the main window has the capture.

#include "resources/Ids.h"
#include "view/ToolActions.h"

namespace
{

struct Tool {
    u32 code;
    u32 command;
    u32 column;                 // in the toolbox's strip
    const ToolActions* actions; // null: the pen does nothing
};

constexpr Tool tools[] = {
    {MainFrame::ToolScroll, CommandScroll, 4, &ScrollActions},
    {MainFrame::ToolSelect, CommandSelectRectangle, 2, &SelectActions},
    {MainFrame::ToolBrush, CommandBrush, 5, &BrushActions},
    {MainFrame::ToolColorEraser, CommandColorEraser, 8, nullptr},
    {MainFrame::ToolAlphaEraser, CommandAlphaEraser, 6, nullptr},
    {MainFrame::ToolPipette, CommandPipette, 7, &PipetteActions},
};

const Tool* FindTool(u32 code)
{
    for (const Tool& tool : tools)
        if (tool.code == code)
            return &tool;
    return nullptr;
}

const ToolActions* ActionsOf(u32 code)
{
    const Tool* const tool = FindTool(code);
    return tool != nullptr ? tool->actions : nullptr;
}

// Both halves are signed: with the capture the pen can be left of and above the window.
MainFrame::Point Unpack(LPARAM packedPoint)
{
    return {static_cast<f64>(static_cast<SHORT>(LOWORD(packedPoint))),
            static_cast<f64>(static_cast<SHORT>(HIWORD(packedPoint)))};
}

} // namespace

void MainFrame::ChooseTool(u32 command)
{
    for (const Tool& entry : tools)
        if (entry.command == command) {
            tool = entry.code;
            // Meant: choosing to scroll leaves the phase of a drag under way.
            if (tool != ToolScroll)
                toolPhase = PhaseNone;
            TellToolbox();
            return;
        }
}

void MainFrame::TellToolbox()
{
    // Without a window the message would go to the thread.
    if (toolbox == nullptr)
        return;
    const Tool* const shown = FindTool(tool);
    if (shown != nullptr)
        PostMessageW(toolbox, WM_APP, shown->column, 0);
    else
        PostMessageW(toolbox, WM_APP, static_cast<WPARAM>(-1), -1);
}

void MainFrame::OnLButtonDown(u32, LPARAM packedPoint)
{
    MovePenTo(*this, Unpack(packedPoint));
    if (const ToolActions* const actions = ActionsOf(tool))
        actions->press(*this);
    SetCapture(window);
}

void MainFrame::OnMouseMove(u32 keys, LPARAM packedPoint)
{
    if ((keys & MK_LBUTTON) == 0)
        return;
    if (const ToolActions* const actions = ActionsOf(tool))
        actions->drag(*this, Unpack(packedPoint));
}

void MainFrame::OnLButtonUp(u32, LPARAM packedPoint)
{
    if (GetCapture() != window)
        return;
    if (const ToolActions* const actions = ActionsOf(tool))
        actions->lift(*this, Unpack(packedPoint));
    ReleaseCapture();
}
