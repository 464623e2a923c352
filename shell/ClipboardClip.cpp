// The desktop's clipboard: a picture offered to other programs, as a block of a 40-byte header and
// rows from the bottom up or as a bitmap, and such a block taken from them.
//
// Rows of blocks and lines of 24 bits have the same bytes in the same order, so that runs of bytes
// are copied, each as far as it lies inside both.

#include "foundation/Numbers.h"
#include "shell/Boxes.h"
#include "shell/MainFrame.h"
#include "view/ClipboardFormat.h"

#include <algorithm>
#include <string.h>

namespace
{

constexpr i64 HeaderBytes = sizeof(BITMAPINFOHEADER);
static_assert(HeaderBytes == 40);

template <class Byte>
struct Bytes {
    Byte* first;
    i64 count;
};

void CopyInside(const Bytes<u8>& target, i64 targetAt, const Bytes<const u8>& source, i64 sourceAt,
                i64 count)
{
    const i64 begin = std::max({i64{0}, -targetAt, -sourceAt});
    const i64 end = std::min({count, target.count - targetAt, source.count - sourceAt});
    if (begin < end)
        memcpy(target.first + targetAt + begin, source.first + sourceAt + begin,
               static_cast<size_t>(end - begin));
}

RasterInfo InfoOf(Raster& raster)
{
    RasterInfo info = {};
    info.size = sizeof info;
    (void)raster.GetInfo(&info);
    return info;
}

/// What of a line may be touched: all of it, at other depths than 24 its whole pixels of 3 bytes.
i64 UsableBytes(const RasterInfo& info)
{
    return info.depth == 24 ? info.stride : info.stride / 3 * 3;
}

/// Calls `work(line, bytes)` for those lines from `first` to `last` that can be locked.
template <class Work>
void ForLines(Raster& image, i64 first, i64 last, const Work& work)
{
    const RasterInfo info = InfoOf(image);
    const i64 height = info.height;
    // None beyond can be locked.
    first = std::max(first, -height);
    last = std::min(last, height - 1);
    for (i64 y = first; y <= last; ++y) {
        const i32 line = static_cast<i32>(y);
        u8* row = nullptr;
        if (image.LockLines(line, &row, nullptr) < Done)
            continue;
        work(y, Bytes<u8>{row, UsableBytes(info)});
        (void)image.ReleaseLines(line, 1, 0);
    }
}

u64 RowBytes(i32 width)
{
    return (u64{3} * (static_cast<u64>(width) + 1)) & ~u64{3};
}

/// A picture on its way to the clipboard.
struct Offer {
    UINT format = 0;
    HANDLE handle = nullptr;
    Bytes<u8> rows = {nullptr, 0};
};

BITMAPINFOHEADER HeaderOf(const MainFrame::SelectedPart& part)
{
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = part.width;
    header.biHeight = part.height;
    header.biPlanes = 1;
    header.biBitCount = 24;
    header.biSizeImage = static_cast<DWORD>(RowBytes(part.width) * static_cast<u64>(part.height));
    return header;
}

/// False without memory.
bool MakeBlock(const BITMAPINFOHEADER& header, u64 bytes, Offer* offer)
{
    // A block's size has 32 bits.
    if (bytes + HeaderBytes > UINT32_MAX)
        return false;
    offer->format = CF_DIB;
    offer->handle = LocalAlloc(LPTR, static_cast<SIZE_T>(bytes + HeaderBytes));
    if (offer->handle == nullptr)
        return false;
    u8* const block = static_cast<u8*>(static_cast<void*>(offer->handle));
    memcpy(block, &header, sizeof header);
    offer->rows = {block + HeaderBytes, static_cast<i64>(bytes)};
    return true;
}

// Meant: a bitmap that cannot be made is for the clipboard to refuse.
void MakeBitmap(const BITMAPINFOHEADER& header, u64 bytes, Offer* offer)
{
    BITMAPINFO info = {};
    info.bmiHeader = header;
    void* bits = nullptr;
    offer->format = CF_BITMAP;
    offer->handle = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bits != nullptr)
        offer->rows = {static_cast<u8*>(bits), static_cast<i64>(bytes)};
}

// The picture's first line becomes the last row.
void FillRows(Raster& image, const MainFrame::SelectedPart& part, bool selected, const Offer& offer)
{
    // What found no memory may be of any size.
    if (offer.rows.first == nullptr)
        return;
    const i64 rowBytes = static_cast<i64>(RowBytes(part.width));
    const i64 left = selected ? part.left : 0;
    const i64 top = selected ? part.top : 0;
    // Meant: without a selection one column and one line too many. There is no such line; of the
    // column come those bytes that the line still has behind its pixels.
    const i64 extra = selected ? 0 : 1;
    const i64 bytes = 3 * (part.width + extra);
    ForLines(image, top, top + part.height - 1 + extra, [&](i64 y, const Bytes<u8>& line) {
        const i64 row = part.height - 1 - (y - top);
        CopyInside(offer.rows, row * rowBytes, {line.first, line.count}, 3 * left, bytes);
    });
}

bool Give(HWND owner, const Offer& offer)
{
    if (!OpenClipboard(owner))
        return false;
    const bool given = EmptyClipboard() && SetClipboardData(offer.format, offer.handle) != nullptr;
    CloseClipboard();
    return given;
}

void TakeBack(const Offer& offer)
{
    if (offer.handle == nullptr)
        return;
    if (offer.format == CF_DIB)
        LocalFree(static_cast<HLOCAL>(offer.handle));
    else
        DeleteObject(static_cast<HGDIOBJ>(offer.handle));
}

// Meant: the same words in both languages.
void TellUnexpected(HWND owner)
{
    MessageBoxW(owner, TEXT("UNEXPECTED ERROR"), TEXT("ERROR"), MB_ICONHAND);
}

/// Copies the block's pixels to the selection, which limits them. False for a block that is not of
/// 24 bits. Meant: its lines are counted from the picture's top and not from the selection's, so
/// that they come where they would lie if the picture and the block had one top edge; the columns
/// begin at the selection's left.
bool PasteBlock(MainFrame& frame, const Bytes<const u8>& block)
{
    BITMAPINFOHEADER header = {};
    if (block.count < HeaderBytes)
        return false;
    memcpy(&header, block.first, sizeof header);
    if (header.biBitCount != 24)
        return false;
    const f64 left = frame.selectionLeft;
    const f64 top = frame.selectionTop;
    const i64 x0 = TruncateToSigned(left);
    const i64 x1 = TruncateToSigned(std::min(left + header.biWidth - 1, frame.selectionRight));
    const i64 y0 = TruncateToSigned(top);
    const i64 y1 = TruncateToSigned(std::min(top + header.biHeight - 1, frame.selectionBottom));
    const i64 rowBytes = header.biWidth > 0 ? static_cast<i64>(RowBytes(header.biWidth)) : 0;
    ForLines(*frame.image, y0, y1, [&](i64 y, const Bytes<u8>& line) {
        const i64 row = i64{header.biHeight} - y - 1;
        if (rowBytes == 0 || row < 0 || row >= header.biHeight ||
            row > (block.count - HeaderBytes) / rowBytes)
            return;
        const i64 at = HeaderBytes + row * rowBytes;
        const Bytes<const u8> source = {block.first + at, std::min(rowBytes, block.count - at)};
        CopyInside(line, 3 * x0, source, 0, 3 * (x1 - x0 + 1));
    });
    return true;
}

/// With the clipboard open: pastes what it holds. False where that is nothing that can be pasted.
bool PasteOffered(MainFrame& frame)
{
    const HANDLE handle = GetClipboardData(CF_DIB);
    if (handle == nullptr)
        return false;
    const auto* const bytes = static_cast<const u8*>(GlobalLock(handle));
    const bool pasted =
        bytes != nullptr && PasteBlock(frame, {bytes, static_cast<i64>(GlobalSize(handle))});
    GlobalUnlock(handle);
    return pasted;
}

} // namespace

void MainFrame::CopyToClipboard()
{
    const SelectedPart part = GetPartToCopy();
    const bool selected = selectionActive != 0;
    u32 last = 0;
    (void)settings->GetUInt(ProgramSection, TEXT("Clipboard"), &last);
    const i32 chosen = AskClipboardFormat(window, instance, last);
    if (chosen >= 0)
        (void)settings->SetUInt(ProgramSection, TEXT("Clipboard"), static_cast<u32>(chosen));

    const BITMAPINFOHEADER header = HeaderOf(part);
    const u64 bytes = RowBytes(part.width) * static_cast<u64>(part.height);
    Offer offer;
    switch (chosen) {
    case ClipboardDib:
        if (!MakeBlock(header, bytes, &offer)) {
            ShowError(window, TEXT("Not enough memory."), TEXT("メモリが不足しています。"));
            return;
        }
        break;
    case ClipboardBitmap:
        MakeBitmap(header, bytes, &offer);
        break;
    default: // Meant: this is where closing the dialog leads, too.
        TellUnexpected(window);
        return;
    }
    FillRows(*image, part, selected, offer);
    if (Give(window, offer))
        return;
    TakeBack(offer);
    ShowError(window, TEXT("Failed to copy image to clipboard."),
              TEXT("クリップボードへコピーができません。"));
}

void MainFrame::PasteFromClipboard()
{
    if (clipboardHasImage == 0)
        return;
    if (selectionActive == 0) {
        TellNoPlaceToPaste(window);
        return;
    }
    bool pasted = false;
    if (OpenClipboard(window)) {
        pasted = PasteOffered(*this);
        CloseClipboard();
    }
    if (!pasted) {
        ShowError(window,
                  TEXT("Failed to paste image from clipboard. Not enough memory or unsupported "
                       "image format."),
                  TEXT("クリップボードから貼り付けができません。メモリが不足しているか、フォーマッ"
                       "トに互換性がありません。"));
        return;
    }
    RedrawView();
}

void MainFrame::ClearClipboard()
{
    if (clipboardHasImage == 0 || !OpenClipboard(window))
        return;
    EmptyClipboard();
    CloseClipboard();
}
