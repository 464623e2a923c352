// What the rest of the desktop offers on the clipboard, asked once a second.

#include "resources/Ids.h"
#include "shell/MainFrame.h"

void MainFrame::PollClipboard()
{
    const u32 offered =
        IsClipboardFormatAvailable(CF_DIB) || IsClipboardFormatAvailable(CF_BITMAP) ? 1 : 0;
    if (offered == clipboardHasImage)
        return;
    clipboardHasImage = offered;
    // Without a picture both entries are grayed whatever is offered: the first load asks anew.
    const UINT state = imagePresent != 0 && offered != 0 ? MF_ENABLED : MF_GRAYED;
    FetchMenus();
    EnableMenuItem(pasteMenu, CommandPasteFromClipboard, MF_BYCOMMAND | state);
    EnableMenuItem(clearMenu, CommandClearClipboard, MF_BYCOMMAND | state);
}
