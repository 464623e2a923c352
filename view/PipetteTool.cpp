// Picking the face colour from the picture.

#include "foundation/Numbers.h"
#include "view/ToolActions.h"

namespace
{

// The pixel under the pen's latest point. Outside the picture, and where its depth has no colours,
// the face colour stays and the colorbox hears nothing.
void Pick(MainFrame& frame)
{
    if (frame.image == nullptr)
        return;
    const MainFrame::Point point = ImagePointOf(frame, frame.toolPoint);
    u32 color = 0;
    if (frame.image->GetPixel(TruncateToSigned(point.x), TruncateToSigned(point.y), &color) < 1)
        return;
    frame.faceColor = color;
    SendMessageW(frame.colorbox, WM_APP, frame.backgroundColor,
                 static_cast<LPARAM>(frame.faceColor));
}

void Drag(MainFrame& frame, const MainFrame::Point& at)
{
    MovePenTo(frame, at);
    Pick(frame);
}

} // namespace

constinit const ToolActions PipetteActions = {Pick, Drag, Drag};
