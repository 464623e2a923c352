// How the view reaches the screen: in colour, dithered or not, or in four greys.

#include "shell/MainFrame.h"

void MainFrame::ToggleDither()
{
    dither = dither != 0 ? 0 : 1;
    UpdateDitherCheck();
    RedrawView();
}

i32 MainFrame::CreateSurface()
{
    return surface.Create(static_cast<u32>(screenWidth), static_cast<u32>(screenHeight),
                          monoScreen != 0 ? 2 : 24);
}

void MainFrame::SetMonoScreen(u32 mono)
{
    monoScreen = mono;
    // A failure leaves the surface that stands, and the view goes on with it.
    (void)CreateSurface();
    UpdateScreenChecks();
    RedrawView();
}
