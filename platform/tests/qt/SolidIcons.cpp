#include "platform/tests/qt/SolidIcons.h"

#include "platform/host/Resources.h"
#include "platform/tests/qt/Bytes.h"

#include <memory>
#include <vector>

namespace tavrix::test
{
namespace
{

using tavrix::testing::Bytes;

constexpr unsigned IconType = 3;
constexpr unsigned GroupType = 14;
constexpr unsigned PictureName = 7;
constexpr WORD GroupName = 115;

void PutRecord(Bytes& file, unsigned type, unsigned name, const Bytes& data)
{
    file.Align(4);
    file.Double(static_cast<unsigned>(data.Size())).Double(32);
    file.Word(0xFFFF).Word(type).Word(0xFFFF).Word(name);
    file.Double(0).Word(0).Word(0).Double(0).Double(0).Append(data);
    file.Align(4);
}

/// 24 bits a pixel and an empty mask, whose lines have 4 bytes at both sides used here.
Bytes SolidPicture(uint32_t color, unsigned side)
{
    Bytes picture;
    picture.Double(40).Double(side).Double(2 * side).Word(1).Word(24);
    for (int i = 0; i < 6; ++i)
        picture.Double(0);
    for (unsigned i = 0; i < side * side; ++i)
        picture.Byte(color & 0xFF).Byte(color >> 8 & 0xFF).Byte(color >> 16 & 0xFF);
    for (unsigned i = 0; i < side; ++i)
        picture.Double(0);
    return picture;
}

HICON MakeIcon(uint32_t color, unsigned side)
{
    Bytes file;
    file.Double(0).Double(32).Word(0xFFFF).Word(0).Word(0xFFFF).Word(0);
    file.Double(0).Double(0).Double(0).Double(0);
    const Bytes picture = SolidPicture(color, side);
    PutRecord(file, IconType, PictureName, picture);
    Bytes group;
    group.Word(0).Word(1).Word(1);
    group.Byte(side).Byte(side).Byte(0).Byte(0).Word(1).Word(24);
    group.Double(static_cast<unsigned>(picture.Size())).Word(PictureName);
    PutRecord(file, GroupType, GroupName, group);
    // Each module of resources is known by an address of its own and stays for good.
    static auto& modules = *new std::vector<std::unique_ptr<Bytes>>;
    modules.push_back(std::make_unique<Bytes>(std::move(file)));
    const Bytes& kept = *modules.back();
    const auto instance = reinterpret_cast<HINSTANCE>(modules.back().get());
    TavrixRegisterResources(instance, kept.Data(), kept.Data() + kept.Size());
    const int pixels = static_cast<int>(side);
    return static_cast<HICON>(
        LoadImageW(instance, MAKEINTRESOURCEW(GroupName), IMAGE_ICON, pixels, pixels, 0));
}

} // namespace

HICON SolidIcon(uint32_t color)
{
    return MakeIcon(color, 16);
}

HICON LargeSolidIcon(uint32_t color)
{
    return MakeIcon(color, 32);
}

} // namespace tavrix::test
