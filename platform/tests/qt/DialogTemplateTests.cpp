#include "platform/qt/DialogTemplate.h"
#include "platform/tests/qt/Bytes.h"

#include <gtest/gtest.h>

#include <memory>

using tavrix::platform::DialogTemplate;
using tavrix::platform::ParseDialogTemplate;
using tavrix::testing::Bytes;

namespace
{

/// Parses from a block of exactly the template's size, so that a read behind it is found out.
std::optional<DialogTemplate> Parse(const Bytes& bytes, size_t size)
{
    const auto block = std::make_unique<BYTE[]>(size);
    std::copy_n(bytes.Data(), size, block.get());
    return ParseDialogTemplate(block.get(), size);
}

std::optional<DialogTemplate> Parse(const Bytes& bytes)
{
    return Parse(bytes, bytes.Size());
}

Bytes Head(unsigned count, unsigned style = 0x80000000u)
{
    Bytes bytes;
    bytes.Double(style).Double(0x10).Word(count).Word(1).Word(2).Word(30).Word(40);
    return bytes.Word(0).Word(0).Text(u"題 Title");
}

Bytes TwoItems()
{
    Bytes bytes = Head(2, 0x80000000u | DS_SETFONT);
    bytes.Word(9).Text(u"Tahoma").Align(4);
    bytes.Double(0x50010001).Double(0).Word(5).Word(6).Word(50).Word(14).Word(1);
    bytes.Word(0xFFFF).Word(0x80).Text(u"OK").Word(0).Align(4);
    bytes.Double(0x50000003).Double(0).Word(0xFFFF).Word(0).Word(0).Word(0).Word(0xFFFF);
    return bytes.Text(u"STATIC").Word(0xFFFF).Word(115).Word(0);
}

Bytes ClassicItem(unsigned ordinal)
{
    Bytes bytes = Head(1);
    bytes.Align(4).Double(0).Double(0).Word(0).Word(0).Word(0).Word(0).Word(7);
    return bytes.Word(0xFFFF).Word(ordinal).Text(u"").Word(0);
}

} // namespace

TEST(DialogTemplateParser, ReadsHeadFontAndItemsOfTheClassicForm)
{
    const auto parsed = Parse(TwoItems());
    ASSERT_TRUE(parsed);
    EXPECT_FALSE(parsed->extended);
    EXPECT_EQ(parsed->style, 0x80000040u);
    EXPECT_EQ(parsed->extendedStyle, 0x10u);
    EXPECT_EQ(parsed->x, 1);
    EXPECT_EQ(parsed->y, 2);
    EXPECT_EQ(parsed->width, 30);
    EXPECT_EQ(parsed->height, 40);
    EXPECT_EQ(parsed->title, u"題 Title");
    EXPECT_EQ(parsed->pointSize, 9);
    EXPECT_EQ(parsed->faceName, u"Tahoma");
    ASSERT_EQ(parsed->items.size(), 2u);
    EXPECT_EQ(parsed->items[0].style, 0x50010001u);
    EXPECT_EQ(parsed->items[0].id, 1u);
    EXPECT_EQ(parsed->items[0].width, 50);
    EXPECT_EQ(parsed->items[0].height, 14);
    EXPECT_EQ(parsed->items[0].className, u"BUTTON");
    EXPECT_EQ(parsed->items[0].text.text, u"OK");
}

TEST(DialogTemplateParser, TakesAClassByNameAndATextByOrdinal)
{
    const auto parsed = Parse(TwoItems());
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->items[1].className, u"STATIC");
    EXPECT_EQ(parsed->items[1].text.ordinal, WORD{115});
    EXPECT_EQ(parsed->items[1].text.text, u"");
}

TEST(DialogTemplateParser, PositionsAreSignedAndIdsAreNot)
{
    const auto parsed = Parse(TwoItems());
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->items[1].x, -1);
    EXPECT_EQ(parsed->items[1].id, 0xFFFFu);
}

TEST(DialogTemplateParser, NamesTheSixClassesThatHaveAnOrdinal)
{
    const char16_t* names[] = {u"BUTTON",  u"EDIT",      u"STATIC",
                               u"LISTBOX", u"SCROLLBAR", u"COMBOBOX"};
    for (unsigned i = 0; i < 6; ++i) {
        const auto parsed = Parse(ClassicItem(0x80 + i));
        ASSERT_TRUE(parsed) << i;
        EXPECT_EQ(parsed->items[0].className, names[i]);
    }
}

TEST(DialogTemplateParser, AnUnknownClassOrdinalIsRefused)
{
    EXPECT_FALSE(Parse(ClassicItem(0x7F)));
    EXPECT_FALSE(Parse(ClassicItem(0x86)));
}

TEST(DialogTemplateParser, CreationDataCountsItsOwnWordInTheClassicForm)
{
    Bytes bytes = Head(1);
    bytes.Align(4).Double(0).Double(0).Word(0).Word(0).Word(0).Word(0).Word(7);
    bytes.Word(0xFFFF).Word(0x81).Text(u"").Word(6).Byte(1).Byte(2).Byte(3).Byte(4);
    const auto parsed = Parse(bytes);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->items[0].creationData, (std::vector<BYTE>{1, 2, 3, 4}));
}

TEST(DialogTemplateParser, ReadsTheExtendedForm)
{
    Bytes bytes;
    bytes.Word(1).Word(0xFFFF).Double(77).Double(0x200).Double(0x80000040);
    bytes.Word(1).Word(3).Word(4).Word(50).Word(60);
    bytes.Word(0xFFFF).Word(110).Word(0).Text(u"Ext");
    bytes.Word(8).Word(400).Byte(0).Byte(1).Text(u"Face").Align(4);
    bytes.Double(5).Double(6).Double(0x50000000).Word(7).Word(8).Word(9).Word(10).Double(70000);
    bytes.Text(u"msctls_progress32").Text(u"").Word(3).Byte(1).Byte(2).Byte(3);
    const auto parsed = Parse(bytes);
    ASSERT_TRUE(parsed);
    EXPECT_TRUE(parsed->extended);
    EXPECT_EQ(parsed->helpId, 77u);
    EXPECT_EQ(parsed->extendedStyle, 0x200u);
    EXPECT_EQ(parsed->style, 0x80000040u);
    EXPECT_EQ(parsed->menu.ordinal, WORD{110});
    EXPECT_EQ(parsed->faceName, u"Face");
    ASSERT_EQ(parsed->items.size(), 1u);
    EXPECT_EQ(parsed->items[0].helpId, 5u);
    EXPECT_EQ(parsed->items[0].extendedStyle, 6u);
    EXPECT_EQ(parsed->items[0].style, 0x50000000u);
    EXPECT_EQ(parsed->items[0].id, 70000u);
    EXPECT_EQ(parsed->items[0].className, u"msctls_progress32");
    EXPECT_EQ(parsed->items[0].creationData, (std::vector<BYTE>{1, 2, 3}));
}

TEST(DialogTemplateParser, EveryCutOfATemplateIsRefusedAndReadsNothingBehindIt)
{
    const Bytes whole = TwoItems();
    ASSERT_TRUE(Parse(whole));
    for (size_t size = 0; size < whole.Size(); ++size)
        EXPECT_FALSE(Parse(whole, size)) << size;
}

TEST(DialogTemplateParser, NullAndAnUnknownVersionAreRefused)
{
    EXPECT_FALSE(ParseDialogTemplate(nullptr));
    Bytes bytes;
    bytes.Word(2).Word(0xFFFF).Double(0).Double(0).Double(0).Word(0);
    bytes.Word(0).Word(0).Word(0).Word(0).Word(0).Word(0).Word(0);
    EXPECT_FALSE(Parse(bytes));
}

TEST(DialogTemplateParser, AnItemWithoutAClassIsRefused)
{
    Bytes bytes = Head(1);
    bytes.Align(4).Double(0).Double(0).Word(0).Word(0).Word(0).Word(0).Word(7);
    bytes.Text(u"").Text(u"text").Word(0);
    EXPECT_FALSE(Parse(bytes));
}
