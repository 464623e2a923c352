#include "shell/LoadFromWire.h"

#include "shell/Boxes.h"
#include "shell/MainFrame.h"

void LoadFromWire(MainFrame& frame, Stream* stream, i32 plugin)
{
    frame.inputPlugin = plugin;
    const ScopedHold hold(&frame);
    // Meant: told here in English, before the load that follows could tell it in the system's
    // language. That one gives this plugin up, loads it anew and unloads it in the end.
    if (frame.inputPlugins->LoadByIndex(static_cast<u32>(plugin), 0) < 0) {
        ShowEnglishError(frame.window, TEXT("Failed to load selected INPUT plugin."));
        return;
    }
    (void)frame.LoadFromStream(stream, plugin, 1);
}
