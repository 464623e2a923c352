// The memory clip: a copy of the selection or the picture that is the program's own, and outlives
// loads of other pictures.

#include "shell/Boxes.h"
#include "shell/MainFrame.h"
#include "shell/MemoryQuestion.h"

#include <new>

namespace
{

void DropClip(MainFrame& frame)
{
    delete frame.clipImage;
    frame.clipImage = nullptr;
    delete frame.clipAllocator;
    frame.clipAllocator = nullptr;
}

} // namespace

MainFrame::SelectedPart MainFrame::GetPartToCopy() const
{
    SelectedPart part = GetSelectedPart();
    if (selectionActive != 0)
        return part;
    RasterInfo info = {};
    info.size = sizeof info;
    (void)image->GetInfo(&info);
    // Meant: the corner stays that of the last selection.
    part.width = static_cast<i32>(info.width);
    part.height = static_cast<i32>(info.height);
    return part;
}

void MainFrame::CopyToMemory()
{
    const SelectedPart part = GetPartToCopy();
    const u32 width = static_cast<u32>(part.width);
    const u32 height = static_cast<u32>(part.height);
    // Meant: the old clip goes before the question, and the entries that need one stay as they are
    // until the menus are looked at again.
    DropClip(*this);
    if (!MayTakeMemory(window, MemoryNeed(width, height)))
        return;
    clipAllocator = new (std::nothrow) HeapAllocator;
    if (clipAllocator == nullptr) {
        ShowError(window, TEXT("Failed to allocate temorary memory space."),
                  TEXT("作業用メモリの確保に失敗しました。"));
        return;
    }
    clipImage = new (std::nothrow) Raster(clipAllocator);
    if (clipImage == nullptr) {
        DropClip(*this);
        ShowError(window, TEXT("Failed to allocate temorary memory space for DIB clip."),
                  TEXT("クリップ用DIBの確保に失敗しました。"));
        return;
    }
    // A clip that finds no memory for its lines pastes none.
    (void)clipImage->Create(width, height, 24, nullptr, nullptr);
    (void)image->CopyTo(part.left, part.top, part.width, part.height, clipImage, 0, 0, SRCCOPY);
    UpdateClipMenus();
}

void MainFrame::PasteFromMemory()
{
    if (selectionActive == 0) {
        TellNoPlaceToPaste(window);
        return;
    }
    if (clipImage == nullptr)
        return;
    RasterInfo info = {};
    info.size = sizeof info;
    (void)clipImage->GetInfo(&info);
    const SelectedPart part = GetSelectedPart();
    // Meant: the selection says where, and not how much.
    (void)clipImage->CopyTo(0, 0, static_cast<i32>(info.width), static_cast<i32>(info.height),
                            image, part.left, part.top, SRCCOPY);
    RedrawView();
}

void MainFrame::ClearMemory()
{
    DropClip(*this);
    UpdateClipMenus();
}
