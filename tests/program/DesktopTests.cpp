// What a person at a desktop expects beside the device's pen and keys: the wheel scrolls, a file
// that is dropped opens, F11 shows the whole screen.

#include "platform/qt/Window.h"
#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWheelEvent>
#include <QWidget>
#include <QWindow>

#include <filesystem>

using namespace tavrix::testing;

namespace
{

QWidget* Host()
{
    return tavrix::platform::ScreenWidget()->window();
}

void Turn(int eighths, Qt::KeyboardModifiers held = Qt::NoModifier)
{
    const QPoint at(300, 300);
    QWheelEvent event(at, Host()->mapToGlobal(at), {}, {0, eighths}, Qt::NoButton, held,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(Host()->windowHandle(), &event);
}

void Drop(const std::string& file)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(file))});
    QDragEnterEvent enter({300, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host()->windowHandle(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({300, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host()->windowHandle(), &drop);
    EXPECT_TRUE(drop.isAccepted());
}

/// Expects the test picture with its pixel (fromX, fromY) at the view's top left.
void ExpectPictureFrom(const MainFrame& frame, int fromX, int fromY)
{
    const Picture screen = ScreenPixels();
    const int bar = static_cast<int>(frame.clientOriginY);
    for (int y = bar; y < screen.height; ++y)
        for (int x = 0; x < screen.width; ++x) {
            const bool inside = x + fromX >= 0 && y - bar + fromY >= 0;
            ASSERT_EQ(screen.At(x, y), inside ? TestColor(x + fromX, y - bar + fromY) : 0u)
                << x << ", " << y;
        }
}

} // namespace

TEST(Desktop, TheWheelScrollsThePictureByTenPixelsANotchAndWithShiftSideways)
{
    HideToolWindows();
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(900, 700),
                 {[](MainFrame& frame) {
                      ExpectPictureFrom(frame, 0, 0);
                      Turn(-240);
                  },
                  [](MainFrame& frame) {
                      ExpectPictureFrom(frame, 0, 20);
                      Turn(120);
                      Turn(-120, Qt::ShiftModifier);
                  },
                  [](MainFrame& frame) {
                      ExpectPictureFrom(frame, 10, 10);
                      Turn(240, Qt::ShiftModifier);
                  },
                  [](MainFrame& frame) { ExpectPictureFrom(frame, -10, 10); }});
}

TEST(Desktop, ADroppedFileOpensAndF11ShowsTheSameScreenOnTheWholeDesktop)
{
    InstallBundledPlugins();
    const std::string other = WriteTestPng(300, 200, "二 枚目.png");
    Picture before;
    RunProgramOn(WriteTestPng(900, 700),
                 {[&](MainFrame& frame) {
                      Drop(other);
                      // Opening it shows a dialog, which shuts the main window for its while.
                      EXPECT_TRUE(PumpUntil([&] {
                          return std::u16string(frame.openedPath).ends_with(u"枚目.png") &&
                                 IsWindowEnabled(frame.window);
                      }));
                  },
                  [&](MainFrame& frame) {
                      EXPECT_EQ(std::u16string(frame.openedPath)
                                    .substr(std::u16string(frame.openedPath).find_last_of(u'\\')),
                                u"\\二 枚目.png");
                      RasterInfo info = {};
                      info.size = sizeof info;
                      EXPECT_EQ(frame.image->GetInfo(&info), Done);
                      EXPECT_EQ(info.width, 300u);
                      before = ScreenPixels();
                      TypeKey(VK_F11);
                  },
                  [&](MainFrame&) {
                      EXPECT_TRUE(Host()->isFullScreen());
                      EXPECT_TRUE(ScreenPixels().pixels == before.pixels);
                      EXPECT_GT(Host()->width(), before.width);
                      TypeKey(VK_F11);
                  },
                  [&](MainFrame&) {
                      EXPECT_FALSE(Host()->isFullScreen());
                      EXPECT_TRUE(ScreenPixels().pixels == before.pixels);
                      EXPECT_EQ(Host()->width(), before.width);
                  }});
}

TEST(Desktop, ANotificationBringsTheProgramBackToTheFront)
{
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(20, 10), [](MainFrame& frame) {
        Host()->setWindowState(Qt::WindowMinimized);
        ASSERT_TRUE(Host()->isMinimized());
        EXPECT_EQ(SendMessageW(frame.window, WM_NOTIFY, 1, 0), 0);
        EXPECT_FALSE(Host()->isMinimized());
    });
}
