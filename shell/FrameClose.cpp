// Closing: what goes back into the settings, and the end of the message loop. No question is asked.

#include "resources/Ids.h"
#include "shell/MainFrame.h"

void MainFrame::OnClose()
{
    KillTimer(window, ClipboardTimer);
    settings->SetUInt(ProgramSection, TEXT("ShowToolbox"), showToolbox);
    settings->SetUInt(ProgramSection, TEXT("ShowColorbox"), showColorbox);
    settings->SetUInt(ProgramSection, TEXT("FaceColor"), faceColor);
    settings->SetUInt(ProgramSection, TEXT("BackgroundColor"), backgroundColor);
    BrushInfo stamp = {};
    stamp.size = sizeof stamp;
    (void)brush->GetInfo(&stamp);
    settings->SetUInt(ProgramSection, TEXT("BrushRadius"), stamp.radius);
    settings->SetUInt(ProgramSection, TEXT("BrushStrength"), stamp.strength);
    settings->SetUInt(ProgramSection, TEXT("BrushDiffusion"), stamp.diffusion);
    settings->SetUInt(ProgramSection, TEXT("WindowAdjusted"),
                      zoomCommand == CommandZoomWindow ? 1 : 0);
    settings->SetUInt(ProgramSection, TEXT("DitherMode"), dither);
    settings->SetUInt(ProgramSection, TEXT("ScreenMode"), monoScreen);
    // Nobody is left to see what still waits to be opened.
    handOvers.closed = 1;
    handOvers.Drop();
    if (popupMenu != nullptr)
        DestroyMenu(popupMenu);
    if (smallIcon != nullptr)
        DestroyIcon(smallIcon);
    PostQuitMessage(0);
}
