// The list against its rules written out a second time, on operations that chance makes.
#include "platform/testing/Testing.h"
#include "settings/PropertyList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <vector>

using namespace tavrix::testing;

namespace
{

// The list written out a second time: names and values in order, all kept as text. What is stored
// as bytes is marked, since it is no number.
struct ModelEntry {
    std::u16string name;
    std::optional<std::u16string> text;
    bool narrow = false;
};

i32 ModelSet(std::vector<ModelEntry>& model, const ModelEntry& entry)
{
    for (ModelEntry& known : model) {
        if (known.name == entry.name) {
            known = entry;
            return 5;
        }
    }
    if (model.size() == 512)
        return -1;
    model.push_back(entry);
    return 3;
}

// What reading `text` as a number gives: nothing where it is none. `sign` passes over one "-".
std::optional<u64> ModelNumber(const ModelEntry& entry, bool sign)
{
    if (!entry.text || entry.narrow)
        return {};
    u64 number = 0;
    for (size_t i = sign && entry.text->starts_with(u"-") ? 1 : 0; i < entry.text->size(); ++i) {
        const char16_t digit = (*entry.text)[i];
        if (digit < u'0' || digit > u'9')
            return {};
        number = number * 10 + (digit - u'0');
    }
    return number;
}

void ExpectSame(const PropertyList& list, const ModelEntry& entry)
{
    const WCHAR* name = entry.name.c_str();
    Variant wide{name, VariantWide, 0};
    Variant bytes{name, VariantNarrow, 0};
    ASSERT_EQ(entry.text ? 1 : -100, list.Get(&wide));
    ASSERT_EQ(entry.text ? 1 : -100, list.Get(&bytes));
    if (entry.text) {
        ASSERT_EQ(*entry.text, reinterpret_cast<const WCHAR*>(wide.value));
        ASSERT_EQ(Utf8(entry.text->c_str()), reinterpret_cast<const char*>(bytes.value));
    }
    u32 natural = 77;
    const std::optional<u64> asNatural = ModelNumber(entry, false);
    ASSERT_EQ(asNatural ? 1 : -100, list.GetUnsigned(name, &natural));
    ASSERT_EQ(asNatural ? std::min<u64>(*asNatural, 0xFFFFFFFF) : 77, natural);
    i32 number = 77;
    const std::optional<u64> asNumber = ModelNumber(entry, true);
    ASSERT_EQ(asNumber ? 1 : -100, list.GetSigned(name, &number));
    ASSERT_EQ(asNumber ? static_cast<u32>(*asNumber) : 77u, static_cast<u32>(number));
}

} // namespace

TEST(PropertyModel, DoesAsItsRulesSayOnAnyRunOfOperations)
{
    std::mt19937 random(11);
    PropertyList list;
    std::vector<ModelEntry> model;
    const WCHAR* const texts[] = {u"",           u"0",           u"12", u"-12",
                                  u"--1",        u"12x",         u"\t", u"4294967295",
                                  u"4294967296", u"99999999999", u"-",  u"a b"};
    for (int step = 0; step < 6000; ++step) {
        ModelEntry entry{u"n" + Wide(std::to_string(random() % 600)), std::nullopt};
        const WCHAR* name = entry.name.c_str();
        const u32 number = static_cast<u32>(random());
        const WCHAR* text = texts[random() % std::size(texts)];
        i32 result = 0;
        switch (random() % 6) {
        case 0:
            result = list.SetEmpty(name);
            break;
        case 1:
            entry.text = Wide(std::to_string(number));
            result = list.SetUnsigned(name, number);
            break;
        case 2:
            entry.text = Wide(std::to_string(static_cast<i32>(number)));
            result = list.SetSigned(name, static_cast<i32>(number));
            break;
        case 3:
            entry.text = text;
            entry.narrow = true;
            result = list.SetNarrow(name, Utf8(text).c_str());
            break;
        default:
            entry.text = text;
            result = list.SetWide(name, text);
        }
        ASSERT_EQ(ModelSet(model, entry), result) << "step " << step;
        ASSERT_EQ(static_cast<i32>(model.size()), list.Count());
        if (result > 0) {
            ASSERT_NO_FATAL_FAILURE(ExpectSame(list, entry));
        }
    }
    ASSERT_EQ(512u, model.size()) << "the full list is to be met";
    for (size_t i = 0; i < model.size(); ++i) {
        ASSERT_NO_FATAL_FAILURE(ExpectSame(list, model[i]));
        Variant item{nullptr, VariantWide, 0};
        ASSERT_EQ(model[i].text ? 1 : -100, list.GetAt(static_cast<u32>(i), &item));
        if (model[i].text) {
            ASSERT_EQ(model[i].name, item.name);
        }
    }
}
