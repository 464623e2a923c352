#include "platform/qt/PictureReader.h"

#include "platform/core/PackedDib.h"

#include <windows.h>

#include <QBuffer>
#include <QImageReader>

#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>

namespace tavrix::platform
{
namespace
{

constexpr qint64 DecodedPixel = 4;

/// The toolkit's own limit, which is one for the whole process, for as long as this lives.
class DecodingLimit
{
public:
    DecodingLimit() : before(QImageReader::allocationLimit())
    {
        QImageReader::setAllocationLimit(LargestMegabytes);
    }
    ~DecodingLimit() { QImageReader::setAllocationLimit(before); }
    DecodingLimit(const DecodingLimit&) = delete;
    DecodingLimit& operator=(const DecodingLimit&) = delete;

private:
    const int before;
};

quint32 BigEndian(const char* at)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(at);
    return quint32{bytes[0]} << 24 | quint32{bytes[1]} << 16 | quint32{bytes[2]} << 8 | bytes[3];
}

constexpr char PngMark[] = "\x89PNG\r\n\x1A\n";
constexpr qsizetype PngMarkSize = 8;
constexpr qsizetype ChunkFrame = 12; // length, name, checksum

/// The library below the toolkit writes what it finds wrong with such a file to standard error, so
/// those that end early or claim too much do not get there.
bool IsWholePng(const QByteArray& bytes)
{
    qsizetype at = PngMarkSize;
    for (bool first = true; bytes.size() - at >= ChunkFrame; first = false) {
        const char* chunk = bytes.constData() + at;
        const qsizetype length = BigEndian(chunk);
        if (length > bytes.size() - at - ChunkFrame)
            return false;
        if (first) {
            if (std::memcmp(chunk + 4, "IHDR", 4) != 0 || length < 8)
                return false;
            const quint32 width = BigEndian(chunk + 8);
            const quint32 height = BigEndian(chunk + 12);
            constexpr quint32 Most = 1000000; // the library's own
            if (width == 0 || height == 0 || width > Most || height > Most ||
                IsTooLarge(QSize(static_cast<int>(width), static_cast<int>(height))))
                return false;
        }
        if (std::memcmp(chunk + 4, "IEND", 4) == 0)
            return true;
        at += ChunkFrame + length;
    }
    return false;
}

/// One part of a pixel by its mask, brought to 0 ... 255.
int PartOf(DWORD pixel, DWORD mask)
{
    if (mask == 0)
        return 0;
    const DWORD most = mask >> std::countr_zero(mask);
    const DWORD part = (pixel & mask) >> std::countr_zero(mask);
    return static_cast<int>((part * 255 + most / 2) / most);
}

/// A file of 16 bits a pixel; null when it is none. The toolkit leaves the lowest bits of each part
/// 0, so that its white is grey.
QImage Read16Bits(const QByteArray& file)
{
    const auto* start = reinterpret_cast<const BYTE*>(file.constData());
    if (!file.startsWith("BM") || static_cast<size_t>(file.size()) <= FileHeaderSize)
        return {};
    const BYTE* block = start + FileHeaderSize;
    const std::optional<PackedDib> dib =
        ReadPackedDib(block, static_cast<size_t>(file.size()) - FileHeaderSize);
    if (!dib || !dib->readable)
        return {};
    BITMAPINFOHEADER header;
    std::memcpy(&header, block, sizeof(header));
    const QSize size(header.biWidth, std::abs(header.biHeight));
    DWORD rows = 0;
    std::memcpy(&rows, start + 10, sizeof(rows));
    if (header.biBitCount != 16 || rows != FileHeaderSize + dib->rows || IsTooLarge(size))
        return {};
    std::array<DWORD, 3> masks = {0x7C00, 0x3E0, 0x1F};
    if (header.biCompression != BI_RGB)
        std::memcpy(masks.data(), block + sizeof(header), sizeof(masks));
    for (DWORD& mask : masks)
        mask &= 0xFFFF;
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return {};
    const size_t row = RowSize(static_cast<size_t>(size.width()), 16);
    for (int y = 0; y < size.height(); ++y) {
        const int line = header.biHeight < 0 ? y : size.height() - 1 - y;
        const BYTE* from = block + dib->rows + row * static_cast<size_t>(line);
        auto* to = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x, from += 2) {
            const DWORD pixel = from[0] | static_cast<DWORD>(from[1]) << 8;
            to[x] = qRgb(PartOf(pixel, masks[0]), PartOf(pixel, masks[1]), PartOf(pixel, masks[2]));
        }
    }
    return image;
}

} // namespace

bool IsTooLarge(const QSize& size)
{
    constexpr qint64 Most = (qint64{LargestMegabytes} << 20) / DecodedPixel;
    return qint64{size.width()} * size.height() > Most;
}

QImage ReadPicture(const QByteArray& bytes)
{
    if (bytes.startsWith(QByteArrayView(PngMark, PngMarkSize)) && !IsWholePng(bytes))
        return {};
    if (const QImage image = Read16Bits(bytes); !image.isNull())
        return image;
    QByteArray shared = bytes;
    QBuffer buffer(&shared);
    buffer.open(QBuffer::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const DecodingLimit limit;
    if (IsTooLarge(reader.size()))
        return {};
    return reader.read();
}

} // namespace tavrix::platform
