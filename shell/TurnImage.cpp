// Reversing and turning the picture. All of it but the quarter turns is done in place; none of it
// can be undone, and the selection stays where it is, also where the picture under it has moved.

#include "resources/Ids.h"
#include "shell/Boxes.h"
#include "shell/MainFrame.h"
#include "shell/MemoryQuestion.h"

#include <new>

namespace
{

RasterInfo InfoOf(Raster& raster)
{
    RasterInfo info = {};
    info.size = sizeof info;
    (void)raster.GetInfo(&info);
    return info;
}

void ReverseLines(MainFrame& frame)
{
    // A picture that is not there has no lines that could fail.
    if (InfoOf(*frame.image).height == 0 || frame.image->FlipHorizontal() >= Done)
        return;
    ShowError(frame.window,
              TEXT("Available memory or temporary storage is low. The image might be damaged."),
              TEXT("メモリ、および作業用ストレージが不足しました。リロードを行ってください。"));
}

// Lines that are not there cannot be exchanged, and the others are all the same. From the middle
// outwards, since what is missing is at the end: of a picture that could not be made whole, which
// names up to billions of lines, the first failure is the last pair that has to be tried.
void ReverseOrder(Raster& image)
{
    const u32 height = InfoOf(image).height;
    for (u32 i = height / 2; i > 0; --i)
        if (image.SwapLines(static_cast<i32>(i - 1), static_cast<i32>(height - i)) < Done)
            return;
}

/// The picture with rows and columns exchanged, which is the caller's. Null after telling why not.
Raster* MakeTransposed(const MainFrame& frame, const RasterInfo& info)
{
    Raster* made = new (std::nothrow) Raster;
    if (made == nullptr ||
        made->Create(info.height, info.width, info.depth, nullptr, nullptr) < Done) {
        delete made;
        ShowError(frame.window, TEXT("Failed to create a temporary DIB."),
                  TEXT("作業用DIBの確保に失敗しました。"));
        return nullptr;
    }
    if (frame.image->TransposeTo(made) < Done) {
        delete made;
        ShowError(
            frame.window,
            TEXT("Available physical and logical memory is low. Reload and recover the "
                 "image, which might be broken."),
            TEXT("作業用メモリが足りません。再読み込みを行って壊れた画像を回復してください。"));
        return nullptr;
    }
    return made;
}

} // namespace

void MainFrame::ReverseHorizontally()
{
    ReverseLines(*this);
    InitializeView();
}

void MainFrame::ReverseVertically()
{
    ReverseOrder(*image);
    InitializeView();
}

// Meant: lines that could not be reversed are told, and change places all the same.
void MainFrame::TurnHalf()
{
    ReverseLines(*this);
    ReverseOrder(*image);
    InitializeView();
}

void MainFrame::TurnQuarter(u32 command)
{
    const RasterInfo info = InfoOf(*image);
    if (!MayTakeMemory(window, u64{info.height} * info.stride))
        return;
    Raster* const transposed = MakeTransposed(*this, info);
    if (transposed == nullptr)
        return;
    // The picture loses its folders to those of the other, which has none.
    (void)image->TakeFrom(transposed);
    delete transposed;
    // Exchanging rows and columns is a mirror; a second mirror makes it a turn. Meant: behind the
    // clockwise command, which no menu entry sends, comes half a turn and not the horizontal
    // reverse, so that it ends as the mirror about the other diagonal.
    const WPARAM second =
        command == CommandRotateClockwise ? CommandRotate180 : CommandReverseVertical;
    SendMessageW(window, WM_COMMAND, second, 0);
}
