// Printing: the whole picture, whatever is selected, goes through a PRINT plugin.

#include "shell/MainFrame.h"

void MainFrame::Print(u32)
{
    if (imagePresent == 0)
        MessageBeep(0xFFFFFFFF);
    // Ends here, where the print dialog will stand.
}
