// The clipboard inside one process; across processes it is for a real display (tests/display).
#include "platform/testing/Faults.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace hand = tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

void Offer(const char* type)
{
    auto* data = new QMimeData;
    data->setData(QString::fromLatin1(type), "bytes");
    QGuiApplication::clipboard()->setMimeData(data);
}

} // namespace

TEST(Clipboard, APictureOfAnyTypeThatCanBeReadIsAvailableInBothFormats)
{
    const TestWindow window;
    Offer("image/png"); // before anybody asks
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_BITMAP));
    EXPECT_FALSE(IsClipboardFormatAvailable(1)) << "text";
    for (const char* none : {"text/plain", "text/html", "image/none"}) {
        Offer(none);
        EXPECT_FALSE(IsClipboardFormatAvailable(CF_DIB)) << none;
        EXPECT_FALSE(IsClipboardFormatAvailable(CF_BITMAP)) << none;
    }
    for (const char* picture :
         {"image/bmp", "image/x-bmp", "image/x-MS-bmp", "image/jpeg", "application/x-qt-image"}) {
        Offer(picture);
        EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB)) << picture;
    }
    QGuiApplication::clipboard()->setText(QStringLiteral("text"));
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_DIB));
    QGuiApplication::clipboard()->setImage(QImage(2, 2, QImage::Format_RGB32));
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
}

TEST(Clipboard, OneWindowHasItOpenAtATime)
{
    const TestWindow window;
    const TestWindow other;
    EXPECT_FALSE(CloseClipboard());
    EXPECT_EQ(GetLastError(), 1418u);
    EXPECT_TRUE(OpenClipboard(window.handle));
    EXPECT_TRUE(OpenClipboard(window.handle)) << "its own";
    EXPECT_FALSE(OpenClipboard(other.handle));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(OpenClipboard(nullptr));
    EXPECT_TRUE(CloseClipboard());
    EXPECT_FALSE(CloseClipboard());
    EXPECT_TRUE(OpenClipboard(nullptr));
    EXPECT_FALSE(OpenClipboard(window.handle));
    EXPECT_TRUE(CloseClipboard());
    {
        const TestWindow brief;
        EXPECT_TRUE(OpenClipboard(brief.handle));
    }
    EXPECT_TRUE(OpenClipboard(other.handle)) << "a window that is gone has left it";
    EXPECT_TRUE(CloseClipboard());
    EXPECT_FALSE(OpenClipboard(reinterpret_cast<HWND>(INT_PTR{0x1234})));
}

TEST(Clipboard, ItIsEmptiedOnlyWhileItIsOpen)
{
    const TestWindow window;
    Offer("image/png");
    EXPECT_FALSE(EmptyClipboard());
    EXPECT_EQ(GetLastError(), 1418u);
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
    ASSERT_TRUE(OpenClipboard(window.handle));
    EXPECT_TRUE(EmptyClipboard());
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_DIB));
    EXPECT_TRUE(CloseClipboard());
}

namespace
{

size_t HeldBytes()
{
    return tavrix::platform::CountHoldings().heapBytes;
}

size_t CountDrawingObjects()
{
    return tavrix::platform::CountHoldings().drawingObjects;
}

/// What the program would put there, in a block of exactly its length.
HGLOBAL BlockOf(const std::vector<BYTE>& bytes)
{
    const HGLOBAL block = GlobalAlloc(GMEM_FIXED, bytes.size());
    std::memcpy(block, bytes.data(), bytes.size());
    return block;
}

// 3 by 2 pixels of 24 bits: the lower row red, green, blue, the upper one white, black, grey 80.
const std::vector<BYTE> SixPixels = {40, 0, 0, 0, 3, 0, 0, 0, 2, 0, 0, 0, 1, 0, 24, 0, 0, 0, 0, 0,
                                     24, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                     0, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0, 0, 0, 0, // blue first, 3
                                                                               // bytes of padding
                                     0xFF, 0xFF, 0xFF, 0, 0, 0, 80, 80, 80, 0, 0, 0};

// 2 by 2 of 16 bits, top-down: red, green; blue, white.
const std::vector<BYTE> FourPixels16 = {40, 0, 0,  0, 2, 0,    0,    0,    0xFE, 0xFF, 0xFF, 0xFF,
                                        1,  0, 16, 0, 0, 0,    0,    0,    8,    0,    0,    0,
                                        0,  0, 0,  0, 0, 0,    0,    0,    0,    0,    0,    0,
                                        0,  0, 0,  0, 0, 0x7C, 0xE0, 0x03, 0x1F, 0,    0xFF, 0x7F};

/// The clipboard open for a window, and nobody's at the end.
struct Opened {
    Opened() { EXPECT_TRUE(OpenClipboard(window.handle)); }
    ~Opened()
    {
        if (!OpenClipboard(window.handle)) {
            ADD_FAILURE() << "somebody else has it open";
            return;
        }
        EmptyClipboard();
        CloseClipboard();
    }
    const TestWindow window;
};

const QMimeData* Seen()
{
    return QGuiApplication::clipboard()->mimeData();
}

QImage SeenAs(const char* type, const char* format)
{
    return QImage::fromData(Seen()->data(QString::fromLatin1(type)), format);
}

/// Six hexadecimal digits a pixel, row by row from the top.
std::string PixelsOf(const QImage& image)
{
    std::string text;
    for (int y = 0; y < image.height(); ++y) {
        text += y == 0 ? "" : "/";
        for (int x = 0; x < image.width(); ++x)
            text += (x == 0 ? "" : " ") + image.pixelColor(x, y).name().mid(1).toStdString();
    }
    return text;
}

/// A new bitmap of the program's own, three pixels by two of `depth` bits, with these rows.
HBITMAP BitmapOf(const std::vector<BYTE>& header, const std::vector<BYTE>& rows)
{
    void* bits = nullptr;
    const HBITMAP bitmap =
        CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(header.data()),
                         DIB_RGB_COLORS, &bits, nullptr, 0);
    std::memcpy(bits, rows.data(), rows.size());
    return bitmap;
}

std::vector<BYTE> HeaderOf(BYTE width, int height, BYTE depth)
{
    std::vector<BYTE> header(40);
    header[0] = 40;
    header[4] = width;
    std::memcpy(&header[8], &height, sizeof(height));
    header[12] = 1;
    header[14] = depth;
    return header;
}

HBITMAP SixPixelsBitmap()
{
    return BitmapOf({SixPixels.begin(), SixPixels.begin() + 40},
                    {SixPixels.begin() + 40, SixPixels.end()});
}

/// Puts a picture there as another part of the desktop does.
void OfferFile(const char* type, const QByteArray& bytes)
{
    auto* data = new QMimeData;
    data->setData(QString::fromLatin1(type), bytes);
    QGuiApplication::clipboard()->setMimeData(data);
}

QByteArray FileOf(const QImage& image, const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QBuffer::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format));
    return bytes;
}

std::vector<BYTE> BytesOf(HANDLE block)
{
    if (block == nullptr)
        return {};
    const auto* bytes = static_cast<const BYTE*>(block);
    return {bytes, bytes + GlobalSize(block)};
}

std::vector<BYTE> Pasted()
{
    return BytesOf(GetClipboardData(CF_DIB));
}

constexpr const char* SixColours = "ffffff 000000 505050/ff0000 00ff00 0000ff";

/// The same picture as the toolkit has it.
QImage SixPixelsImage()
{
    QImage image(3, 2, QImage::Format_RGB32);
    const QRgb pixels[] = {0xFFFFFFFF, 0xFF000000, 0xFF505050, 0xFFFF0000, 0xFF00FF00, 0xFF0000FF};
    for (int at = 0; at < 6; ++at)
        image.setPixel(at % 3, at / 3, pixels[at]);
    return image;
}

/// The header of a PNG file that claims to be that large, with nothing behind.
QByteArray PngClaiming(quint32 width, quint32 height)
{
    QByteArray png = FileOf(QImage(1, 1, QImage::Format_RGB888), "PNG");
    for (int byte = 0; byte < 4; ++byte) {
        png[16 + byte] = static_cast<char>(width >> (24 - 8 * byte));
        png[20 + byte] = static_cast<char>(height >> (24 - 8 * byte));
    }
    // The checksum of the chunk's name and its 13 bytes.
    quint32 sum = 0xFFFFFFFF;
    for (int at = 12; at < 29; ++at) {
        sum ^= static_cast<unsigned char>(png[at]);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xEDB88320u : 0);
    }
    for (int byte = 0; byte < 4; ++byte)
        png[29 + byte] = static_cast<char>(~sum >> (24 - 8 * byte));
    return png;
}

} // namespace

TEST(ClipboardData, ABlockIsTheClipboardsOnceItIsTaken)
{
    const size_t before = HeldBytes();
    {
        const Opened opened;
        const HGLOBAL block = BlockOf(SixPixels);
        EXPECT_EQ(SetClipboardData(CF_DIB, block), block);
        EXPECT_EQ(GetClipboardData(CF_DIB), block) << "the very same";
        EXPECT_EQ(GlobalFree(block), block) << "not the caller's any more";
        EXPECT_EQ(LocalFree(block), block);
        EXPECT_EQ(BytesOf(GetClipboardData(CF_DIB)), SixPixels);
        EXPECT_EQ(SetClipboardData(CF_DIB, block), nullptr) << "nor can it be given again";
        EXPECT_TRUE(CloseClipboard());
        EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
        EXPECT_EQ(HeldBytes(), before + SixPixels.size());
    }
    EXPECT_EQ(HeldBytes(), before) << "emptied";
}

TEST(ClipboardData, ABitmapIsTheClipboardsOnceItIsTaken)
{
    const size_t before = CountDrawingObjects();
    {
        const Opened opened;
        const HBITMAP bitmap = SixPixelsBitmap();
        EXPECT_EQ(SetClipboardData(CF_BITMAP, bitmap), bitmap);
        EXPECT_EQ(GetClipboardData(CF_BITMAP), bitmap);
        EXPECT_FALSE(DeleteObject(bitmap));
        EXPECT_EQ(SetClipboardData(CF_BITMAP, bitmap), nullptr);
        EXPECT_EQ(PixelsOf(SeenAs("image/bmp", "BMP")), SixColours);
        EXPECT_EQ(CountDrawingObjects(), before + 1);
    }
    EXPECT_EQ(CountDrawingObjects(), before);
}

TEST(ClipboardData, OneFormatIsNeverMadeOfTheOther)
{
    const Opened opened;
    ASSERT_NE(SetClipboardData(CF_BITMAP, SixPixelsBitmap()), nullptr);
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_BITMAP));
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_DIB));
    EXPECT_EQ(GetClipboardData(CF_DIB), nullptr);
    EXPECT_TRUE(EmptyClipboard());
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_BITMAP));
    EXPECT_EQ(GetClipboardData(CF_BITMAP), nullptr);
    ASSERT_NE(SetClipboardData(CF_DIB, BlockOf(SixPixels)), nullptr);
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_BITMAP));
    EXPECT_EQ(GetClipboardData(CF_BITMAP), nullptr);
    ASSERT_NE(SetClipboardData(CF_BITMAP, SixPixelsBitmap()), nullptr) << "both may be given";
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_BITMAP));
}

TEST(ClipboardData, WhatReplacesAnotherFreesIt)
{
    const size_t bytes = HeldBytes();
    const size_t objects = CountDrawingObjects();
    {
        const Opened opened;
        for (int turn = 0; turn < 3; ++turn) {
            ASSERT_NE(SetClipboardData(CF_DIB, BlockOf(SixPixels)), nullptr);
            ASSERT_NE(SetClipboardData(CF_BITMAP, SixPixelsBitmap()), nullptr);
        }
        EXPECT_EQ(HeldBytes(), bytes + SixPixels.size());
        EXPECT_EQ(CountDrawingObjects(), objects + 1);
    }
    EXPECT_EQ(HeldBytes(), bytes);
    EXPECT_EQ(CountDrawingObjects(), objects);
}

TEST(ClipboardData, WhenAnotherProgramTakesTheClipboardWhatWasThereIsFreed)
{
    const size_t before = HeldBytes();
    const Opened opened;
    const HGLOBAL block = BlockOf(SixPixels);
    ASSERT_NE(SetClipboardData(CF_DIB, block), nullptr);
    Offer("text/plain");
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_DIB));
    EXPECT_EQ(GetClipboardData(CF_DIB), nullptr);
    EXPECT_EQ(BytesOf(block), SixPixels) << "but not while a reader may have it open";
    EXPECT_TRUE(CloseClipboard());
    EXPECT_EQ(HeldBytes(), before);
    ASSERT_TRUE(OpenClipboard(opened.window.handle));
    ASSERT_NE(SetClipboardData(CF_DIB, BlockOf(SixPixels)), nullptr);
    EXPECT_TRUE(CloseClipboard());
    Offer("image/png");
    EXPECT_EQ(HeldBytes(), before) << "at once when it is closed";
}

TEST(ClipboardData, WhatIsNoPictureIsRefusedAndStaysTheCallers)
{
    const size_t before = HeldBytes();
    const HGLOBAL block = BlockOf(SixPixels);
    EXPECT_EQ(SetClipboardData(CF_DIB, block), nullptr) << "it is not open";
    EXPECT_EQ(GetLastError(), 1418u);
    EXPECT_EQ(GetClipboardData(CF_DIB), nullptr);
    EXPECT_EQ(GetLastError(), 1418u);
    {
        const Opened opened;
        EXPECT_EQ(SetClipboardData(1, block), nullptr) << "text";
        EXPECT_EQ(SetClipboardData(CF_BITMAP, block), nullptr);
        EXPECT_EQ(SetClipboardData(CF_DIB, nullptr), nullptr);
        EXPECT_EQ(SetClipboardData(CF_BITMAP, nullptr), nullptr);
        // Addresses that nothing lies at; the last would be a block's by its alignment.
        for (const uintptr_t wild : {1, 0x1234, 0x10000, 0x12340})
            for (const UINT format : {CF_DIB, CF_BITMAP})
                EXPECT_EQ(SetClipboardData(format, reinterpret_cast<HANDLE>(wild)), nullptr);
        void* ofAHeap = HeapAlloc(GetProcessHeap(), 0, SixPixels.size());
        std::memcpy(ofAHeap, SixPixels.data(), SixPixels.size());
        EXPECT_EQ(SetClipboardData(CF_DIB, ofAHeap), nullptr);
        EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, ofAHeap));
        const HBITMAP bitmap = SixPixelsBitmap();
        EXPECT_EQ(SetClipboardData(CF_DIB, bitmap), nullptr);
        const HDC dc = CreateCompatibleDC(nullptr);
        const HGDIOBJ stock = SelectObject(dc, bitmap);
        EXPECT_EQ(SetClipboardData(CF_BITMAP, stock), nullptr);
        EXPECT_EQ(SetClipboardData(CF_BITMAP, bitmap), nullptr) << "somebody draws on it";
        EXPECT_EQ(SetClipboardData(CF_BITMAP, GetStockObject(WHITE_BRUSH)), nullptr);
        SelectObject(dc, stock);
        DeleteDC(dc);
        EXPECT_TRUE(DeleteObject(bitmap));
        EXPECT_EQ(SetClipboardData(CF_BITMAP, bitmap), nullptr) << "gone";
        // One byte too few, and a header that claims a million rows.
        const HGLOBAL cut = BlockOf({SixPixels.begin(), SixPixels.end() - 1});
        std::vector<BYTE> absurd = SixPixels;
        absurd[10] = 0x10;
        const HGLOBAL claiming = BlockOf(absurd);
        for (const HGLOBAL broken : {cut, claiming}) {
            EXPECT_EQ(SetClipboardData(CF_DIB, broken), nullptr);
            EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
            EXPECT_EQ(GlobalFree(broken), nullptr);
        }
        EXPECT_FALSE(IsClipboardFormatAvailable(CF_DIB));
        EXPECT_EQ(GetClipboardData(1), nullptr);
    }
    EXPECT_EQ(GlobalFree(block), nullptr);
    EXPECT_EQ(HeldBytes(), before);
}

TEST(ClipboardData, ARefusalLeavesWhatIsThere)
{
    const Opened opened;
    const HGLOBAL block = BlockOf(SixPixels);
    ASSERT_NE(SetClipboardData(CF_DIB, block), nullptr);
    EXPECT_EQ(SetClipboardData(CF_DIB, nullptr), nullptr);
    EXPECT_EQ(GetClipboardData(CF_DIB), block);
    EXPECT_EQ(PixelsOf(SeenAs("image/bmp", "BMP")), SixColours);
}

TEST(ClipboardData, WhatTheDesktopDoesNotTakeStaysTheCallers)
{
    const size_t before = HeldBytes();
    const Opened opened;
    // Another one is quicker.
    const auto quicker =
        QObject::connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, [] {
            if (!Seen()->hasText())
                QGuiApplication::clipboard()->setText("text");
        });
    const HGLOBAL block = BlockOf(SixPixels);
    EXPECT_EQ(SetClipboardData(CF_DIB, block), nullptr);
    QObject::disconnect(quicker);
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_DIB));
    EXPECT_TRUE(CloseClipboard());
    EXPECT_EQ(BytesOf(block), SixPixels);
    EXPECT_EQ(GlobalFree(block), nullptr);
    EXPECT_EQ(HeldBytes(), before);
}

TEST(ClipboardData, OtherProgramsGetTheBlocksBytesAsAFile)
{
    const Opened opened;
    std::vector<BYTE> larger = SixPixels;
    larger.push_back(0xEE); // nobody's
    ASSERT_NE(SetClipboardData(CF_DIB, BlockOf(larger)), nullptr);
    EXPECT_EQ(Seen()->formats(), (QStringList{"image/png", "image/bmp"}));
    std::vector<BYTE> file = {'B', 'M', 78, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0};
    file.insert(file.end(), SixPixels.begin(), SixPixels.end());
    const QByteArray bytes = Seen()->data("image/bmp");
    EXPECT_EQ(std::vector<BYTE>(bytes.begin(), bytes.end()), file);
    EXPECT_EQ(PixelsOf(SeenAs("image/png", "PNG")), SixColours);
    EXPECT_TRUE(Seen()->data("text/plain").isEmpty());
}

TEST(ClipboardData, ABlockOfAnotherDepthIsOfferedToo)
{
    const Opened opened;
    ASSERT_NE(SetClipboardData(CF_DIB, BlockOf(FourPixels16)), nullptr);
    EXPECT_EQ(Pasted(), FourPixels16) << "the own program gets what it gave";
    EXPECT_EQ(PixelsOf(SeenAs("image/png", "PNG")), "ff0000 00ff00/0000ff ffffff");
    const QByteArray file = Seen()->data("image/bmp");
    EXPECT_EQ(std::vector<BYTE>(file.begin() + 14, file.end()), FourPixels16);
    OfferFile("image/bmp", file);
    // Lower row first: blue, white; red, green.
    std::vector<BYTE> in24Bits = HeaderOf(2, 2, 24);
    in24Bits[20] = 16;
    for (const int byte : {255, 0, 0, 255, 255, 255, 0, 0, 0, 0, 255, 0, 255, 0, 0, 0})
        in24Bits.push_back(static_cast<BYTE>(byte));
    EXPECT_EQ(Pasted(), in24Bits);
    // One bit, two colours that stand between the header and the rows: 10 of orange and teal.
    std::vector<BYTE> twoColours = HeaderOf(2, 1, 1);
    for (const int byte : {0, 0x80, 0xFF, 0, 0x80, 0x80, 0, 0, 0x80, 0, 0, 0})
        twoColours.push_back(static_cast<BYTE>(byte));
    ASSERT_NE(SetClipboardData(CF_DIB, BlockOf(twoColours)), nullptr);
    EXPECT_EQ(Seen()->data("image/bmp")[10], 62) << "where the rows are";
    EXPECT_EQ(PixelsOf(SeenAs("image/bmp", "BMP")), "008080 ff8000");
    EXPECT_EQ(PixelsOf(SeenAs("image/png", "PNG")), "008080 ff8000");
    // Masks: five, six and five bits, one pixel of the highest green.
    std::vector<BYTE> masked = HeaderOf(1, 1, 16);
    masked[16] = 3;
    for (const int byte : {0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 0x1F, 0, 0, 0, 0xE0, 7, 0, 0})
        masked.push_back(static_cast<BYTE>(byte));
    ASSERT_NE(SetClipboardData(CF_DIB, BlockOf(masked)), nullptr);
    EXPECT_EQ(PixelsOf(SeenAs("image/png", "PNG")), "00ff00");
}

TEST(ClipboardData, WhatOthersCannotReadIsKeptForTheProgramAlone)
{
    const Opened opened;
    std::vector<BYTE> twoBits = HeaderOf(1, 1, 2);
    twoBits.resize(40 + 16 + 4);
    ASSERT_NE(SetClipboardData(CF_DIB, BlockOf(twoBits)), nullptr);
    EXPECT_TRUE(Seen()->formats().isEmpty());
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
    EXPECT_EQ(Pasted(), twoBits);
    ASSERT_NE(SetClipboardData(CF_BITMAP, SixPixelsBitmap()), nullptr);
    EXPECT_EQ(PixelsOf(SeenAs("image/bmp", "BMP")), SixColours) << "then the other one is given";
}

TEST(ClipboardData, ABitmapOfAnyDepthIsOfferedIn24Bits)
{
    const Opened opened;
    // Top-down, 32 bits.
    ASSERT_NE(SetClipboardData(CF_BITMAP, BitmapOf(HeaderOf(2, -2, 32), {1, 2, 3, 0, 4, 5, 6, 0, 7,
                                                                         8, 9, 0, 10, 11, 12, 0})),
              nullptr);
    const QByteArray bytes = Seen()->data("image/bmp");
    const std::vector<BYTE> file = {'B', 'M', 70, 0,  0,  0,  0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0,  0,
                                    2,   0,   0,  0,  2,  0,  0, 0, 1, 0, 24, 0, 0, 0, 0,  0, 16, 0,
                                    0,   0,   0,  0,  0,  0,  0, 0, 0, 0, 0,  0, 0, 0, 0,  0, 0,  0,
                                    7,   8,   9,  10, 11, 12, 0, 0, 1, 2, 3,  4, 5, 6, 0,  0};
    EXPECT_EQ(std::vector<BYTE>(bytes.begin(), bytes.end()), file);
    EXPECT_EQ(PixelsOf(SeenAs("image/png", "PNG")), "030201 060504/090807 0c0b0a");
    // Two bits with a table: 0, 1, 2, 3 from the left.
    std::vector<BYTE> header = HeaderOf(4, 1, 2);
    for (const int byte : {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12, 0})
        header.push_back(static_cast<BYTE>(byte));
    ASSERT_NE(SetClipboardData(CF_BITMAP, BitmapOf(header, {0x1B, 0, 0, 0})), nullptr);
    EXPECT_EQ(PixelsOf(SeenAs("image/png", "PNG")), "030201 060504 090807 0c0b0a");
}

TEST(ClipboardData, NothingIsMadeBeforeSomebodyAsks)
{
    const Opened opened;
    const HGLOBAL block = BlockOf(SixPixels);
    ASSERT_NE(SetClipboardData(CF_DIB, block), nullptr);
    // So that a change shows whether the bytes were made before it.
    static_cast<BYTE*>(block)[42] = 0xA5;
    EXPECT_EQ(static_cast<BYTE>(Seen()->data("image/bmp")[14 + 42]), 0xA5);
}

TEST(ClipboardData, APictureOfTheDesktopComesIn24BitsFromTheLowestRow)
{
    const Opened opened;
    QImage indexed = SixPixelsImage().convertToFormat(QImage::Format_Indexed8);
    for (const char* type : {"image/png", "image/bmp", "image/x-bmp", "image/x-MS-bmp"}) {
        OfferFile(type, FileOf(SixPixelsImage(), strstr(type, "png") != nullptr ? "PNG" : "BMP"));
        ASSERT_TRUE(IsClipboardFormatAvailable(CF_DIB));
        EXPECT_EQ(Pasted(), SixPixels) << type;
        EXPECT_EQ(GetClipboardData(CF_BITMAP), nullptr) << "a picture comes in one format";
        CloseClipboard();
        OpenClipboard(opened.window.handle);
    }
    OfferFile("image/png", FileOf(indexed, "PNG"));
    EXPECT_EQ(Pasted(), SixPixels);
    CloseClipboard();
    OpenClipboard(opened.window.handle);
    QGuiApplication::clipboard()->setImage(SixPixelsImage());
    EXPECT_EQ(Pasted(), SixPixels) << "the toolkit's own";
    CloseClipboard();
    OpenClipboard(opened.window.handle);
    // One colour, which comes out as it is.
    QImage grey(5, 3, QImage::Format_RGB32);
    grey.fill(0xFF808080);
    OfferFile("image/jpeg", FileOf(grey, "JPG"));
    const std::vector<BYTE> pasted = Pasted();
    ASSERT_EQ(pasted.size(), 40u + 3 * 16);
    for (size_t row = 0; row < 3; ++row)
        for (size_t at = 0; at < 16; ++at)
            EXPECT_EQ(pasted[40 + row * 16 + at], at < 15 ? 0x80 : 0);
}

TEST(ClipboardData, WhatIsTransparentComesOnWhite)
{
    const Opened opened;
    QImage image(4, 1, QImage::Format_ARGB32);
    const QRgb pixels[] = {0x00FF0000, 0xFF102030, 0x80000000, 0x40FF0080};
    for (int x = 0; x < 4; ++x)
        image.setPixel(x, 0, pixels[x]);
    OfferFile("image/png", FileOf(image, "PNG"));
    std::vector<BYTE> pasted = Pasted();
    ASSERT_EQ(pasted.size(), 52u);
    pasted.erase(pasted.begin(), pasted.begin() + 40);
    // 255 - 128 = 127; (64 * 128 + 191 * 255) / 255 = 223.1; 255 - 64 = 191.
    EXPECT_EQ(pasted,
              (std::vector<BYTE>{255, 255, 255, 0x30, 0x20, 0x10, 127, 127, 127, 223, 191, 255}));
}

TEST(ClipboardData, TheBestThatCanBeReadIsTaken)
{
    const Opened opened;
    QImage grey(1, 1, QImage::Format_RGB32);
    grey.fill(0xFF808080);
    auto* data = new QMimeData;
    data->setText("a picture");
    data->setData("image/jpeg", FileOf(grey, "JPG"));
    data->setData("image/x-bmp", FileOf(SixPixelsImage(), "BMP"));
    data->setData("image/png", "this is none");
    QGuiApplication::clipboard()->setMimeData(data);
    EXPECT_EQ(Pasted(), SixPixels);
}

TEST(ClipboardData, APastedBlockIsTheClipboardsUntilItIsClosed)
{
    const size_t before = HeldBytes();
    const Opened opened;
    OfferFile("image/png", FileOf(SixPixelsImage(), "PNG"));
    const HANDLE block = GetClipboardData(CF_DIB);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(GetClipboardData(CF_DIB), block);
    EXPECT_EQ(GlobalFree(block), block);
    EXPECT_EQ(HeldBytes(), before + SixPixels.size());
    EXPECT_TRUE(CloseClipboard());
    EXPECT_EQ(HeldBytes(), before);
    {
        const TestWindow brief;
        ASSERT_TRUE(OpenClipboard(brief.handle));
        EXPECT_NE(GetClipboardData(CF_DIB), nullptr);
    }
    ASSERT_TRUE(OpenClipboard(opened.window.handle));
    EXPECT_EQ(HeldBytes(), before) << "its reader is gone without a word";
}

TEST(ClipboardData, TextAndSpoiltPicturesAreNoPicture)
{
    const Opened opened;
    QGuiApplication::clipboard()->setText("text");
    EXPECT_EQ(GetClipboardData(CF_DIB), nullptr);
    const QByteArray png = FileOf(SixPixelsImage(), "PNG");
    const QByteArray spoilt[] = {"", "GIF89a", png.left(40), png.left(8), QByteArray(1000, '\xFF')};
    testing::internal::CaptureStderr();
    for (const QByteArray& bytes : spoilt) {
        OfferFile("image/png", bytes);
        EXPECT_EQ(GetClipboardData(CF_DIB), nullptr) << bytes.size() << " bytes";
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ClipboardData, APictureThatClaimsToBeHugeIsNotDecodedAndNothingIsSaid)
{
    const Opened opened;
    testing::internal::CaptureStderr();
    for (const auto& [width, height] :
         {std::pair{30000u, 30000u}, {1000000u, 1000000u}, {0x7FFFFFFFu, 1u}, {12000u, 12000u}}) {
        OfferFile("image/png", PngClaiming(width, height));
        EXPECT_EQ(GetClipboardData(CF_DIB), nullptr) << width;
    }
    // This one is as large as it claims, if in one bit a pixel.
    QImage wide(12000, 12000, QImage::Format_Mono);
    wide.fill(0);
    OfferFile("image/png", FileOf(wide, "PNG"));
    EXPECT_EQ(GetClipboardData(CF_DIB), nullptr);
    QByteArray bmp = FileOf(SixPixelsImage(), "BMP");
    bmp[19] = bmp[23] = 0x75; // 30,000 and some
    OfferFile("image/bmp", bmp);
    EXPECT_EQ(GetClipboardData(CF_DIB), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ClipboardData, APictureThatTheDeviceHasNoRoomForIsNotPasted)
{
    const hand::Scope scope;
    const Opened opened;
    OfferFile("image/png", FileOf(SixPixelsImage(), "PNG"));
    hand::SetFreeMemory(SixPixels.size() - 1);
    EXPECT_EQ(GetClipboardData(CF_DIB), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    hand::SetFreeMemory(SixPixels.size());
    EXPECT_NE(GetClipboardData(CF_DIB), nullptr);
}

TEST(ClipboardData, EveryShortageOfMemoryIsSurvived)
{
    Opened opened;
    hand::ForEveryFault(hand::FaultKind::Allocation, [] {
        OfferFile("image/png", FileOf(SixPixelsImage(), "PNG"));
        const HANDLE pasted = GetClipboardData(CF_DIB);
        if (pasted != nullptr) {
            EXPECT_EQ(BytesOf(pasted), SixPixels);
        }
        EmptyClipboard();
        const HLOCAL block = LocalAlloc(LPTR, SixPixels.size());
        if (block == nullptr)
            return;
        std::memcpy(block, SixPixels.data(), SixPixels.size());
        if (SetClipboardData(CF_DIB, block) == nullptr)
            LocalFree(block);
        else
            EXPECT_EQ(PixelsOf(SeenAs("image/bmp", "BMP")), SixColours);
        EmptyClipboard();
    });
}

TEST(ClipboardData, TenMillionPixelsGoThroughBothWays)
{
    const Opened opened;
    constexpr int Width = 2501; // rows of 7503 bytes and one of padding
    constexpr int Height = 2000;
    std::vector<BYTE> large = {SixPixels.begin(), SixPixels.begin() + 40};
    const int sides[] = {Width, Height};
    std::memcpy(&large[4], sides, sizeof(sides));
    const DWORD size = 7504 * Height;
    std::memcpy(&large[20], &size, sizeof(size));
    std::mt19937 random(7);
    for (int row = 0; row < Height; ++row)
        for (int at = 0; at < 7504; ++at)
            large.push_back(static_cast<BYTE>(at < 7503 ? random() : 0));
    ASSERT_NE(SetClipboardData(CF_DIB, BlockOf(large)), nullptr);
    const QByteArray png = Seen()->data("image/png");
    const QByteArray bmp = Seen()->data("image/bmp");
    for (const auto& [type, bytes] : {std::pair{"image/png", png}, {"image/bmp", bmp}}) {
        OfferFile(type, bytes);
        EXPECT_TRUE(Pasted() == large) << type;
        CloseClipboard();
        OpenClipboard(opened.window.handle);
    }
}
