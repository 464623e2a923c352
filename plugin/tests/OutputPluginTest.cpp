// The calls of an OUTPUT plugin, with real libraries behind them.

#include "plugin/OutputPlugin.h"

#include "image/Raster.h"
#include "plugin/FunctionTables.h"
#include "plugin/tests/Watched.h"

namespace
{

using plugintest::AllHeapsTaken;
using plugintest::Callbacks;
using plugintest::CurrentTold;
using plugintest::Log;
using plugintest::Number;
using plugintest::PluginFolder;
using plugintest::WatchedStream;

class OutputPluginTest : public ::testing::Test
{
protected:
    OutputPluginTest()
    {
        EXPECT_EQ(image.Create(3, 2, 24, nullptr, nullptr), 1);
        for (i32 y = 0; y < 2; ++y)
            for (i32 x = 0; x < 3; ++x)
                EXPECT_EQ(image.SetPixel(x, y, Pixel(x, y)), 1);
    }
    ~OutputPluginTest() override { EXPECT_EQ(PluginHeap(), nullptr); }

    /// Bytes 0, 1 and 2 of the pixel are 16y + x, 64 + 16y + x and 128 + 16y + x.
    static u32 Pixel(i32 x, i32 y)
    {
        const u32 first = static_cast<u32>(16 * y + x);
        return first << 8 | (64 + first) << 16 | (128 + first) << 24;
    }
    /// The whole picture in the writer's own format.
    static std::string Encoded()
    {
        std::string bytes = "\3\2";
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                for (int channel = 0; channel < 3; ++channel)
                    bytes += static_cast<char>(64 * channel + 16 * y + x);
        return bytes;
    }
    void Load(const std::string& fixture)
    {
        folder.Put(fixture, fixture + ".dll", "OUTPUT");
        ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), ForgetPaths), 1);
        ASSERT_EQ(plugin.LoadByIndex(0, 0), 1);
    }

    tavrix::testing::Scope scope;
    PluginFolder folder;
    OutputPlugin plugin;
    Raster image;
};

TEST_F(OutputPluginTest, WritesAPictureToAStream)
{
    Load("good_output");
    WatchedStream stream("");
    EXPECT_EQ(plugin.PutImage(nullptr, &stream, &image, Callbacks()), 3);
    EXPECT_EQ(stream.Bytes(), Encoded());
    EXPECT_EQ(CurrentTold().progress, (std::vector<std::pair<u32, u32>>{{1, 2}, {2, 2}}));
}

TEST_F(OutputPluginTest, ACallGoesInItsOrder)
{
    Load("good_output");
    WatchedStream stream("");
    EXPECT_EQ(plugin.PutImage(nullptr, &stream, &image, Callbacks()), 3);
    EXPECT_EQ(stream.log, (Log{"interface+heap", "write+heap", "release+heap"}));
    EXPECT_TRUE(stream.wasZeroed);
    EXPECT_EQ(stream.recordSize, sizeof(void*) == 8 ? 48u : 24u);
    EXPECT_EQ(Number(u"record"), sizeof(void*) == 8 ? 48u : 24u);
}

TEST_F(OutputPluginTest, ArgumentsArriveInTheirPlaces)
{
    Load("good_output");
    const WCHAR* path = u"\\a.bad";
    EXPECT_EQ(plugin.PutImage(path, nullptr, &image, Callbacks()), 2);
    EXPECT_EQ(Number(u"path"), reinterpret_cast<uintptr_t>(path));
    EXPECT_EQ(Number(u"stream"), 0u);
    EXPECT_EQ(Number(u"image"), reinterpret_cast<uintptr_t>(ToHandle(&image)));
    EXPECT_EQ(Number(u"rasters' size"), sizeof(void*) == 8 ? 136u : 68u);
    EXPECT_EQ(Number(u"palettes' size"), sizeof(void*) == 8 ? 88u : 44u);
}

TEST_F(OutputPluginTest, WithAStreamThePathIsNotGiven)
{
    Load("good_output");
    WatchedStream stream("");
    EXPECT_EQ(plugin.PutImage(u"\\a.bad", &stream, &image, Callbacks()), 3);
    EXPECT_EQ(Number(u"path"), 0u);
    EXPECT_EQ(Number(u"stream"), 1u);
}

TEST_F(OutputPluginTest, TheStreamIsReleasedAlsoWhenThePluginFails)
{
    Load("good_output");
    WatchedStream stream("");
    stream.full = true;
    EXPECT_EQ(plugin.PutImage(nullptr, &stream, &image, Callbacks()), -7);
    EXPECT_EQ(stream.log, (Log{"interface+heap", "write+heap", "release+heap"}));
    EXPECT_EQ(stream.Open(), 0u);
}

TEST_F(OutputPluginTest, TheStreamIsReleasedAlsoWhenThePluginThrows)
{
    Load("output_throws_run");
    WatchedStream stream("");
    EXPECT_EQ(plugin.PutImage(nullptr, &stream, &image, Callbacks()), -1);
    EXPECT_EQ(stream.log, (Log{"interface+heap", "release+heap"}));
    EXPECT_EQ(stream.Open(), 0u);
}

TEST_F(OutputPluginTest, TheCountOfOpenRecordsIsTheSameAfterEveryCall)
{
    Load("good_output");
    WatchedStream stream("");
    PluginStreamRecord held = {};
    held.size = sizeof(held);
    ASSERT_EQ(stream.GetInterface(&held), 1);
    EXPECT_EQ(plugin.PutImage(nullptr, &stream, &image, Callbacks()), 3);
    EXPECT_EQ(stream.Open(), 1u);
    stream.full = true;
    EXPECT_EQ(plugin.PutImage(nullptr, &stream, &image, Callbacks()), -7);
    EXPECT_EQ(stream.Open(), 1u);
}

TEST_F(OutputPluginTest, WithoutAHeapNoStreamIsTouched)
{
    Load("good_output");
    WatchedStream stream("");
    const AllHeapsTaken taken;
    EXPECT_EQ(plugin.PutImage(nullptr, &stream, &image, Callbacks()), -2);
    EXPECT_EQ(stream.log, Log{});
}

TEST_F(OutputPluginTest, WithoutTheExportNoStreamIsTouched)
{
    Load("output_without_processing");
    WatchedStream stream("");
    EXPECT_EQ(plugin.PutImage(nullptr, &stream, &image, Callbacks()), -3);
    EXPECT_EQ(stream.log, Log{});
}

TEST_F(OutputPluginTest, ThePluginMayGiveUpWhenTheUserDoes)
{
    Load("good_output");
    WatchedStream stream("");
    const PluginCallbacks callbacks = Callbacks();
    CurrentTold().progressAnswer = -1;
    EXPECT_EQ(plugin.PutImage(nullptr, &stream, &image, callbacks), -9);
}

TEST_F(OutputPluginTest, ConfigureGetsTheOwnerAndThreeCallbacks)
{
    Load("good_output");
    const HWND owner = reinterpret_cast<HWND>(uintptr_t{0x4560});
    EXPECT_EQ(plugin.Configure(owner, Callbacks()), 21);
    EXPECT_EQ(Number(u"owner"), 0x4560u);
    EXPECT_EQ(CurrentTold().messages, std::vector<std::u16string>{u"configured"});
    EXPECT_EQ(CurrentTold().captions, std::vector<std::u16string>{u"caption"});
    EXPECT_EQ(CurrentTold().flags, std::vector<u32>{64});
}

TEST_F(OutputPluginTest, AWriterThatChangesThePictureHarmsNothingElse)
{
    for (const char* fixture : {"output_depth_8", "output_depth_32", "output_no_lines",
                                "output_no_width", "output_other_size", "output_frees_picture"}) {
        Load(fixture);
        EXPECT_EQ(plugin.PutImage(u"\\a.bad", nullptr, &image, Callbacks()), 1) << fixture;
        (void)image.UnlockAll();
        std::filesystem::remove_all(folder.Host() / "OUTPUT");
    }
    EXPECT_EQ(image.Create(3, 2, 24, nullptr, nullptr), 1);
}

} // namespace
