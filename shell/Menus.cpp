// The menus: taking the submenus by position, and the rules by which entries are enabled and
// checked. Positions, enable rules and checks are tables; the separators of the menu resource count
// in the positions.

#include "resources/Ids.h"
#include "shell/MainFrame.h"

#include <handheld.h>

namespace
{

struct SubmenuPlace {
    HMENU MainFrame::*target;
    HMENU MainFrame::*parent;
    int position;
};

constexpr SubmenuPlace places[] = {
    {&MainFrame::fileMenu, &MainFrame::mainMenu, 0},
    {&MainFrame::editMenu, &MainFrame::mainMenu, 1},
    {&MainFrame::toolsMenu, &MainFrame::mainMenu, 2},
    {&MainFrame::imageMenu, &MainFrame::mainMenu, 3},
    {&MainFrame::infoMenu, &MainFrame::mainMenu, 4},
    {&MainFrame::displayMenu, &MainFrame::mainMenu, 5},
    {&MainFrame::openMenu, &MainFrame::fileMenu, 2},
    {&MainFrame::openAsMenu, &MainFrame::openMenu, 4},
    {&MainFrame::saveMenu, &MainFrame::fileMenu, 3},
    {&MainFrame::saveAsMenu, &MainFrame::saveMenu, 3},
    {&MainFrame::streamMenu, &MainFrame::fileMenu, 5},
    {&MainFrame::printMenu, &MainFrame::fileMenu, 6},
    {&MainFrame::copyMenu, &MainFrame::editMenu, 6},
    {&MainFrame::pasteMenu, &MainFrame::editMenu, 7},
    {&MainFrame::clearMenu, &MainFrame::editMenu, 9},
    {&MainFrame::selectMenu, &MainFrame::toolsMenu, 2},
    {&MainFrame::brushMenu, &MainFrame::toolsMenu, 4},
    {&MainFrame::eraserMenu, &MainFrame::toolsMenu, 5},
    {&MainFrame::effectMenu, &MainFrame::imageMenu, 3},
    {&MainFrame::adjustMenu, &MainFrame::imageMenu, 4},
    {&MainFrame::reloadMenu, &MainFrame::imageMenu, 11},
    {&MainFrame::windowMenu, &MainFrame::displayMenu, 0},
    {&MainFrame::zoomMenu, &MainFrame::displayMenu, 3},
    {&MainFrame::methodMenu, &MainFrame::displayMenu, 4},
    {&MainFrame::ditherMenu, &MainFrame::displayMenu, 7},
    {&MainFrame::screenMenu, &MainFrame::displayMenu, 8},
};

struct EnableRule {
    HMENU MainFrame::*menu;
    u32 item;
    u32 by; // MF_BYCOMMAND or MF_BYPOSITION
};

// Where the table names a position it is a popup's.
constexpr EnableRule imageRules[] = {
    {&MainFrame::saveMenu, CommandSave, MF_BYCOMMAND},
    {&MainFrame::saveMenu, CommandVirtualSave, MF_BYCOMMAND},
    {&MainFrame::saveMenu, 3, MF_BYPOSITION}, // Save As
    {&MainFrame::fileMenu, 6, MF_BYPOSITION}, // Print
    {&MainFrame::editMenu, CommandSelectAll, MF_BYCOMMAND},
    {&MainFrame::editMenu, CommandDeselect, MF_BYCOMMAND},
    {&MainFrame::copyMenu, CommandCopyToMemory, MF_BYCOMMAND},
    {&MainFrame::copyMenu, CommandCopyToClipboard, MF_BYCOMMAND},
    {&MainFrame::toolsMenu, CommandScroll, MF_BYCOMMAND},
    {&MainFrame::toolsMenu, CommandPipette, MF_BYCOMMAND},
    {&MainFrame::toolsMenu, CommandText, MF_BYCOMMAND},
    {&MainFrame::selectMenu, CommandSelectRectangle, MF_BYCOMMAND},
    {&MainFrame::brushMenu, CommandBrush, MF_BYCOMMAND},
    {&MainFrame::eraserMenu, CommandColorEraser, MF_BYCOMMAND},
    {&MainFrame::imageMenu, 0, MF_BYPOSITION},  // Mode
    {&MainFrame::imageMenu, 1, MF_BYPOSITION},  // Layer
    {&MainFrame::imageMenu, 3, MF_BYPOSITION},  // Effect
    {&MainFrame::imageMenu, 4, MF_BYPOSITION},  // Adjust
    {&MainFrame::imageMenu, 7, MF_BYPOSITION},  // Rotate
    {&MainFrame::imageMenu, 11, MF_BYPOSITION}, // Reload
    {&MainFrame::imageMenu, CommandSize, MF_BYCOMMAND},
    {&MainFrame::reloadMenu, CommandReloadOpened, MF_BYCOMMAND},
    {&MainFrame::reloadMenu, CommandReloadSaved, MF_BYCOMMAND},
    {&MainFrame::infoMenu, 0, MF_BYPOSITION},    // Image
    {&MainFrame::infoMenu, 1, MF_BYPOSITION},    // Palette
    {&MainFrame::displayMenu, 2, MF_BYPOSITION}, // Coordinate
    {&MainFrame::displayMenu, 3, MF_BYPOSITION}, // Zoom
    {&MainFrame::displayMenu, 5, MF_BYPOSITION}, // Rotation
};

constexpr u32 zoomCommands[] = {CommandZoom25,  CommandZoom50,  CommandZoom75,  CommandZoom100,
                                CommandZoom200, CommandZoom300, CommandZoom400, CommandZoomWindow};

void Enable(HMENU menu, u32 command, bool enable)
{
    EnableMenuItem(menu, command, MF_BYCOMMAND | (enable ? MF_ENABLED : MF_GRAYED));
}

void Check(HMENU menu, u32 command, bool check)
{
    CheckMenuItem(menu, command, MF_BYCOMMAND | (check ? MF_CHECKED : MF_UNCHECKED));
}

} // namespace

void MainFrame::FetchMenus()
{
    mainMenu = CommandBar_GetMenu(commandBar, 0);
    for (const SubmenuPlace& place : places)
        this->*place.target = GetSubMenu(this->*place.parent, place.position);
}

void MainFrame::EnableImageMenus()
{
    FetchMenus();
    for (const EnableRule& rule : imageRules)
        EnableMenuItem(this->*rule.menu, rule.item, rule.by | MF_ENABLED);
    if (scalePlugins != nullptr && scalePlugins->Count() > 0)
        Enable(imageMenu, CommandResolution, true);
    if (subtractPlugins != nullptr && subtractPlugins->Count() > 0)
        Enable(imageMenu, CommandSubtract, true);
}

void MainFrame::UpdateClipMenus()
{
    FetchMenus();
    Enable(editMenu, CommandSelectAll, imagePresent != 0);
    Enable(copyMenu, CommandCopyToMemory, imagePresent != 0);
    Enable(copyMenu, CommandCopyToClipboard, imagePresent != 0);
    Enable(editMenu, CommandDeselect, selectionActive != 0);
    Enable(pasteMenu, CommandPasteFromMemory, clipImage != nullptr);
    Enable(clearMenu, CommandClearMemory, clipImage != nullptr);
    Enable(pasteMenu, CommandPasteFromClipboard, clipboardHasImage != 0);
    Enable(clearMenu, CommandClearClipboard, clipboardHasImage != 0);
}

void MainFrame::UpdateZoomChecks()
{
    FetchMenus();
    for (u32 command : zoomCommands)
        Check(zoomMenu, command, command == zoomCommand);
}

// The entry of the English menu carries another identifier, so its mark stays as the resource has
// it.
void MainFrame::UpdateDitherCheck()
{
    FetchMenus();
    Check(ditherMenu, CommandDitherOn, dither != 0);
}

void MainFrame::UpdateScreenChecks()
{
    FetchMenus();
    Check(screenMenu, CommandScreenColor, monoScreen == 0);
    Check(screenMenu, CommandScreenMono, monoScreen != 0);
}

void MainFrame::UpdateWindowChecks()
{
    FetchMenus();
    Check(windowMenu, CommandToolboxWindow, showToolbox != 0);
    Check(windowMenu, CommandColorboxWindow, showColorbox != 0);
}
