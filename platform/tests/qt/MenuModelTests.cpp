#include "platform/qt/MenuModel.h"
#include "platform/tests/qt/Bytes.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace tavrix::platform;
using tavrix::testing::Bytes;

namespace
{

constexpr unsigned Popup = 0x10;
constexpr unsigned End = 0x80;

/// File { New, -, Open { As(gray) } }, Gray popup { As(gray) }, About
Bytes Sample()
{
    Bytes bytes;
    bytes.Word(0).Word(0);
    bytes.Word(Popup).Text(u"&File");
    bytes.Word(0).Word(40017).Text(u"&New\tCtrl+N");
    bytes.Word(0).Word(0).Text(u"");
    bytes.Word(Popup | End).Text(u"開く");
    bytes.Word(MF_GRAYED | End).Word(40014).Text(u"first");
    bytes.Word(Popup | MF_GRAYED).Text(u"Gray");
    bytes.Word(MF_GRAYED | End).Word(40014).Text(u"second");
    return bytes.Word(MF_CHECKED | End).Word(207).Text(u"About");
}

std::shared_ptr<Menu> Parse(const Bytes& bytes, size_t size)
{
    const auto block = std::make_unique<BYTE[]>(size);
    std::copy_n(bytes.Data(), size, block.get());
    return ParseMenu(block.get(), size);
}

std::shared_ptr<Menu> Parse(const Bytes& bytes)
{
    return Parse(bytes, bytes.Size());
}

} // namespace

TEST(MenuModel, ReadsTheTreeOfAClassicMenu)
{
    const auto menu = Parse(Sample());
    ASSERT_TRUE(menu);
    ASSERT_EQ(menu->items.size(), 3u);
    ASSERT_TRUE(menu->items[0].popup);
    const Menu& file = *menu->items[0].popup;
    ASSERT_EQ(file.items.size(), 3u);
    EXPECT_EQ(file.items[0].id, 40017u);
    EXPECT_EQ(file.items[0].text, u"&New\tCtrl+N");
    EXPECT_TRUE(file.items[1].separator);
    ASSERT_TRUE(file.items[2].popup);
    EXPECT_EQ(file.items[2].text, u"開く");
    EXPECT_EQ(file.items[2].popup->items[0].state, MF_GRAYED);
    EXPECT_EQ(menu->items[1].state, MF_GRAYED);
    EXPECT_EQ(menu->items[2].id, 207u);
    EXPECT_EQ(menu->items[2].state, MF_CHECKED);
}

TEST(MenuModel, EveryCutOfAMenuIsRefusedAndReadsNothingBehindIt)
{
    const Bytes whole = Sample();
    for (size_t size = 0; size < whole.Size(); ++size)
        EXPECT_FALSE(Parse(whole, size)) << size;
}

TEST(MenuModel, ReadsTheExtendedFormWithAnEmptyTextAndAPopup)
{
    Bytes bytes;
    bytes.Word(1).Word(4).Double(0);
    bytes.Double(0x800).Double(0).Double(0).Word(0).Text(u"").Align(4);
    bytes.Double(0).Double(MF_CHECKED).Double(70000).Word(0).Text(u"odd").Align(4);
    bytes.Double(0).Double(MF_GRAYED).Double(500).Word(0x81).Text(u"P").Align(4).Double(9);
    bytes.Double(0).Double(0).Double(501).Word(0x80).Text(u"inner");
    const auto menu = Parse(bytes);
    ASSERT_TRUE(menu);
    ASSERT_EQ(menu->items.size(), 3u);
    EXPECT_TRUE(menu->items[0].separator);
    EXPECT_EQ(menu->items[1].id, 70000u);
    EXPECT_EQ(menu->items[1].state, MF_CHECKED);
    ASSERT_TRUE(menu->items[2].popup);
    EXPECT_EQ(menu->items[2].popup->items[0].id, 501u);
    for (size_t size = 0; size < bytes.Size(); ++size)
        EXPECT_FALSE(Parse(bytes, size)) << size;
}

TEST(MenuModel, PopupsNestedWithoutEndAreRefused)
{
    Bytes bytes;
    bytes.Word(0).Word(0);
    for (int i = 0; i < 10000; ++i)
        bytes.Word(Popup | End).Text(u"");
    EXPECT_FALSE(Parse(bytes));
}

TEST(MenuModel, AnUnknownVersionIsRefused)
{
    Bytes bytes;
    bytes.Word(2).Word(0).Word(End).Word(1).Text(u"x");
    EXPECT_FALSE(Parse(bytes));
}

TEST(MenuModel, ByCommandSearchesThePopupsFromTheTopDown)
{
    const auto menu = Parse(Sample());
    const MenuPlace place = FindMenuItem(*menu, 40014, MF_BYCOMMAND);
    ASSERT_TRUE(place);
    EXPECT_EQ(place.Item().text, u"first");
}

TEST(MenuModel, ByPositionCountsSeparatorsAndStaysInTheMenu)
{
    const auto menu = Parse(Sample());
    Menu& file = *menu->items[0].popup;
    EXPECT_EQ(FindMenuItem(file, 2, MF_BYPOSITION).Item().text, u"開く");
    EXPECT_FALSE(FindMenuItem(file, 3, MF_BYPOSITION));
    EXPECT_FALSE(FindMenuItem(*menu, 0xFFFFFFFF, MF_BYPOSITION));
}

TEST(MenuModel, EnablingAnswersTheStateBefore)
{
    const auto menu = Parse(Sample());
    EXPECT_EQ(EnableItem(*menu, 1, MF_BYPOSITION | MF_ENABLED), MF_GRAYED);
    EXPECT_EQ(menu->items[1].state, MF_ENABLED);
    EXPECT_EQ(menu->items[1].popup->items[0].state, MF_GRAYED) << "the inside stays gray";
    EXPECT_EQ(EnableItem(*menu, 1, MF_BYPOSITION | MF_GRAYED), MF_ENABLED);
    EXPECT_EQ(EnableItem(*menu, 4711, MF_BYCOMMAND), 0xFFFFFFFFu);
}

TEST(MenuModel, EnablingKeepsTheCheckMark)
{
    const auto menu = Parse(Sample());
    EXPECT_EQ(EnableItem(*menu, 207, MF_BYCOMMAND | MF_GRAYED), MF_ENABLED);
    EXPECT_EQ(ItemState(*menu, 207, MF_BYCOMMAND), MF_GRAYED | MF_CHECKED);
}

TEST(MenuModel, CheckingAnswersTheMarkBeforeAndKeepsTheGray)
{
    const auto menu = Parse(Sample());
    EXPECT_EQ(CheckItem(*menu, 40014, MF_BYCOMMAND | MF_CHECKED), MF_UNCHECKED);
    EXPECT_EQ(CheckItem(*menu, 40014, MF_BYCOMMAND | MF_UNCHECKED), MF_CHECKED);
    EXPECT_EQ(ItemState(*menu, 40014, MF_BYCOMMAND), MF_GRAYED);
    EXPECT_EQ(CheckItem(*menu, 4711, MF_BYCOMMAND), 0xFFFFFFFFu);
}

TEST(MenuModel, APopupsStateCarriesItsCount)
{
    const auto menu = Parse(Sample());
    EXPECT_EQ(ItemState(*menu, 0, MF_BYPOSITION), 0x310u);
    EXPECT_EQ(ItemState(*menu, 9, MF_BYPOSITION), 0xFFFFFFFFu);
}

TEST(MenuModel, DeletingByCommandReachesIntoPopupsAndTellsWhoShowsThem)
{
    const auto menu = Parse(Sample());
    Menu& gray = *menu->items[1].popup;
    int changes = 0;
    gray.onChange = [&] { ++changes; };
    EXPECT_TRUE(DeleteItem(*menu, 40014, MF_BYCOMMAND)); // the first, in another popup
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(DeleteItem(*menu, 40014, MF_BYCOMMAND));
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(gray.items.empty());
    EXPECT_FALSE(DeleteItem(*menu, 40014, MF_BYCOMMAND));
}
