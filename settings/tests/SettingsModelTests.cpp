// The store against the format written out a second time, on texts and lists that chance makes.
#include "SettingsModel.h"
#include "SettingsText.h"

#include "foundation/tests/TestFolder.h"
#include "settings/SettingsFile.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace
{

std::u16string RandomText(std::mt19937& random, const std::u16string& alphabet, size_t most)
{
    std::u16string text;
    for (size_t length = random() % (most + 1); length > 0; --length)
        text.push_back(alphabet[random() % alphabet.size()]);
    return text;
}

/// Pieces of lines in any order, so that every rule meets every other.
std::u16string RandomFile(std::mt19937& random)
{
    static const std::u16string pieces[] = {
        u"\r\n", u"\r\n", u"\r\n", u"\r", u"\n",  u"[",   u"]",      u"[ab]",   u"[xab]",
        u"[]",   u"[b]",  u"=",    u"=",  u" ",   u"\t",  u";",      u"::",     u"k",
        u"ab",   u"x",    u"k=v",  u"1",  u"a=1", u"b= ", u"\u30c6", u"\uFFFE", u"\uFEFF"};
    std::u16string text;
    for (size_t count = random() % 40; count > 0; --count)
        text += pieces[random() % std::size(pieces)];
    return text;
}

/// Every key of the model is read back as it stands there.
void ExpectSameValues(SettingsFile& store, const SettingsModel& model, const WCHAR* section,
                      const std::vector<std::u16string>& names)
{
    for (const std::u16string& name : names) {
        const WCHAR* text = nullptr;
        const i32 got = store.GetText(section, name.c_str(), &text);
        const std::u16string composed = SettingsModel::Composed(section, name);
        i32 expected = -10;
        for (const auto& [known, value] : model.keys) {
            if (known != composed)
                continue;
            expected = value ? 1 : -100;
            if (value && got == 1) {
                EXPECT_EQ(*value, text);
            }
        }
        bool hasSection = false;
        for (const auto& [known, count] : model.sections)
            hasSection |= known == section;
        EXPECT_EQ(hasSection ? expected : -1, got) << tavrix::testing::Utf8(composed.c_str());
    }
}

} // namespace

TEST(SettingsModel, AnyTextLoadsAndIsSavedByTheFormat)
{
    TestFolder folder;
    std::mt19937 random(20);
    int failed = 0;
    int loaded = 0;
    for (int round = 0; round < 1000; ++round) {
        const std::u16string text = RandomFile(random);
        // Without the mark, a mark that the text begins with would be taken for it.
        const bool marked = random() % 4 != 0 || text.starts_with(u"\uFEFF");
        const std::string bytes = marked ? FileOf(text) : Utf16Bytes(text);
        SCOPED_TRACE(tavrix::testing::Utf8(text.c_str()));
        folder.Write("s.ini", bytes);
        SettingsModel model;
        SettingsFile store;
        const i32 result = store.Load(folder.Path(u"s.ini").c_str());
        ASSERT_EQ(model.Load(text) ? 1 : -1, result);
        if (result < 1) {
            ++failed;
            EXPECT_EQ(-1, store.Close(1));
            ASSERT_EQ(bytes, folder.Read("s.ini")) << "a file that failed is not to be written";
            continue;
        }
        ++loaded;
        for (const WCHAR* section : {u"", u"ab", u"xab", u"b"})
            ExpectSameValues(store, model, section, {u"", u"k", u"a", u"b", u"ab", u"::"});
        EXPECT_EQ(1, store.Save(nullptr));
        ASSERT_EQ(FileOf(model.Saved()), folder.Read("s.ini"));
        ASSERT_EQ(1, store.Close(0));
    }
    // Chance is to have met both.
    EXPECT_LT(20, failed);
    EXPECT_LT(500, loaded);
}

TEST(SettingsModel, AnyListIsSavedByTheFormatAndLoadsAsItsTextSays)
{
    TestFolder folder;
    std::mt19937 random(21);
    for (int round = 0; round < 150; ++round) {
        folder.Write("s.ini", "");
        SettingsModel model;
        SettingsFile store;
        ASSERT_EQ(1, store.Load(folder.Path(u"s.ini").c_str()));
        for (u32 count = random() % 30; count > 0; --count) {
            const std::u16string section = RandomText(random, u"ab:[", 3);
            const std::u16string name = RandomText(random, u"k:1;", 3);
            const std::u16string value = RandomText(random, u"v =[];\t\r\u30c6", 6);
            ASSERT_LT(0, store.SetText(section.c_str(), name.c_str(), value.c_str()));
            model.Set(section, name, value);
        }
        ASSERT_EQ(1, store.Save(nullptr));
        const std::u16string text = model.Saved();
        SCOPED_TRACE(tavrix::testing::Utf8(text.c_str()));
        ASSERT_EQ(FileOf(text), folder.Read("s.ini"));
        // What was written is read back by the rules of reading, which need not be what was set.
        ASSERT_EQ(1, store.Close(0));
        SettingsModel again;
        const bool good = again.Load(text);
        ASSERT_EQ(good ? 1 : -1, store.Load(folder.Path(u"s.ini").c_str()));
        if (good) {
            ASSERT_EQ(1, store.Save(nullptr));
            ASSERT_EQ(FileOf(again.Saved()), folder.Read("s.ini"));
            ASSERT_EQ(1, store.Close(0));
        }
    }
}

TEST(SettingsModel, PlainListsComeBackWhole)
{
    TestFolder folder;
    std::mt19937 random(22);
    for (int round = 0; round < 40; ++round) {
        folder.Write("s.ini", "");
        SettingsFile store;
        ASSERT_EQ(1, store.Load(folder.Path(u"s.ini").c_str()));
        // Names that no section ends in, and values that are not empty and begin with no blank.
        std::vector<std::pair<std::u16string, std::u16string>> values;
        const u32 count = random() % 60;
        for (u32 i = 0; i < count; ++i) {
            const std::u16string name = tavrix::testing::Wide("key" + std::to_string(i));
            values.emplace_back(name,
                                u"v" + RandomText(random, u"ab =;[]\t\u30c6\xD83D\xDE00", 50));
            const WCHAR* section = i % 2 == 0 ? u"Tavrix" : u"Global";
            ASSERT_EQ(3, store.SetText(section, name.c_str(), values.back().second.c_str()));
        }
        ASSERT_EQ(1, store.Close(1));
        ASSERT_EQ(1, store.Load(folder.Path(u"s.ini").c_str()));
        for (size_t i = 0; i < values.size(); ++i) {
            const WCHAR* text = nullptr;
            const WCHAR* section = i % 2 == 0 ? u"Tavrix" : u"Global";
            ASSERT_EQ(1, store.GetText(section, values[i].first.c_str(), &text));
            EXPECT_EQ(values[i].second, text);
        }
        const std::string before = folder.Read("s.ini");
        ASSERT_EQ(1, store.Close(1));
        EXPECT_EQ(before, folder.Read("s.ini")) << "a second round changes nothing";
    }
}

TEST(SettingsModel, FilesOfManyBlocksAndFullListsLoadByTheFormat)
{
    TestFolder folder;
    std::mt19937 random(23);
    for (int round = 0; round < 6; ++round) {
        std::u16string text;
        for (int line = 0; line < 700; ++line) {
            if (random() % 20 == 0)
                text += u"[s" + tavrix::testing::Wide(std::to_string(random() % 9)) + u"]\r\n";
            else
                text += u"k" + tavrix::testing::Wide(std::to_string(random() % 2000)) + u"=" +
                        RandomText(random, u"abc =\r\n", 200) + u"\r\n";
        }
        // Now and then a line that is too long, or just not.
        if (round % 3 != 0)
            text.insert(text.size() / 2, u"\r\nl=" + std::u16string(16380 + random() % 3, u'x') +
                                             u"\r\nbehind=1\r\n");
        folder.Write("s.ini", FileOf(text));
        SettingsModel model;
        SettingsFile store;
        ASSERT_EQ(model.Load(text) ? 1 : -1, store.Load(folder.Path(u"s.ini").c_str()));
        ASSERT_EQ(1, store.Save(nullptr));
        EXPECT_EQ(FileOf(model.Saved()), folder.Read("s.ini")) << round;
        ASSERT_EQ(1, store.Close(0));
    }
}
