#include "platform/core/Gdi.h"

namespace tavrix::platform
{
namespace
{

TextDrawing textDrawing;

} // namespace

void SetTextDrawing(const TextDrawing& drawing)
{
    textDrawing = drawing;
}

} // namespace tavrix::platform

using namespace tavrix::platform;

extern "C" {

COLORREF WINAPI SetTextColor(HDC dc, COLORREF color)
{
    const auto context = FindDeviceContext(dc);
    if (context == nullptr)
        return CLR_INVALID;
    const COLORREF before = context->textColor;
    context->textColor = color & 0xFFFFFF;
    return before;
}

int WINAPI DrawTextW(HDC dc, LPCWSTR text, int count, RECT* rectangle, UINT format)
{
    const auto context = FindDeviceContext(dc);
    if (context == nullptr || text == nullptr || rectangle == nullptr || count < -1 ||
        textDrawing.draw == nullptr)
        return 0;
    return textDrawing.draw(*context, text, count, rectangle, format);
}

int WINAPI EnumFontFamiliesW(HDC dc, LPCWSTR family, FONTENUMPROCW take, LPARAM parameter)
{
    if (FindDeviceContext(dc) == nullptr || take == nullptr || textDrawing.families == nullptr)
        return 0;
    return textDrawing.families(family, take, parameter);
}

} // extern "C"
