// The clipboard inside one process; across processes it is for a real display (tests/display).
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

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
