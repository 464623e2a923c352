// What the readers say about themselves, and how they come and go.

#include "standard-plugins/tests/support/Decoding.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include <TestPaths.h>

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::IsMapped;
using plugintest::LibraryFile;
using plugintest::PluginLibrary;

namespace
{

struct Reader {
    const char* file;
    const char16_t* name;
    const char16_t* japaneseName;
    const char16_t* format;
    const char16_t* japaneseFormat;
    const char16_t* patterns;
};

const Reader readers[] = {
    {"INPUT/JPEG", u"JPEG reader", u"JPEG 読み込み", u"JPEG image (*.jpg)", u"JPEG 画像 (*.jpg)",
     u"*.jpg;*.jpeg;*.jpe;*.jfif"},
    {"INPUT/PNG", u"PNG reader", u"PNG 読み込み", u"PNG image (*.png)", u"PNG 画像 (*.png)",
     u"*.png"},
};

class ReaderInfo : public testing::TestWithParam<Reader>
{
protected:
    PluginLibrary plugin{GetParam().file};
};

INSTANTIATE_TEST_SUITE_P(Both, ReaderInfo, testing::ValuesIn(readers),
                         [](const auto& entry) { return std::string(entry.param.file + 6); });

std::string OutputOf(const std::string& command)
{
    std::string text;
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 512> part;
    while (pipe && fgets(part.data(), part.size(), pipe))
        text += part.data();
    if (pipe)
        pclose(pipe);
    return text;
}

} // namespace

TEST_P(ReaderInfo, IdentifiesItselfAsInput)
{
    ASSERT_TRUE(plugin.IsLoaded());
    EXPECT_EQ(plugin.Text(0), u"TX_INPUT");
}

TEST_P(ReaderInfo, TellsNameVersionOwnerDateAndPurpose)
{
    EXPECT_EQ(plugin.Text(1), GetParam().name);
    EXPECT_FALSE(plugin.Text(2).empty());
    EXPECT_EQ(plugin.Text(3), u"Copyright (c) 2026 The Tavrix authors");
    EXPECT_EQ(plugin.Text(4).size(), 10u); // year-month-day
    EXPECT_GT(plugin.Text(5).size(), 10u);
}

TEST_P(ReaderInfo, OffersOneFormat)
{
    EXPECT_EQ(plugin.Text(0x10000), GetParam().format);
    EXPECT_EQ(plugin.Text(0x10001), GetParam().patterns);
    TavrixChar buffer[64];
    EXPECT_LT(plugin.getPluginInfo(0x10002, buffer, 64), 0);
    EXPECT_LT(plugin.getPluginInfo(0x10003, buffer, 64), 0);
}

TEST_P(ReaderInfo, RefusesIndexesThatItDoesNotKnow)
{
    for (const uint32_t index : {6u, 7u, 0xffffu, 0x10004u, 0x7fffffffu, 0xffffffffu}) {
        TavrixChar buffer[8] = {u'u', 0};
        EXPECT_LT(plugin.getPluginInfo(index, buffer, 8), 0) << index;
        EXPECT_EQ(buffer[0], u'u') << index;
    }
}

TEST_P(ReaderInfo, CutsTextToTheCapacityWithAFinalZero)
{
    TavrixChar buffer[6] = {9, 9, 9, 9, 9, 9};
    EXPECT_EQ(plugin.getPluginInfo(0, buffer, 4), 1);
    EXPECT_EQ(std::u16string(buffer), u"TX_");
    EXPECT_EQ(buffer[4], 9);
    EXPECT_EQ(plugin.getPluginInfo(0, buffer, 1), 1);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(buffer[1], u'X');
    TavrixChar exact[9];
    EXPECT_EQ(plugin.getPluginInfo(0, exact, 9), 1);
    EXPECT_EQ(std::u16string(exact), u"TX_INPUT");
}

TEST_P(ReaderInfo, RefusesABufferThatIsNone)
{
    TavrixChar buffer[1] = {7};
    EXPECT_LT(plugin.getPluginInfo(0, nullptr, 100), 0);
    EXPECT_LT(plugin.getPluginInfo(0, buffer, 0), 0);
    EXPECT_EQ(buffer[0], 7);
}

TEST_P(ReaderInfo, SpeaksJapaneseWhenToldAndOnlyThen)
{
    const std::u16string english = plugin.Text(5);
    EXPECT_GE(plugin.setLanguage(17), 0);
    EXPECT_EQ(plugin.Text(1), GetParam().japaneseName);
    EXPECT_EQ(plugin.Text(0x10000), GetParam().japaneseFormat);
    EXPECT_EQ(plugin.Text(0x10001), GetParam().patterns);
    EXPECT_EQ(plugin.Text(0), u"TX_INPUT");
    EXPECT_NE(plugin.Text(5), english);
    EXPECT_GE(plugin.setLanguage(9), 0);
    EXPECT_EQ(plugin.Text(1), GetParam().name);
}

TEST_P(ReaderInfo, ForgetsTheLanguageWhenItIsUnloaded)
{
    {
        PluginLibrary other(GetParam().file == std::string("INPUT/PNG") ? "INPUT/JPEG"
                                                                        : "INPUT/PNG");
        EXPECT_GE(other.setLanguage(17), 0);
        EXPECT_EQ(plugin.Text(1), GetParam().name); // each library has a language of its own
    }
    PluginLibrary again(GetParam().file);
    EXPECT_EQ(again.Text(1), GetParam().name);
}

TEST_P(ReaderInfo, ConfigureAsksNothingAndGoesOn)
{
    EXPECT_EQ(plugin.configure(nullptr, nullptr, nullptr, nullptr), 1);
}

TEST_P(ReaderInfo, ExportsTheFunctionsOfItsKindAndNothingElse)
{
    EXPECT_EQ(OutputOf("nm -D --defined-only --format=just-symbols " +
                       LibraryFile(GetParam().file) + " | LC_ALL=C sort"),
              "Configure\nGetImage\nGetImageInfo\nGetPluginInfo\nSetLanguage\n");
    EXPECT_EQ(plugin.getImageFast, nullptr);
}

TEST_P(ReaderInfo, NeedsNeitherTheToolkitNorTheProgramNorTheCxxLibrary)
{
    const std::string needed =
        OutputOf("objdump -p " + LibraryFile(GetParam().file) + " | grep NEEDED");
    EXPECT_NE(needed.find("libc.so"), std::string::npos);
    for (const char* library : {"libQt", "tavrix", "libstdc++"})
        EXPECT_EQ(needed.find(library), std::string::npos) << library << " in\n" << needed;
}

TEST_P(ReaderInfo, RefusesMissingArguments)
{
    Canvas canvas;
    ByteStream stream("not a picture");
    const auto call = [this](const TavrixChar* path, PluginStreamRecord* record,
                             TavrixImageHandle image, RasterFunctionTable* table) {
        return plugin.getImage(path, record, image, table, nullptr, nullptr, nullptr, nullptr,
                               nullptr);
    };
    EXPECT_LT(call(u"\\picture", nullptr, canvas.Handle(), canvas.Table()), 0);
    EXPECT_LT(call(nullptr, nullptr, canvas.Handle(), canvas.Table()), 0);
    EXPECT_LT(call(nullptr, &stream.record, nullptr, canvas.Table()), 0);
    EXPECT_LT(call(nullptr, &stream.record, canvas.Handle(), nullptr), 0);
    PluginStreamRecord small = stream.record;
    small.size = sizeof small - 1;
    EXPECT_LT(call(nullptr, &small, canvas.Handle(), canvas.Table()), 0);
    PluginStreamRecord deaf = stream.record;
    deaf.read = nullptr;
    EXPECT_LT(call(nullptr, &deaf, canvas.Handle(), canvas.Table()), 0);
    RasterFunctionTable table = *canvas.Table();
    table.RasterLockLines = nullptr;
    EXPECT_LT(call(nullptr, &stream.record, canvas.Handle(), &table), 0);
    table = *canvas.Table();
    table.size = sizeof table - 1;
    EXPECT_LT(call(nullptr, &stream.record, canvas.Handle(), &table), 0);
    EXPECT_EQ(canvas.allocations, 0);
    EXPECT_EQ(stream.reads, 0);
}

TEST(ReaderLibraries, AreReallyUnmappedWhenTheyAreUnloaded)
{
    for (const Reader& reader : readers) {
        const std::string tail = std::string(reader.file) + ".dll";
        {
            PluginLibrary plugin(reader.file);
            ASSERT_TRUE(plugin.IsLoaded());
            EXPECT_TRUE(IsMapped(tail));
            Canvas canvas;
            ByteStream stream("\xff\xd8 or nothing at all");
            EXPECT_LT(plugintest::Decode(plugin, stream, canvas), 0);
        }
        EXPECT_FALSE(IsMapped(tail)) << tail;
    }
}

TEST(ReaderLibraries, AnswerWithinAMillisecondOfLoading)
{
    constexpr double most = 1;
    for (const Reader& reader : readers) {
        const std::string told = OutputOf(std::string(TAVRIX_BINARY_DIR) + "/tools/load-plugin " +
                                          LibraryFile(reader.file));
        ASSERT_FALSE(told.empty()) << reader.file;
        const double best = std::stod(told);
        EXPECT_GT(best, 0);
        RecordProperty(std::string(reader.file + 6) + "_milliseconds", std::to_string(best));
        EXPECT_LT(best, most) << reader.file;
    }
}
