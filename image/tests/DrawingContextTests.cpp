#include "image/DrawingContext.h"

#include <gtest/gtest.h>

namespace
{

HBITMAP MakeBitmap()
{
    BITMAPINFO format = {};
    format.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    format.bmiHeader.biWidth = 4;
    format.bmiHeader.biHeight = 4;
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    return ::CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
}

} // namespace

TEST(DrawingContext, AnEmptyOneHasNothingToDetachDeleteOrRestore)
{
    DrawingContext context;
    EXPECT_EQ(context.Handle(), nullptr);
    EXPECT_EQ(context.Detach(), 0);
    EXPECT_EQ(context.DeleteMemory(), 0);
    EXPECT_EQ(context.RestoreAll(), 0);
    const HBITMAP bitmap = MakeBitmap();
    EXPECT_EQ(context.SelectBitmap(nullptr), -4);
    EXPECT_EQ(context.SelectBitmap(bitmap), -1);
    EXPECT_EQ(context.SelectFont(nullptr), -4);
    EXPECT_EQ(context.SelectSlot3(bitmap), -1);
    EXPECT_EQ(context.SelectSlot4(bitmap), -1);
    ::DeleteObject(bitmap);
}

TEST(DrawingContext, AMemoryContextIsDeletedAndNotDetached)
{
    DrawingContext context;
    ASSERT_EQ(context.CreateMemory(nullptr), 1);
    EXPECT_NE(context.Handle(), nullptr);
    EXPECT_EQ(context.Detach(), -1);
    EXPECT_EQ(context.RestoreAll(), 1);
    EXPECT_EQ(context.DeleteMemory(), 1);
    EXPECT_EQ(context.Handle(), nullptr);
    EXPECT_EQ(context.DeleteMemory(), 0);
}

TEST(DrawingContext, TheScreensContextIsDetachedAndNotDeleted)
{
    DrawingContext context;
    ASSERT_EQ(context.AttachWindow(nullptr), 1);
    EXPECT_NE(context.Handle(), nullptr);
    EXPECT_EQ(context.DeleteMemory(), 0);
    EXPECT_EQ(context.Detach(), 1);
    EXPECT_EQ(context.Handle(), nullptr);
    EXPECT_EQ(context.Detach(), 0);
}

TEST(DrawingContext, AttachingAndCreatingGiveUpWhatWasHeld)
{
    DrawingContext context;
    ASSERT_EQ(context.CreateMemory(nullptr), 1);
    const HDC first = context.Handle();
    ASSERT_EQ(context.AttachWindow(nullptr), 1);
    EXPECT_FALSE(::DeleteDC(first)); // gone already
    EXPECT_EQ(context.DeleteMemory(), 0);
    ASSERT_EQ(context.CreateMemory(nullptr), 1);
    EXPECT_EQ(context.Detach(), -1);
    EXPECT_EQ(context.AttachWindow(reinterpret_cast<HWND>(0x1234)), -1);
    EXPECT_EQ(context.Handle(), nullptr);
}

TEST(DrawingContext, RemembersTheFirstObjectUntilItIsBack)
{
    const HBITMAP one = MakeBitmap();
    const HBITMAP two = MakeBitmap();
    DrawingContext context;
    ASSERT_EQ(context.CreateMemory(nullptr), 1);
    HGDIOBJ original = nullptr;
    ASSERT_EQ(context.SelectBitmap(one, &original), 1);
    EXPECT_NE(original, nullptr);
    HGDIOBJ displaced = nullptr;
    ASSERT_EQ(context.SelectBitmap(two, &displaced), 1);
    EXPECT_EQ(displaced, one);
    EXPECT_EQ(context.RestoreAll(), 1);
    // The context's own bitmap is in again, not the one that came before.
    EXPECT_EQ(::SelectObject(context.Handle(), one), original);
    ::SelectObject(context.Handle(), original);

    // Selecting the original by hand empties the slot, so that the next object is remembered anew.
    ASSERT_EQ(context.SelectBitmap(one), 1);
    ASSERT_EQ(context.SelectBitmap(original), 1);
    ASSERT_EQ(context.SelectBitmap(two, &displaced), 1);
    EXPECT_EQ(displaced, original);
    EXPECT_EQ(context.DeleteMemory(), 1);
    EXPECT_TRUE(::DeleteObject(one));
    EXPECT_TRUE(::DeleteObject(two));
}

TEST(DrawingContext, AnObjectThatThePlatformRefusesChangesNothing)
{
    DrawingContext context;
    ASSERT_EQ(context.CreateMemory(nullptr), 1);
    HGDIOBJ displaced = reinterpret_cast<HGDIOBJ>(0x77);
    EXPECT_EQ(context.SelectBitmap(reinterpret_cast<HGDIOBJ>(0x12345678), &displaced), -1);
    EXPECT_EQ(displaced, reinterpret_cast<HGDIOBJ>(0x77));
}
