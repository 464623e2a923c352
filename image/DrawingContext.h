// A device context that remembers, for each kind of object, what was selected before the program's
// first selection, so that it can be put back before the context goes. User-interface thread for a
// window's context; a memory context on any one thread.
#pragma once

#include "foundation/Result.h"

#include <windows.h>

class DrawingContext
{
public:
    DrawingContext();
    /// Detaches or deletes what it holds.
    ~DrawingContext();
    DrawingContext(const DrawingContext&) = delete;
    DrawingContext& operator=(const DrawingContext&) = delete;

    /// Gives up what it holds and takes the window's context; null takes the screen's. Failed.
    i32 AttachWindow(HWND window);
    /// Failed for a memory context, NothingDone without any, else restores, releases, Done.
    i32 Detach();
    /// Gives up what it holds and makes a memory context like `dc` (null: like the screen). Failed.
    i32 CreateMemory(HDC dc);
    /// NothingDone unless a memory context, Failed without any, else restores, deletes, Done.
    i32 DeleteMemory();
    /// BadArgument for null, Failed without a context or when the platform refuses, else Done. The
    /// displaced object goes to `displaced` if given.
    i32 SelectBitmap(HGDIOBJ object, HGDIOBJ* displaced = nullptr);
    i32 SelectFont(HGDIOBJ object, HGDIOBJ* displaced = nullptr);
    i32 SelectSlot3(HGDIOBJ object, HGDIOBJ* displaced = nullptr);
    i32 SelectSlot4(HGDIOBJ object, HGDIOBJ* displaced = nullptr);
    /// Selects each saved object back and clears its slot. NothingDone without a context.
    i32 RestoreAll();
    HDC Handle() const { return dc; }

private:
    i32 Select(HGDIOBJ object, HGDIOBJ* slot, HGDIOBJ* displaced);

    HDC dc;
    i32 isMemoryDC;
    HWND window;
    HGDIOBJ savedBitmap;
    HGDIOBJ savedFont;
    HGDIOBJ savedSlot3;
    HGDIOBJ savedSlot4;
};
