// Pictures between the program and the rest of the desktop, by the keys.

#include "resources/Ids.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

#include <gtest/gtest.h>

using namespace tavrix::testing;

namespace
{

constexpr int Width = 21;
constexpr int Height = 10;
constexpr int Control = MK_CONTROL;
constexpr int Alt = 0x20;

u32 PixelOf(MainFrame& frame, int x, int y)
{
    u32 color = 0;
    EXPECT_EQ(frame.image->GetPixel(x, y, &color), 1);
    return color >> 8;
}

} // namespace

TEST(Clips, WhatIsCopiedIsThePictureForOtherPrograms)
{
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(Width, Height),
                 {[](MainFrame&) {
                      OnModal([](HWND, bool box) {
                          EXPECT_FALSE(box);
                          TypeKey(VK_RETURN);
                      });
                      TypeKey('C', Control | Alt);
                  },
                  [](MainFrame&) {
                      OnModal({});
                      const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
                      const QImage image =
                          QImage::fromData(data->data(QStringLiteral("image/bmp")), "BMP");
                      ASSERT_EQ(image.width(), Width);
                      ASSERT_EQ(image.height(), Height);
                      for (int y = 0; y < Height; ++y)
                          for (int x = 0; x < Width; ++x)
                              ASSERT_EQ(image.pixel(x, y) & 0xFFFFFF, TestColor(x, y))
                                  << x << ", " << y;
                  }});
}

TEST(Clips, APictureOfAnotherProgramIsPastedIntoTheSelection)
{
    InstallBundledPlugins();
    RunProgramOn(WriteTestPng(Width, Height),
                 {[](MainFrame& frame) {
                      QImage image(8, 6, QImage::Format_RGB32);
                      for (int y = 0; y < 6; ++y)
                          for (int x = 0; x < 8; ++x)
                              image.setPixel(x, y, 0xFF000000u | TestColor(100 + x, 200 + y));
                      QGuiApplication::clipboard()->setImage(image);
                      SendMessageW(frame.window, WM_TIMER, 2, 0);
                      ASSERT_EQ(frame.clipboardHasImage, 1u);
                      TypeKey('A', Control);
                      TypeKey('V', Control | Alt);
                  },
                  [](MainFrame& frame) {
                      for (int y = 0; y < Height; ++y)
                          for (int x = 0; x < Width; ++x)
                              ASSERT_EQ(PixelOf(frame, x, y), x < 8 && y < 6
                                                                  ? TestColor(100 + x, 200 + y)
                                                                  : TestColor(x, y))
                                  << x << ", " << y;
                  }});
}
