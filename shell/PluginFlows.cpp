// The flows that a plugin's entry under Open As, Save As and Print starts. Each goes as far as the
// dialog that it asks for a name or the printing with.

#include "shell/MainFrame.h"
#include "shell/PluginEntry.h"

void MainFrame::OpenAs(u32 position)
{
    u32 plugin = 0;
    if (FindPluginEntry(*inputNames, position, &plugin) < Done)
        MessageBeep(0xFFFFFFFF);
    // Ends here, where the file dialog will stand.
}

void MainFrame::SaveAs(u32 position)
{
    u32 plugin = 0;
    if (imagePresent == 0 || FindPluginEntry(*outputNames, position, &plugin) < Done)
        MessageBeep(0xFFFFFFFF);
    // Ends here, where the file dialog will stand.
}

void MainFrame::Print(u32)
{
    if (imagePresent == 0)
        MessageBeep(0xFFFFFFFF);
    // Ends here, where the print dialog will stand.
}
