#include "platform/qt/IconResource.h"
#include "platform/tests/qt/Bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace tavrix::platform;
using tavrix::testing::Bytes;

namespace
{

Bytes Group()
{
    Bytes bytes;
    bytes.Word(0).Word(1).Word(2);
    bytes.Byte(16).Byte(16).Byte(0).Byte(0).Word(1).Word(24).Double(5).Word(7);
    return bytes.Byte(0).Byte(0).Byte(0).Byte(0).Word(1).Word(32).Double(3).Word(8);
}

std::optional<std::vector<IconPicture>> Parse(const Bytes& bytes, size_t size)
{
    const auto block = std::make_unique<BYTE[]>(size);
    std::copy_n(bytes.Data(), size, block.get());
    return ParseIconGroup(block.get(), size);
}

} // namespace

TEST(IconGroup, ReadsItsPicturesAndTakesASizeOfZeroAs256)
{
    const auto pictures = Parse(Group(), Group().Size());
    ASSERT_TRUE(pictures);
    ASSERT_EQ(pictures->size(), 2u);
    EXPECT_EQ((*pictures)[0].width, 16);
    EXPECT_EQ((*pictures)[0].bitsPerPixel, 24);
    EXPECT_EQ((*pictures)[0].id, 7);
    EXPECT_EQ((*pictures)[1].width, 256);
    EXPECT_EQ((*pictures)[1].height, 256);
}

TEST(IconGroup, EveryCutIsRefused)
{
    for (size_t size = 0; size < Group().Size(); ++size)
        EXPECT_FALSE(Parse(Group(), size)) << size;
}

TEST(IconGroup, ACursorGroupIsNoIcon)
{
    Bytes bytes;
    bytes.Word(0).Word(2).Word(0);
    EXPECT_FALSE(Parse(bytes, bytes.Size()));
}

TEST(IconGroup, BecomesAnIconFileWithTheRealLengths)
{
    const auto pictures = Parse(Group(), Group().Size());
    ASSERT_TRUE(pictures);
    const std::vector<BYTE> file = BuildIconFile(*pictures, [](WORD id) {
        return id == 7 ? std::vector<BYTE>{1, 2, 3, 4, 5} : std::vector<BYTE>{9, 9};
    });
    Bytes expected;
    expected.Word(0).Word(1).Word(2);
    expected.Byte(16).Byte(16).Byte(0).Byte(0).Word(1).Word(24).Double(5).Double(38);
    expected.Byte(0).Byte(0).Byte(0).Byte(0).Word(1).Word(32).Double(2).Double(43);
    for (const unsigned byte : {1u, 2u, 3u, 4u, 5u, 9u, 9u})
        expected.Byte(byte);
    EXPECT_EQ(file, std::vector<BYTE>(expected.Data(), expected.Data() + expected.Size()));
}

TEST(IconGroup, PicturesThatAreMissingAreLeftOut)
{
    const auto pictures = Parse(Group(), Group().Size());
    ASSERT_TRUE(pictures);
    EXPECT_TRUE(BuildIconFile(*pictures, [](WORD) { return std::vector<BYTE>(); }).empty());
    const std::vector<BYTE> file = BuildIconFile(
        *pictures, [](WORD id) { return id == 8 ? std::vector<BYTE>{1} : std::vector<BYTE>(); });
    ASSERT_EQ(file.size(), 6u + 16u + 1u);
    EXPECT_EQ(file[4], 1);
}
