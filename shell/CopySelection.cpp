// The work copy: the selected part of the picture as a picture of its own, which a plugin works on
// in place of the whole.

#include "foundation/Numbers.h"
#include "shell/Boxes.h"
#include "shell/MainFrame.h"
#include "shell/MemoryQuestion.h"

#include <algorithm>
#include <limits.h>
#include <new>

MainFrame::SelectedPart MainFrame::GetSelectedPart() const
{
    // Corners that no drag leaves, out of order or out of all bounds, come to nothing or to the
    // largest number.
    const auto extent = [](i32 first, i32 last) {
        return static_cast<i32>(std::clamp(i64{last} - first + 1, i64{0}, i64{INT_MAX}));
    };
    const i32 left = TruncateToSigned(selectionLeft);
    const i32 top = TruncateToSigned(selectionTop);
    return {left, top, extent(left, TruncateToSigned(selectionRight)),
            extent(top, TruncateToSigned(selectionBottom))};
}

i32 MainFrame::CopySelection()
{
    if (selectionActive == 0)
        return NothingDone;
    DropWorkImage();
    const SelectedPart part = GetSelectedPart();
    const u32 width = static_cast<u32>(part.width);
    const u32 height = static_cast<u32>(part.height);
    if (!MayTakeMemory(window, MemoryNeed(width, height)))
        return NothingDone;
    workAllocator = new (std::nothrow) HeapAllocator;
    if (workAllocator == nullptr) {
        ShowError(window, TEXT("Failed to allocate temorary memory space."),
                  TEXT("作業用メモリの確保に失敗しました。"));
        return NothingDone;
    }
    workImage = new (std::nothrow) Raster(workAllocator);
    if (workImage == nullptr) {
        DropWorkImage();
        ShowError(window, TEXT("Failed to allocate temorary memory space for processing."),
                  TEXT("処理用DIBの確保に失敗しました。"));
        return NothingDone;
    }
    // Meant: a copy that finds no memory is told by whoever works on its lines.
    (void)workImage->Create(width, height, 24, nullptr, nullptr);
    (void)image->CopyTo(part.left, part.top, part.width, part.height, workImage, 0, 0, SRCCOPY);
    return Done;
}

void MainFrame::DropWorkImage()
{
    delete workImage;
    workImage = nullptr;
    delete workAllocator;
    workAllocator = nullptr;
}
