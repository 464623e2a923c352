// The text that the file dialogs take their filters from.

#include "shell/FilterText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace std::string_literals;

namespace
{

constexpr WCHAR Canary = 0xA5A5;

/// The first `capacity` characters as they were written; none behind them may have changed.
std::u16string Build(u32 capacity, const FormatList& formats, i32 plugin = EveryPlugin)
{
    std::vector<WCHAR> buffer(capacity + 64, Canary);
    BuildFilterText(buffer.data(), capacity, formats, plugin);
    for (size_t i = capacity; i < buffer.size(); ++i)
        EXPECT_EQ(buffer[i], Canary) << "written behind " << capacity;
    return {buffer.data(), capacity};
}

std::u16string Padded(std::u16string text, size_t capacity)
{
    text.resize(capacity);
    return text;
}

} // namespace

TEST(FilterText, EachFormatsDescriptionAndPatternsStandInOrderEachWithItsZero)
{
    FormatList formats;
    ASSERT_EQ(formats.Add(2, u"First", u"*.a;*.bb"), Done);
    ASSERT_EQ(formats.Add(0, u"二番目", u"*.c"), Done);
    ASSERT_EQ(formats.Add(2, u"Third", u"*.d"), Done);
    EXPECT_EQ(Build(64, formats), Padded(u"First\0*.a;*.bb\0二番目\0*.c\0Third\0*.d\0"s, 64));
    EXPECT_EQ(Build(64, formats, 2), Padded(u"First\0*.a;*.bb\0Third\0*.d\0"s, 64));
    EXPECT_EQ(Build(64, formats, 1), Padded(u"", 64));
}

TEST(FilterText, AnEmptyListAndNoRoomGiveNothing)
{
    const FormatList formats;
    EXPECT_EQ(Build(8, formats), Padded(u"", 8));
    EXPECT_EQ(Build(0, formats), u"");
    BuildFilterText(nullptr, 8, formats);
}

// An empty text would hide from the dialog all that stands behind it.
TEST(FilterText, AFormatWithoutPatternsKeepsItsPlaceAndHidesNoOther)
{
    FormatList formats;
    ASSERT_EQ(formats.Add(0, u"Any", u""), Done);
    ASSERT_EQ(formats.Add(0, u"B", u"*.b"), Done);
    EXPECT_EQ(Build(16, formats), Padded(u"Any\0;\0B\0*.b\0"s, 16));
}

// Every capacity from nothing to more than enough: what does not fit in whole is lost with all that
// follows, and the two zeros of the end always stand.
TEST(FilterText, AnOverfullListLosesItsTailAndNothingIsWrittenBehindTheBuffer)
{
    const std::u16string pairs[] = {u"First\0*.a\0"s, u"S\0*.bb;*.c\0"s, u"Third\0*.d\0"s,
                                    u"4\0*.e\0"s};
    FormatList formats;
    ASSERT_EQ(formats.Add(0, u"First", u"*.a"), Done);
    ASSERT_EQ(formats.Add(0, u"S", u"*.bb;*.c"), Done);
    ASSERT_EQ(formats.Add(0, u"Third", u"*.d"), Done);
    ASSERT_EQ(formats.Add(0, u"4", u"*.e"), Done);
    for (u32 capacity = 1; capacity <= 48; ++capacity) {
        std::u16string expected;
        for (const std::u16string& pair : pairs) {
            if (expected.size() + pair.size() + 1 > capacity)
                break;
            expected += pair;
        }
        EXPECT_EQ(Build(capacity, formats), Padded(expected, capacity)) << capacity;
    }
}

TEST(FilterText, AFullListOfFormatsKeepsAsManyAsTheBufferHolds)
{
    FormatList formats;
    const std::u16string description(20, u'd');
    for (u32 i = 0; i < FormatList::Capacity; ++i)
        ASSERT_EQ(formats.Add(static_cast<i32>(i % 2), description.c_str(), u"*.jpg"), Done);
    std::u16string all;
    for (int i = 0; i < 303; ++i) // 303 times 27 characters are 8,181
        all += description + u"\0*.jpg\0"s;
    EXPECT_EQ(Build(8192, formats), Padded(all, 8192));
    EXPECT_EQ(Build(2048, formats, 1), Padded(all.substr(0, 27 * 75), 2048));
}
