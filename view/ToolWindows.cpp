// Toolbox and colorbox as the frame has them: made, shown and hidden, and what a click on them
// opens.

#include "resources/Ids.h"
#include "shell/MainFrame.h"
#include "view/BrushSettings.h"
#include "view/Colorbox.h"
#include "view/Toolbox.h"

namespace
{

void OnClick()
{
    if (mainFrame == nullptr || mainFrame->tool != MainFrame::ToolBrush)
        return;
    (void)ShowBrushSettings(mainFrame->window, mainFrame->instance, mainFrame->brush);
}

u32 OnPick(HWND owner, u32* colorWord)
{
    if (mainFrame == nullptr || colorWord == nullptr)
        return 0;
    ColorChoice choice = {};
    choice.owner = owner;
    choice.instance = mainFrame->instance;
    choice.color = ColorRefOfWord(*colorWord);
    if (mainFrame->colorDialog.Show(&choice) < 1)
        return 0;
    *colorWord = WordOfColorRef(choice.color);
    return 1;
}

int ShowCommand(u32 shown)
{
    return shown != 0 ? SW_SHOW : SW_HIDE;
}

} // namespace

void MainFrame::CreateToolWindows()
{
    toolbox = CreateToolbox(window, instance, {clientOriginX, clientOriginY, OnClick});
    ShowWindow(toolbox, ShowCommand(showToolbox));
    colorbox = CreateColorbox(window, instance,
                              {clientOriginX, clientOriginY, &faceColor, &backgroundColor, OnPick});
    ShowWindow(colorbox, ShowCommand(showColorbox));
}

void MainFrame::ToggleToolWindow(u32 command)
{
    if (command != CommandToolboxWindow && command != CommandColorboxWindow)
        return;
    const bool ofToolbox = command == CommandToolboxWindow;
    u32& shown = ofToolbox ? showToolbox : showColorbox;
    shown = shown == 0 ? 1 : 0;
    ShowWindow(ofToolbox ? toolbox : colorbox, ShowCommand(shown));
    UpdateWindowChecks();
}
