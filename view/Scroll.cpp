// Scrolling by the arrow keys: the picture moves away in the key's direction, 10 screen pixels at a
// time; a second arrow key that is held adds its own movement.

#include "resources/Ids.h"
#include "shell/MainFrame.h"

namespace
{

bool Held(int key)
{
    return GetAsyncKeyState(key) < 0;
}

} // namespace

void MainFrame::ScrollByKeys(u32 command)
{
    const f64 step = zoom * 10.0;
    const bool sideways = command == CommandScrollLeft || command == CommandScrollRight;
    if (command == CommandScrollLeft || (!sideways && Held(VK_LEFT)))
        scrollX += step;
    if (command == CommandScrollRight || (!sideways && Held(VK_RIGHT)))
        scrollX -= step;
    if (command == CommandScrollUp || (sideways && Held(VK_UP)))
        scrollY += step;
    if (command == CommandScrollDown || (sideways && Held(VK_DOWN)))
        scrollY -= step;
    RedrawView();
}
