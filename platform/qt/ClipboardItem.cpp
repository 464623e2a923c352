#include "platform/qt/ClipboardItem.h"

#include "platform/core/ErrorCodes.h"
#include "platform/qt/ClipboardPicture.h"
#include "platform/qt/PictureReader.h"

#include <QBuffer>
#include <QImageWriter>

#include <cstring>

namespace tavrix::platform
{
namespace
{

// On this scale the fastest that still packs: somebody waits for the paste.
constexpr int PngQuality = 90;
constexpr size_t LargestFile = 0x7FFFFFFF;

QByteArray FileOf(const PackedDib& dib, const void* block)
{
    QByteArray file(static_cast<qsizetype>(FileHeaderSize + dib.size), Qt::Uninitialized);
    WriteFileHeader(dib, reinterpret_cast<BYTE*>(file.data()));
    std::memcpy(file.data() + FileHeaderSize, block, dib.size);
    return file;
}

/// A file of 24 bits, whatever the bitmap has.
QByteArray FileOf(const Surface& source)
{
    const auto width = static_cast<size_t>(source.width);
    const auto height = static_cast<size_t>(source.height);
    const size_t row = RowSize(width, 24);
    if (row > LargestFile / height)
        return {};
    const BITMAPINFOHEADER header = PictureHeader(source.width, source.height);
    PackedDib dib;
    dib.rows = sizeof(header);
    dib.size = sizeof(header) + row * height;
    QByteArray file(static_cast<qsizetype>(FileHeaderSize + dib.size), '\0');
    auto* bytes = reinterpret_cast<uint8_t*>(file.data());
    WriteFileHeader(dib, bytes);
    std::memcpy(bytes + FileHeaderSize, &header, sizeof(header));
    Surface target;
    target.top = bytes + FileHeaderSize + dib.rows + row * (height - 1);
    target.stride = -static_cast<ptrdiff_t>(row);
    target.width = source.width;
    target.height = source.height;
    target.depth = 24;
    CopyPixels(target, 0, 0, source.width, source.height, source, 0, 0);
    return file;
}

} // namespace

std::shared_ptr<ClipboardItem> ClipboardItem::Take(UINT format, HANDLE data)
{
    const std::shared_ptr<ClipboardItem> item(new ClipboardItem);
    SetLastError(ERROR_INVALID_HANDLE);
    if (format == CF_BITMAP) {
        const auto object = FindGdiObject(data);
        if (object == nullptr || object->kind != GdiObject::Kind::Bitmap || object->stock ||
            object->kept || object->selectedIn != nullptr)
            return nullptr;
        item->bitmap = std::static_pointer_cast<Bitmap>(object);
        item->bitmap->kept = true;
    } else {
        HeapBlock* block = SearchBlock(GlobalHeapSlot(), data);
        if (block == nullptr || block->kept != 0)
            return nullptr;
        SetLastError(ERROR_INVALID_PARAMETER);
        const std::optional<PackedDib> dib = ReadPackedDib(data, block->size);
        if (!dib)
            return nullptr;
        item->dib = *dib;
        item->block = block;
        block->kept = 1;
    }
    item->handle = data;
    return item;
}

std::shared_ptr<ClipboardItem> ClipboardItem::Keep(HeapBlock* block)
{
    const std::shared_ptr<ClipboardItem> item(new ClipboardItem);
    block->kept = 1;
    item->block = block;
    item->handle = block + 1;
    return item;
}

ClipboardItem::~ClipboardItem()
{
    const HANDLE mine = handle;
    const bool isBlock = block != nullptr;
    GiveBack();
    if (mine == nullptr)
        return;
    if (isBlock)
        GlobalFree(mine);
    else
        DeleteObject(mine);
}

void ClipboardItem::GiveBack()
{
    if (block != nullptr)
        block->kept = 0;
    if (bitmap != nullptr)
        bitmap->kept = false;
    handle = nullptr;
    block = nullptr;
    bitmap = nullptr;
}

QByteArray ClipboardItem::BmpFile() const
{
    if (!IsPicture())
        return {};
    return bitmap != nullptr ? FileOf(bitmap->surface) : FileOf(dib, handle);
}

QByteArray ClipboardItem::PngFile() const
{
    QByteArray png;
    const QImage image = ReadPicture(BmpFile());
    if (image.isNull())
        return png;
    QBuffer buffer(&png);
    buffer.open(QBuffer::WriteOnly);
    QImageWriter writer(&buffer, "png");
    writer.setQuality(PngQuality);
    if (!writer.write(image))
        png.clear();
    return png;
}

} // namespace tavrix::platform
