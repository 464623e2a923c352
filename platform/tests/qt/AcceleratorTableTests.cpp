#include "platform/qt/AcceleratorTable.h"
#include "platform/tests/qt/Bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace tavrix::platform;
using tavrix::testing::Bytes;

namespace
{

std::optional<std::vector<Accelerator>> Parse(const Bytes& bytes, size_t size)
{
    const auto block = std::make_unique<BYTE[]>(size);
    std::copy_n(bytes.Data(), size, block.get());
    return ParseAccelerators(block.get(), size);
}

Bytes Sample()
{
    Bytes bytes;
    bytes.Word(0x01 | 0x08).Word('S').Word(40004).Word(0);
    bytes.Word(0x01 | 0x08 | 0x04).Word('S').Word(40184).Word(0);
    bytes.Word(0x01 | 0x10 | 0x04).Word('V').Word(40195).Word(0);
    return bytes.Word(0x80).Word('z').Word(40205).Word(0).Word(0x01).Word('X').Word(1).Word(0);
}

} // namespace

TEST(AcceleratorTable, EndsAtTheEntryThatIsMarkedLast)
{
    const auto table = Parse(Sample(), Sample().Size());
    ASSERT_TRUE(table);
    EXPECT_EQ(table->size(), 4u);
}

TEST(AcceleratorTable, ModifiersMustAgreeExactly)
{
    const auto table = Parse(Sample(), Sample().Size());
    ASSERT_TRUE(table);
    EXPECT_EQ(FindVirtualKey(*table, 'S', {false, true, false})->command, 40004);
    EXPECT_EQ(FindVirtualKey(*table, 'S', {true, true, false})->command, 40184);
    EXPECT_EQ(FindVirtualKey(*table, 'V', {true, false, true})->command, 40195);
    EXPECT_EQ(FindVirtualKey(*table, 'S', {false, false, false}), nullptr);
    EXPECT_EQ(FindVirtualKey(*table, 'S', {false, true, true}), nullptr);
}

TEST(AcceleratorTable, ACharacterIsNoVirtualKey)
{
    const auto table = Parse(Sample(), Sample().Size());
    ASSERT_TRUE(table);
    EXPECT_EQ(FindCharacter(*table, 'z', false)->command, 40205);
    EXPECT_EQ(FindCharacter(*table, 'S', false), nullptr);
    EXPECT_EQ(FindVirtualKey(*table, 'z', {}), nullptr);
}

TEST(AcceleratorTable, ATableCutInsideAnEntryKeepsTheWholeOnes)
{
    const Bytes whole = Sample();
    for (size_t size = 0; size < whole.Size(); ++size) {
        const auto table = Parse(whole, size);
        const size_t entries = std::min<size_t>(size / 8, 4);
        ASSERT_EQ(table.has_value(), entries != 0) << size;
        if (table) {
            EXPECT_EQ(table->size(), entries) << size;
        }
    }
    EXPECT_FALSE(ParseAccelerators(nullptr, 100));
}
