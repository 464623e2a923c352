#include "platform/qt/ClipboardPicture.h"

#include "platform/core/PackedDib.h"
#include "platform/qt/PictureReader.h"

#include <QImageReader>

#include <algorithm>
#include <cstring>

namespace tavrix::platform
{
namespace
{

constexpr size_t LargestBytes = size_t{LargestMegabytes} << 20;

BYTE OnWhite(int part, int alpha)
{
    return static_cast<BYTE>((part * alpha + 255 * (255 - alpha) + 127) / 255);
}

void WriteRow(BYTE* to, const QImage& image, int y)
{
    const auto* from = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    const bool transparent = image.hasAlphaChannel();
    for (int x = 0; x < image.width(); ++x, to += 3) {
        const int alpha = transparent ? qAlpha(from[x]) : 255;
        to[0] = OnWhite(qBlue(from[x]), alpha);
        to[1] = OnWhite(qGreen(from[x]), alpha);
        to[2] = OnWhite(qRed(from[x]), alpha);
    }
}

} // namespace

const QStringList& PictureTypes()
{
    static const QStringList types = [] {
        // First what loses nothing; the names after "image/bmp" the toolkit does not know, and the
        // last of these is its own.
        QStringList names;
        for (const char* name : {"image/png", "image/bmp", "image/x-bmp", "image/x-MS-bmp",
                                 "image/x-win-bitmap", "application/x-qt-image", "image/jpeg"})
            names.append(QLatin1String(name));
        for (const QByteArray& name : QImageReader::supportedMimeTypes())
            if (!names.contains(QLatin1String(name)))
                names.append(QLatin1String(name));
        return names;
    }();
    return types;
}

size_t LargestPicture()
{
    MEMORYSTATUS memory{};
    memory.dwLength = sizeof(memory);
    GlobalMemoryStatus(&memory);
    return std::min<size_t>(LargestBytes, memory.dwAvailPhys);
}

BITMAPINFOHEADER PictureHeader(int width, int height)
{
    BITMAPINFOHEADER header{};
    header.biSize = sizeof(header);
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = 24;
    header.biCompression = BI_RGB;
    header.biSizeImage =
        static_cast<DWORD>(RowSize(static_cast<size_t>(width), 24) * static_cast<size_t>(height));
    return header;
}

HGLOBAL MakeDib(QImage image)
{
    SetLastError(ERROR_INVALID_PARAMETER);
    if (image.isNull() || IsTooLarge(image.size()))
        return nullptr;
    image = std::move(image).convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                     : QImage::Format_RGB32);
    const size_t row = RowSize(static_cast<size_t>(image.width()), 24);
    const BITMAPINFOHEADER header = PictureHeader(image.width(), image.height());
    const size_t size = sizeof(header) + header.biSizeImage;
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    // What is free has to be told before: an allocation of the host's would not fail for it.
    if (image.isNull() || size > LargestPicture())
        return nullptr;
    const HGLOBAL block = GlobalAlloc(GPTR, size);
    if (block == nullptr)
        return nullptr;
    auto* bytes = static_cast<BYTE*>(block);
    std::memcpy(bytes, &header, sizeof(header));
    for (int y = 0; y < image.height(); ++y)
        WriteRow(bytes + sizeof(header) + row * static_cast<size_t>(image.height() - 1 - y), image,
                 y);
    return block;
}

} // namespace tavrix::platform
