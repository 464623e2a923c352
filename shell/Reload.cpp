// Reading the picture again: the way back from one that a command has damaged.

#include "foundation/BoundedText.h"
#include "shell/MainFrame.h"

void MainFrame::ReloadOpened()
{
    if (openedPath[0] != 0) {
        // Without the plugin's settings: the picture comes back as it was read the last time.
        // Meant: the plugin is that of the last Open, which need not be the one that read the file.
        (void)LoadFromFile(openedPath, inputPlugin, 0);
    } else if (inputPlugin >= 0) {
        // Whatever the picture came from last: an object that was received leaves the address
        // before it, and a new picture leaves the plugin.
        OpenUrl(1);
    } else {
        // A picture without a source can only be made anew.
        NewImage();
    }
}

void MainFrame::ReloadSaved()
{
    i32 plugin = -1;
    if (savedPath[0] == 0 || FindInputPlugin(savedPath, &plugin) < Done)
        return;
    inputPlugin = plugin;
    // Meant: with the plugin's settings, unlike the reload of the opened file. Any result but 0
    // counts, so that a file that does not open any more becomes the opened one, too.
    if (LoadFromFile(savedPath, plugin, 1) != 0)
        CopyText(openedPath, PathCapacity, savedPath);
}
