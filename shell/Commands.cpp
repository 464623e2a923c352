// The commands: a table of identifiers and what each does. An identifier that is not in it does
// nothing, whatever the menus or keys send.

#include "resources/Ids.h"
#include "shell/MainFrame.h"

namespace
{

void Exit(MainFrame& frame, u32)
{
    PostMessageW(frame.window, WM_CLOSE, 0, 0);
}
void Initialize(MainFrame& frame, u32)
{
    frame.InitializeView();
}
void Zoom(MainFrame& frame, u32 id)
{
    frame.SetZoom(id);
}
void ZoomWindow(MainFrame& frame, u32)
{
    frame.FitToWindow(1);
}
void ScrollKey(MainFrame& frame, u32 id)
{
    frame.ScrollByKeys(id);
}
void Dither(MainFrame& frame, u32)
{
    frame.ToggleDither();
}
void Screen(MainFrame& frame, u32 id)
{
    frame.SetMonoScreen(id == CommandScreenMono ? 1 : 0);
}

void ShowPlugins(MainFrame& frame, u32)
{
    frame.ShowPlugins();
}

struct Command {
    u32 id;
    void (*run)(MainFrame& frame, u32 id);
};

constexpr Command commands[] = {
    {CommandExit, Exit},
    {CommandPluginsInfo, ShowPlugins},
    {CommandInitializeView, Initialize},
    {CommandZoom25, Zoom},
    {CommandZoom50, Zoom},
    {CommandZoom75, Zoom},
    {CommandZoom100, Zoom},
    {CommandZoom200, Zoom},
    {CommandZoom300, Zoom},
    {CommandZoom400, Zoom},
    {CommandZoomWindow, ZoomWindow},
    {CommandDitherOn, Dither},
    {CommandScreenColor, Screen},
    {CommandScreenMono, Screen},
    {CommandScrollLeft, ScrollKey},
    {CommandScrollRight, ScrollKey},
    {CommandScrollUp, ScrollKey},
    {CommandScrollDown, ScrollKey},
};

} // namespace

LRESULT MainFrame::OnCommand(u32, u32 id, HWND)
{
    for (const Command& command : commands)
        if (command.id == id) {
            const ScopedFlow flow(this);
            command.run(*this, id);
            break;
        }
    return 0;
}
