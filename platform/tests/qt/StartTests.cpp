// What the start leaves for later.
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/SolidIcons.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QStyle>

#include <cstdlib>
#include <fstream>
#include <string>

namespace hand = tavrix::testing;
using tavrix::test::SolidIcon;
using tavrix::test::TestWindow;

namespace
{

/// Whether this process has a file in memory whose path holds `part`.
bool HasMapped(const std::string& part)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(part) != line.npos)
            return true;
    return false;
}

int OpaquePixels(const QImage& picture)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            count += qAlpha(picture.pixel(x, y)) > 0x80;
    return count;
}

} // namespace

TEST(Start, TheWindowsIconsAreNotDecodedBeforeItIsPainted)
{
    // A process of its own, where no picture has been read.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const TestWindow window;
            const HICON icon = SolidIcon(0xFF0000);
            SendMessageW(window.handle, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
            const bool before = HasMapped("libqico");
            hand::Pump(20);
            std::_Exit(!before && HasMapped("libqico") ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ApplicationStyle, TheMarkOfAMenuBarWithoutRoomIsDrawn)
{
    const TestWindow window;
    const QIcon mark = QApplication::style()->standardIcon(
        QStyle::SP_ToolBarHorizontalExtensionButton, nullptr, nullptr);
    const QImage picture = mark.pixmap(16, 16).toImage();
    EXPECT_EQ(picture.size(), QSize(16, 16));
    EXPECT_GT(OpaquePixels(picture), 20);
    EXPECT_LT(OpaquePixels(picture), 80);
    EXPECT_FALSE(QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning).isNull());
}
