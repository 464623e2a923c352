// Printing: the whole picture, whatever is selected, goes through a PRINT plugin. The one job that
// the user can stop.

#include "shell/Job.h"
#include "shell/MainFrame.h"
#include "shell/PluginEntry.h"
#include "shell/PrintDialog.h"

void MainFrame::Print(u32 position)
{
    PrintArguments arguments = {printPlugins, window, image};
    JobRecord record = {JobPrint, &arguments};
    if (imagePresent == 0) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    // Meant: what is missing from here on is not told.
    u32 plugin = 0;
    if (FindPluginEntry(*printNames, position, &plugin) < Done ||
        printPlugins->LoadByIndex(plugin, 0) < Done)
        return;
    const ScopedHold hold(this);
    if (ShowPrintDialog(window, instance, &record) >= Done) {
        abortRequested = 0;
        (void)RunJob(window, instance, &record);
        // No other job puts it back, and each would see it.
        abortRequested = 0;
        image->UnlockAll();
    }
    printPlugins->Unload();
}
