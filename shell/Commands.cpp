// The commands: the ranges of the plugins' entries, then a table of identifiers and what each does.
// An identifier that is in neither does nothing, whatever the menus or keys send. The keys send
// theirs whatever state the menu's entry has, so that each operation bears an absent picture.

#include "resources/Ids.h"
#include "shell/MainFrame.h"

namespace
{

void Exit(MainFrame& frame, u32)
{
    PostMessageW(frame.window, WM_CLOSE, 0, 0);
}
void OpenFile(MainFrame& frame, u32)
{
    frame.OpenFile(nullptr);
}
void OpenUrl(MainFrame& frame, u32)
{
    frame.OpenUrl(0);
}
void OpenIrObex(MainFrame& frame, u32)
{
    frame.OpenIrObex();
}
void ReloadOpened(MainFrame& frame, u32)
{
    frame.ReloadOpened();
}
void ReloadSaved(MainFrame& frame, u32)
{
    frame.ReloadSaved();
}
void Save(MainFrame& frame, u32)
{
    frame.Save();
}
void SaveVirtual(MainFrame& frame, u32)
{
    frame.SaveVirtualCommand();
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

void ShowImageInformation(MainFrame& frame, u32)
{
    frame.ShowImageInformation();
}
void ShowPaletteInformation(MainFrame& frame, u32)
{
    frame.ShowPaletteInformation();
}
void ShowAbout(MainFrame& frame, u32)
{
    frame.ShowAbout();
}
void ShowPlugins(MainFrame& frame, u32)
{
    frame.ShowPlugins();
}
void SelectAll(MainFrame& frame, u32)
{
    frame.SelectAll();
}
void Deselect(MainFrame& frame, u32)
{
    frame.Deselect();
}
void Tool(MainFrame& frame, u32 id)
{
    frame.ChooseTool(id);
}
void ToolWindow(MainFrame& frame, u32 id)
{
    frame.ToggleToolWindow(id);
}
void CopyToMemory(MainFrame& frame, u32)
{
    frame.CopyToMemory();
}
void PasteFromMemory(MainFrame& frame, u32)
{
    frame.PasteFromMemory();
}
void CopyToClipboard(MainFrame& frame, u32)
{
    frame.CopyToClipboard();
}
void PasteFromClipboard(MainFrame& frame, u32)
{
    frame.PasteFromClipboard();
}
void ClearMemory(MainFrame& frame, u32)
{
    frame.ClearMemory();
}
void ClearClipboard(MainFrame& frame, u32)
{
    frame.ClearClipboard();
}
void DrawLetters(MainFrame& frame, u32)
{
    frame.DrawLetters();
}
void ReverseHorizontally(MainFrame& frame, u32)
{
    frame.ReverseHorizontally();
}
void ReverseVertically(MainFrame& frame, u32)
{
    frame.ReverseVertically();
}
void TurnHalf(MainFrame& frame, u32)
{
    frame.TurnHalf();
}
void TurnQuarter(MainFrame& frame, u32 id)
{
    frame.TurnQuarter(id);
}
void LaunchViewer(MainFrame& frame, u32)
{
    frame.LaunchViewer();
}
void NewImage(MainFrame& frame, u32)
{
    frame.NewImage();
}
void ScaleImage(MainFrame& frame, u32)
{
    frame.ScaleImage();
}
void ResizeCanvas(MainFrame& frame, u32)
{
    frame.ResizeCanvas();
}
void Undo(MainFrame& frame, u32)
{
    frame.Undo();
}
void PrintFirst(MainFrame& frame, u32)
{
    frame.Print(0);
}
// Meant: reducing colours has an entry, which a plugin of its kind enables, and does nothing.
void Subtract(MainFrame&, u32) {}

struct Range {
    u32 first;
    u32 last; // inclusive
    u32 base; // what the position counts from
    void (MainFrame::*run)(u32 position);
};

// Meant: the ends of the first two lie in the next one, and both then run. No menu has as many
// entries, so that all that comes of it is a beep before the first save and the first effect.
constexpr Range ranges[] = {
    {CommandFirstOpenAs, 41100, CommandFirstOpenAs, &MainFrame::OpenAs},
    {CommandFirstSaveAs, 41200, CommandFirstSaveAs, &MainFrame::SaveAs},
    {CommandFirstPrint, 41599, CommandFirstPrint, &MainFrame::Print},
    {CommandFirstEffect, 41299, CommandFirstEffect, &MainFrame::Effect},
    {CommandFirstAdjust, 41399, CommandFirstAdjust, &MainFrame::Adjust},
};

struct Command {
    u32 id;
    void (*run)(MainFrame& frame, u32 id);
};

constexpr Command commands[] = {
    {CommandExit, Exit},
    {CommandNew, NewImage},
    {CommandOpenFile, OpenFile},
    {CommandOpenUrl, OpenUrl},
    {CommandOpenIrObex, OpenIrObex},
    {CommandReloadOpened, ReloadOpened},
    {CommandReloadSaved, ReloadSaved},
    {CommandSave, Save},
    {CommandVirtualSave, SaveVirtual},
    {CommandImageInformation, ShowImageInformation},
    {CommandPaletteInformation, ShowPaletteInformation},
    {CommandAbout, ShowAbout},
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
    {CommandResolution, ScaleImage},
    {CommandSize, ResizeCanvas},
    {CommandUndo, Undo},
    {CommandSelectAll, SelectAll},
    {CommandDeselect, Deselect},
    {CommandCopyToMemory, CopyToMemory},
    {CommandPasteFromMemory, PasteFromMemory},
    {CommandCopyToClipboard, CopyToClipboard},
    {CommandPasteFromClipboard, PasteFromClipboard},
    {CommandClearMemory, ClearMemory},
    {CommandClearClipboard, ClearClipboard},
    {CommandReverseHorizontal, ReverseHorizontally},
    {CommandReverseVertical, ReverseVertically},
    {CommandRotate180, TurnHalf},
    {CommandRotateClockwise, TurnQuarter},
    {CommandRotateCounterClockwise, TurnQuarter},
    {CommandScroll, Tool},
    {CommandSelectRectangle, Tool},
    {CommandBrush, Tool},
    {CommandColorEraser, Tool},
    {CommandAlphaEraser, Tool},
    {CommandPipette, Tool},
    {CommandText, DrawLetters},
    {CommandLaunchViewer, LaunchViewer},
    {CommandToolboxWindow, ToolWindow},
    {CommandColorboxWindow, ToolWindow},
    {CommandSubtract, Subtract},
    {CommandPrintFirst, PrintFirst},
};

} // namespace

LRESULT MainFrame::OnCommand(u32, u32 id, HWND)
{
    const ScopedFlow flow(this);
    for (const Range& range : ranges)
        if (id >= range.first && id <= range.last)
            (this->*range.run)(id - range.base);
    for (const Command& command : commands)
        if (command.id == id)
            command.run(*this, id);
    return 0;
}
