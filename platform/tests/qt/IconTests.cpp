#include "platform/host/Resources.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/Bytes.h"

#include <gtest/gtest.h>

using namespace tavrix::testing;

namespace
{

void PutRecord(Bytes& file, unsigned type, unsigned name, const Bytes& data)
{
    file.Align(4);
    file.Double(static_cast<unsigned>(data.Size())).Double(32);
    file.Word(0xFFFF).Word(type).Word(0xFFFF).Word(name);
    file.Double(0).Word(0).Word(0).Double(0).Double(0).Append(data);
    file.Align(4);
}

/// A picture of 16 by 16 pixels, 24 bits, all red, nothing clear.
Bytes RedPicture()
{
    Bytes picture;
    picture.Double(40).Double(16).Double(32).Word(1).Word(24);
    for (int i = 0; i < 6; ++i)
        picture.Double(0);
    for (int i = 0; i < 16 * 16; ++i)
        picture.Byte(0).Byte(0).Byte(0xFF);
    for (int i = 0; i < 16; ++i)
        picture.Double(0); // the mask, a line of 4 bytes each
    return picture;
}

HINSTANCE IconResources()
{
    static int marker = 0;
    static Bytes file;
    const auto instance = reinterpret_cast<HINSTANCE>(&marker);
    if (file.Size() != 0)
        return instance;
    file.Double(0).Double(32).Word(0xFFFF).Word(0).Word(0xFFFF).Word(0);
    file.Double(0).Double(0).Double(0).Double(0);
    const Bytes picture = RedPicture();
    PutRecord(file, 3, 7, picture);
    Bytes group;
    group.Word(0).Word(1).Word(1);
    group.Byte(16).Byte(16).Byte(0).Byte(0).Word(1).Word(24);
    group.Double(static_cast<unsigned>(picture.Size())).Word(7);
    PutRecord(file, 14, 115, group);
    TavrixRegisterResources(instance, file.Data(), file.Data() + file.Size());
    return instance;
}

constexpr UINT SetIconMessage = 0x0170;

INT_PTR CALLBACK Procedure(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

/// A dialog with one icon control, whose template names icon 115.
Bytes IconDialog()
{
    Bytes bytes;
    bytes.Double(WS_POPUP | WS_VISIBLE).Double(0).Word(1).Word(0).Word(0).Word(60).Word(40);
    bytes.Word(0).Word(0).Text(u"").Align(4);
    bytes.Double(WS_CHILD | WS_VISIBLE | SS_ICON).Double(0);
    bytes.Word(5).Word(5).Word(0).Word(0).Word(9).Word(0xFFFF).Word(0x82);
    return bytes.Word(0xFFFF).Word(115).Word(0);
}

} // namespace

TEST(Icons, LoadFromAGroupAndEndOnce)
{
    const Scope scope;
    const HANDLE icon = LoadImageW(IconResources(), MAKEINTRESOURCEW(115), IMAGE_ICON, 16, 16, 0);
    ASSERT_NE(icon, nullptr);
    EXPECT_TRUE(DestroyIcon(static_cast<HICON>(icon)));
    EXPECT_FALSE(DestroyIcon(static_cast<HICON>(icon)));
    EXPECT_FALSE(DestroyIcon(nullptr));
}

TEST(Icons, MissingOnesAreNullAndSoAreOtherPictures)
{
    const Scope scope;
    EXPECT_EQ(LoadIconW(IconResources(), MAKEINTRESOURCEW(116)), nullptr);
    EXPECT_EQ(LoadImageW(IconResources(), MAKEINTRESOURCEW(115), IMAGE_BITMAP, 16, 16, 0), nullptr);
}

TEST(Icons, TheDevicesOwnAndTheArrowAreAlwaysThere)
{
    const Scope scope;
    for (WORD number = 32512; number <= 32516; ++number)
        EXPECT_NE(LoadIconW(nullptr, MAKEINTRESOURCEW(number)), nullptr) << number;
    EXPECT_EQ(LoadIconW(nullptr, MAKEINTRESOURCEW(32513)),
              LoadIconW(nullptr, MAKEINTRESOURCEW(32513)));
    EXPECT_NE(LoadCursorW(nullptr, IDC_ARROW), nullptr);
}

TEST(Icons, ATemplatesIconShowsInItsOwnSize)
{
    const Scope scope;
    const Bytes bytes = IconDialog();
    const HWND dialog = CreateDialogIndirectParamW(
        IconResources(), reinterpret_cast<LPCDLGTEMPLATEW>(bytes.Data()), nullptr, Procedure, 0);
    ASSERT_NE(dialog, nullptr);
    Pump(20);
    const Picture picture = WindowPixels(GetDlgItem(dialog, 9));
    ASSERT_EQ(picture.width, 32);
    ASSERT_EQ(picture.height, 32);
    EXPECT_EQ(picture.At(16, 16), 0xFF0000u);

    const HICON hand = LoadIconW(nullptr, MAKEINTRESOURCEW(32513));
    EXPECT_NE(SendDlgItemMessageW(dialog, 9, SetIconMessage, reinterpret_cast<WPARAM>(hand), 0), 0);
    Pump(20);
    EXPECT_NE(WindowPixels(GetDlgItem(dialog, 9)).At(16, 16), 0xFF0000u);
    DestroyWindow(dialog);
}
