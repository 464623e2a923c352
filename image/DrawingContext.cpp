#include "image/DrawingContext.h"

DrawingContext::DrawingContext()
    : dc(nullptr), isMemoryDC(0), window(nullptr), savedBitmap(nullptr), savedFont(nullptr),
      savedSlot3(nullptr), savedSlot4(nullptr)
{
}

DrawingContext::~DrawingContext()
{
    (void)DeleteMemory();
    (void)Detach();
}

i32 DrawingContext::AttachWindow(HWND newWindow)
{
    (void)DeleteMemory();
    (void)Detach();
    dc = ::GetDC(newWindow);
    if (dc == nullptr)
        return Failed;
    window = newWindow;
    return Done;
}

i32 DrawingContext::Detach()
{
    if (isMemoryDC)
        return Failed;
    if (dc == nullptr)
        return NothingDone;
    (void)RestoreAll();
    ::ReleaseDC(window, dc);
    dc = nullptr;
    window = nullptr;
    return Done;
}

i32 DrawingContext::CreateMemory(HDC like)
{
    (void)DeleteMemory();
    (void)Detach();
    dc = ::CreateCompatibleDC(like);
    if (dc == nullptr)
        return Failed;
    isMemoryDC = 1;
    return Done;
}

i32 DrawingContext::DeleteMemory()
{
    if (!isMemoryDC)
        return NothingDone;
    if (dc == nullptr)
        return Failed;
    (void)RestoreAll();
    ::DeleteDC(dc);
    dc = nullptr;
    isMemoryDC = 0;
    return Done;
}

i32 DrawingContext::SelectBitmap(HGDIOBJ object, HGDIOBJ* displaced)
{
    return Select(object, &savedBitmap, displaced);
}

i32 DrawingContext::SelectFont(HGDIOBJ object, HGDIOBJ* displaced)
{
    return Select(object, &savedFont, displaced);
}

i32 DrawingContext::SelectSlot3(HGDIOBJ object, HGDIOBJ* displaced)
{
    return Select(object, &savedSlot3, displaced);
}

i32 DrawingContext::SelectSlot4(HGDIOBJ object, HGDIOBJ* displaced)
{
    return Select(object, &savedSlot4, displaced);
}

i32 DrawingContext::RestoreAll()
{
    if (dc == nullptr)
        return NothingDone;
    HGDIOBJ* const slots[] = {&savedBitmap, &savedFont, &savedSlot3, &savedSlot4};
    for (HGDIOBJ* slot : slots) {
        if (*slot != nullptr)
            ::SelectObject(dc, *slot);
        *slot = nullptr;
    }
    return Done;
}

i32 DrawingContext::Select(HGDIOBJ object, HGDIOBJ* slot, HGDIOBJ* displaced)
{
    if (object == nullptr)
        return BadArgument;
    if (dc == nullptr)
        return Failed;
    const HGDIOBJ before = ::SelectObject(dc, object);
    if (before == nullptr || before == HGDI_ERROR)
        return Failed;
    // The slot holds the context's own object for as long as something else stands in its place.
    if (object == *slot)
        *slot = nullptr;
    else if (*slot == nullptr)
        *slot = before;
    if (displaced != nullptr)
        *displaced = before;
    return Done;
}
