// One thing that the program gave the clipboard: a block or a bitmap, which is the clipboard's from
// then on and goes with the item. User-interface thread.
#pragma once

#include "platform/core/Gdi.h"
#include "platform/core/HeapBlocks.h"
#include "platform/core/PackedDib.h"

#include <QByteArray>

#include <windows.h>

#include <memory>

namespace tavrix::platform
{

class ClipboardItem
{
public:
    /// Takes over what `data` names: a global block with a whole DIB (CF_DIB), or a bitmap that no
    /// context holds (CF_BITMAP). Empty for anything else, which stays the caller's, with the last
    /// error set.
    static std::shared_ptr<ClipboardItem> Take(UINT format, HANDLE data);
    /// The clipboard's own block for the program to read.
    static std::shared_ptr<ClipboardItem> Keep(HeapBlock* block);
    ~ClipboardItem();
    ClipboardItem(const ClipboardItem&) = delete;
    ClipboardItem& operator=(const ClipboardItem&) = delete;

    HANDLE Handle() const { return handle; }
    /// What was taken is the caller's again.
    void GiveBack();
    /// Whether other programs can be given it as a picture.
    bool IsPicture() const { return handle != nullptr && (bitmap != nullptr || dib.readable); }
    /// The picture as the bytes of a file; empty when it cannot be made. Throws std::bad_alloc.
    QByteArray BmpFile() const;
    QByteArray PngFile() const;

private:
    ClipboardItem() = default;

    HANDLE handle = nullptr;
    HeapBlock* block = nullptr;
    PackedDib dib;
    std::shared_ptr<Bitmap> bitmap;
};

} // namespace tavrix::platform
