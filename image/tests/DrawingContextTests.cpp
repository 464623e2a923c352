#include "image/DrawingContext.h"
#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <initializer_list>

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

size_t Objects()
{
    return tavrix::platform::CountHoldings().drawingObjects;
}

using SelectOperation = i32 (DrawingContext::*)(HGDIOBJ, HGDIOBJ*);

constexpr SelectOperation AllSelects[] = {&DrawingContext::SelectBitmap,
                                          &DrawingContext::SelectFont, &DrawingContext::SelectSlot3,
                                          &DrawingContext::SelectSlot4};

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
    displaced = nullptr;
    ASSERT_EQ(context.SelectBitmap(original, &displaced), 1);
    EXPECT_EQ(displaced, one);
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

TEST(DrawingContext, NullIsLookedAtBeforeTheMissingContextAndLeavesTheOutPointer)
{
    const HBRUSH brush = ::CreateSolidBrush(1);
    for (const SelectOperation select : AllSelects) {
        DrawingContext context;
        HGDIOBJ displaced = brush;
        EXPECT_EQ((context.*select)(nullptr, &displaced), -4);
        EXPECT_EQ((context.*select)(brush, &displaced), -1);
        ASSERT_EQ(context.CreateMemory(nullptr), 1);
        EXPECT_EQ((context.*select)(nullptr, &displaced), -4);
        EXPECT_EQ((context.*select)(nullptr, nullptr), -4);
        EXPECT_EQ(displaced, brush);
    }
    ::DeleteObject(brush);
}

// The platform keeps each kind of object in a place of its own, so a brush shows every slot at
// work.
TEST(DrawingContext, EverySlotHoldsTheOriginalUntilItIsBack)
{
    const HBRUSH one = ::CreateSolidBrush(1);
    const HBRUSH two = ::CreateSolidBrush(2);
    for (const SelectOperation select : AllSelects) {
        DrawingContext context;
        ASSERT_EQ(context.CreateMemory(nullptr), 1);
        HGDIOBJ original = nullptr;
        HGDIOBJ displaced = nullptr;
        ASSERT_EQ((context.*select)(one, &original), 1);
        ASSERT_NE(original, nullptr);
        ASSERT_EQ((context.*select)(one, &displaced), 1) << "what is in already";
        EXPECT_EQ(displaced, one);
        ASSERT_EQ((context.*select)(two, &displaced), 1);
        EXPECT_EQ(displaced, one);
        ASSERT_EQ((context.*select)(one, nullptr), 1) << "nobody asks for the displaced one";
        EXPECT_EQ(context.RestoreAll(), 1);
        EXPECT_EQ(::SelectObject(context.Handle(), two), original);

        // The slot is empty now: what is in at the next selection counts as the original.
        ASSERT_EQ((context.*select)(one, &displaced), 1);
        EXPECT_EQ(displaced, two);
        EXPECT_EQ(context.RestoreAll(), 1);
        EXPECT_EQ(::SelectObject(context.Handle(), two), two);

        // The original back in by hand empties the slot as well.
        ASSERT_EQ((context.*select)(one, nullptr), 1);
        ASSERT_EQ((context.*select)(two, nullptr), 1);
        ASSERT_EQ(::SelectObject(context.Handle(), one), two);
        EXPECT_EQ(context.RestoreAll(), 1);
        EXPECT_EQ(::SelectObject(context.Handle(), two), one) << "there was nothing to restore";
    }
    ::DeleteObject(one);
    ::DeleteObject(two);
}

TEST(DrawingContext, NoSlotStandsInForAnother)
{
    const HBITMAP bitmap = MakeBitmap();
    const HBRUSH brush = ::CreateSolidBrush(1);
    for (const SelectOperation first : AllSelects)
        for (const SelectOperation second : AllSelects) {
            if (first == second)
                continue;
            DrawingContext context;
            ASSERT_EQ(context.CreateMemory(nullptr), 1);
            HGDIOBJ firstBitmap = nullptr;
            HGDIOBJ firstBrush = nullptr;
            ASSERT_EQ((context.*first)(bitmap, &firstBitmap), 1);
            ASSERT_EQ((context.*second)(brush, &firstBrush), 1);
            EXPECT_EQ(context.RestoreAll(), 1);
            EXPECT_EQ(::SelectObject(context.Handle(), bitmap), firstBitmap);
            EXPECT_EQ(::SelectObject(context.Handle(), brush), firstBrush);
        }
    EXPECT_TRUE(::DeleteObject(bitmap));
    EXPECT_TRUE(::DeleteObject(brush));
}

TEST(DrawingContext, RestoreAllPutsBackEveryKindAtOnceAndMayComeTwice)
{
    const HBITMAP bitmap = MakeBitmap();
    const HBRUSH brush = ::CreateSolidBrush(1);
    DrawingContext context;
    ASSERT_EQ(context.CreateMemory(nullptr), 1);
    HGDIOBJ firstBitmap = nullptr;
    HGDIOBJ firstBrush = nullptr;
    ASSERT_EQ(context.SelectBitmap(bitmap, &firstBitmap), 1);
    ASSERT_EQ(context.SelectSlot3(brush, &firstBrush), 1);
    ASSERT_EQ(context.SelectFont(::GetStockObject(SYSTEM_FONT)), 1);
    EXPECT_EQ(context.RestoreAll(), 1);
    EXPECT_EQ(context.RestoreAll(), 1);
    EXPECT_EQ(::SelectObject(context.Handle(), bitmap), firstBitmap);
    EXPECT_EQ(::SelectObject(context.Handle(), brush), firstBrush);
    EXPECT_EQ(context.DeleteMemory(), 1);
    EXPECT_TRUE(::DeleteObject(bitmap));
    EXPECT_TRUE(::DeleteObject(brush));
}

TEST(DrawingContext, ABitmapIsFreeAgainHoweverTheContextGoes)
{
    const size_t before = Objects();
    for (int ending = 0; ending < 4; ++ending) {
        const HBITMAP bitmap = MakeBitmap();
        {
            DrawingContext context;
            ASSERT_EQ(context.CreateMemory(nullptr), 1);
            ASSERT_EQ(context.SelectBitmap(bitmap), 1);
            EXPECT_FALSE(::DeleteObject(bitmap)) << "in use";
            if (ending == 0) {
                EXPECT_EQ(context.DeleteMemory(), 1);
            } else if (ending == 1) {
                EXPECT_EQ(context.AttachWindow(nullptr), 1);
            } else if (ending == 2) {
                EXPECT_EQ(context.CreateMemory(nullptr), 1);
            }
            if (ending != 3) {
                EXPECT_TRUE(::DeleteObject(bitmap));
            }
        }
        if (ending == 3) {
            EXPECT_TRUE(::DeleteObject(bitmap));
        }
        EXPECT_EQ(Objects(), before) << "ending " << ending;
    }
}

TEST(DrawingContext, HoldsOneContextAtATime)
{
    const size_t before = Objects();
    {
        DrawingContext context;
        for (int round = 0; round < 2; ++round) {
            ASSERT_EQ(context.AttachWindow(nullptr), 1);
            ASSERT_EQ(context.AttachWindow(nullptr), 1);
            EXPECT_EQ(Objects(), before + 1);
            ASSERT_EQ(context.CreateMemory(context.Handle()), -1)
                << "what it held is given up before it is asked to be like it";
            EXPECT_EQ(context.Handle(), nullptr);
            EXPECT_EQ(Objects(), before);
            ASSERT_EQ(context.CreateMemory(nullptr), 1);
            ASSERT_EQ(context.CreateMemory(nullptr), 1);
            EXPECT_EQ(Objects(), before + 1);
        }
    }
    EXPECT_EQ(Objects(), before);
}

TEST(DrawingContext, AFailedTakingLeavesItEmpty)
{
    const HDC gone = ::CreateCompatibleDC(nullptr);
    ASSERT_TRUE(::DeleteDC(gone));
    const size_t before = Objects();
    DrawingContext context;
    ASSERT_EQ(context.CreateMemory(nullptr), 1);
    EXPECT_EQ(context.CreateMemory(gone), -1);
    EXPECT_EQ(context.Handle(), nullptr);
    EXPECT_EQ(context.DeleteMemory(), 0);
    EXPECT_EQ(context.Detach(), 0);
    EXPECT_EQ(context.RestoreAll(), 0);
    EXPECT_EQ(Objects(), before);
    ASSERT_EQ(context.CreateMemory(nullptr), 1);
    EXPECT_EQ(context.AttachWindow(reinterpret_cast<HWND>(0x1234)), -1);
    EXPECT_EQ(context.Handle(), nullptr);
    EXPECT_EQ(context.Detach(), 0);
    EXPECT_EQ(Objects(), before);
    ASSERT_EQ(context.CreateMemory(nullptr), 1) << "and can be used again";
}

TEST(DrawingContext, AMemoryContextLikeAnotherIsItsOwn)
{
    DrawingContext screen;
    DrawingContext memory;
    ASSERT_EQ(screen.AttachWindow(nullptr), 1);
    ASSERT_EQ(memory.CreateMemory(screen.Handle()), 1);
    EXPECT_NE(memory.Handle(), screen.Handle());
    ASSERT_EQ(screen.Detach(), 1);
    const HBITMAP bitmap = MakeBitmap();
    EXPECT_EQ(memory.SelectBitmap(bitmap), 1);
    EXPECT_EQ(memory.DeleteMemory(), 1);
    EXPECT_TRUE(::DeleteObject(bitmap));
}

TEST(DrawingContext, ABitmapGoesIntoNoScreenContextAndIntoOneMemoryContextAtATime)
{
    const HBITMAP bitmap = MakeBitmap();
    DrawingContext screen;
    ASSERT_EQ(screen.AttachWindow(nullptr), 1);
    EXPECT_EQ(screen.SelectBitmap(bitmap), -1);
    DrawingContext one;
    DrawingContext two;
    ASSERT_EQ(one.CreateMemory(nullptr), 1);
    ASSERT_EQ(two.CreateMemory(nullptr), 1);
    ASSERT_EQ(one.SelectBitmap(bitmap), 1);
    EXPECT_EQ(two.SelectBitmap(bitmap), -1);
    EXPECT_EQ(two.RestoreAll(), 1) << "with nothing to restore";
    EXPECT_EQ(one.DeleteMemory(), 1);
    EXPECT_EQ(two.SelectBitmap(bitmap), 1);
    EXPECT_EQ(two.DeleteMemory(), 1);
    EXPECT_TRUE(::DeleteObject(bitmap));
}

TEST(DrawingContext, DetachingPutsBackWhatWasSelected)
{
    const HBRUSH brush = ::CreateSolidBrush(1);
    const size_t before = Objects();
    DrawingContext context;
    ASSERT_EQ(context.AttachWindow(nullptr), 1);
    HGDIOBJ original = nullptr;
    ASSERT_EQ(context.SelectSlot4(brush, &original), 1);
    ASSERT_EQ(context.Detach(), 1);
    EXPECT_EQ(Objects(), before);
    // Nothing of the old context is remembered for the next one.
    ASSERT_EQ(context.AttachWindow(nullptr), 1);
    ASSERT_EQ(::SelectObject(context.Handle(), brush), original);
    EXPECT_EQ(context.RestoreAll(), 1);
    EXPECT_EQ(::SelectObject(context.Handle(), original), brush)
        << "it was not selected through it";
    EXPECT_EQ(context.Detach(), 1);
    ::DeleteObject(brush);
}
