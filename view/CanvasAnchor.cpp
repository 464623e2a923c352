#include "view/CanvasAnchor.h"

#include "resources/Ids.h"

namespace
{

using enum CanvasEdge;

constexpr CanvasAnchor Anchors[] = {
    {ControlAnchorUpperLeft, First, First, TEXT("Upper-Left"), TEXT("左上配置")},
    {ControlAnchorUpper, Middle, First, TEXT("Upper"), TEXT("上部中央配置")},
    {ControlAnchorUpperRight, Last, First, TEXT("Upper-Right"), TEXT("右上配置")},
    {ControlAnchorLeft, First, Middle, TEXT("Left"), TEXT("左配置")},
    {ControlAnchorCenter, Middle, Middle, TEXT("Center"), TEXT("上下中央配置")},
    {ControlAnchorRight, Last, Middle, TEXT("Right"), TEXT("右配置")},
    {ControlAnchorLowerLeft, First, Last, TEXT("Lower-Left"), TEXT("左下配置")},
    {ControlAnchorLower, Middle, Last, TEXT("Lower"), TEXT("下部中央配置")},
    {ControlAnchorLowerRight, Last, Last, TEXT("Lower-Right"), TEXT("右下配置")},
};

} // namespace

const CanvasAnchor* FindCanvasAnchor(u32 id)
{
    for (const CanvasAnchor& anchor : Anchors)
        if (anchor.id == id)
            return &anchor;
    return nullptr;
}

i32 PlaceOnCanvas(CanvasEdge edge, u32 oldLength, u32 newLength)
{
    const u32 difference = newLength - oldLength;
    switch (edge) {
    case Middle:
        return static_cast<i32>(difference) / 2;
    case Last:
        return static_cast<i32>(difference - 1);
    default:
        return 0;
    }
}
