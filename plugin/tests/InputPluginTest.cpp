// The wrappers around the exports of an INPUT plugin, with real libraries behind them.

#include "plugin/InputPlugin.h"

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"
#include "plugin/PluginHeap.h"
#include "plugin/tests/Watched.h"

#include <memory>

namespace
{

using plugintest::AllHeapsTaken;
using plugintest::Callbacks;
using plugintest::CurrentTold;
using plugintest::IsMapped;
using plugintest::Log;
using plugintest::Number;
using plugintest::PluginFolder;
using plugintest::WatchedStream;

/// A picture in the sample reader's own format: 2 by 2 pixels.
std::string SamplePicture()
{
    return std::string("\2\2") + "abcdef" + "ghijkl";
}

class InputPluginTest : public ::testing::Test
{
protected:
    InputPluginTest() { MemoryGauge::Sample(); }
    ~InputPluginTest() override
    {
        EXPECT_EQ(PluginHeap(), nullptr);
        tavrix::testing::Reset();
        MemoryGauge::Sample();
    }

    void Load(const std::string& fixture)
    {
        folder.Put(fixture, fixture + ".dll");
        ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), ForgetPaths), 1);
        ASSERT_EQ(plugin.LoadByIndex(0, 0), 1);
    }
    std::string Line(i32 line, size_t bytes)
    {
        u8* address = nullptr;
        EXPECT_EQ(image.LockLines(line, &address, nullptr), 1);
        return std::string(reinterpret_cast<char*>(address), bytes);
    }

    tavrix::testing::Scope scope;
    PluginFolder folder;
    InputPlugin plugin;
    Raster image;
};

TEST_F(InputPluginTest, NothingIsCalledWhenNothingIsLoaded)
{
    WatchedStream stream("");
    RasterInfo info = {};
    const PluginCallbacks callbacks = Callbacks();
    EXPECT_EQ(plugin.GetImageInfo(nullptr, &stream, &info), -3);
    EXPECT_EQ(plugin.GetImage(nullptr, &stream, &image, callbacks), -3);
    EXPECT_EQ(plugin.GetImageFast(nullptr, &stream, &image, callbacks), -3);
    EXPECT_EQ(plugin.Configure(nullptr, callbacks), -3);
    EXPECT_EQ(stream.log, Log{});
}

TEST_F(InputPluginTest, ReadsAPictureFromAStream)
{
    Load("good");
    WatchedStream stream(SamplePicture());
    EXPECT_EQ(plugin.GetImage(u"\\ignored.smp", &stream, &image, Callbacks()), 3);
    EXPECT_EQ(image.UnlockAll(), 1);
    RasterInfo info = {};
    info.size = sizeof(info);
    ASSERT_EQ(image.GetInfo(&info), 1);
    EXPECT_EQ(info.width, 2u);
    EXPECT_EQ(info.height, 2u);
    EXPECT_EQ(info.depth, 24u);
    EXPECT_EQ(Line(0, 6), "abcdef");
    EXPECT_EQ(Line(1, 6), "ghijkl");
    EXPECT_EQ(CurrentTold().progress, (std::vector<std::pair<u32, u32>>{{1, 2}, {2, 2}}));
}

TEST_F(InputPluginTest, ACallGoesInItsOrder)
{
    Load("good");
    WatchedStream stream(SamplePicture());
    EXPECT_EQ(plugin.GetImage(nullptr, &stream, &image, Callbacks()), 3);
    EXPECT_EQ(stream.log, (Log{"interface+heap", "read+heap", "release+heap"}));
    EXPECT_EQ(PluginHeap(), nullptr);
    EXPECT_TRUE(stream.wasZeroed);
    EXPECT_EQ(stream.recordSize, sizeof(void*) == 8 ? 48u : 24u);
    EXPECT_EQ(Number(u"record"), sizeof(void*) == 8 ? 48u : 24u);
    EXPECT_EQ(Number(u"rasters"), sizeof(void*) == 8 ? 136u : 68u);
    EXPECT_EQ(Number(u"palettes"), sizeof(void*) == 8 ? 88u : 44u);
}

TEST_F(InputPluginTest, WithAStreamThePathIsNotGiven)
{
    Load("good");
    WatchedStream stream(SamplePicture());
    EXPECT_EQ(plugin.GetImage(u"\\a.smp", &stream, &image, Callbacks()), 3);
    EXPECT_EQ(Number(u"path"), 0u);
    EXPECT_EQ(Number(u"stream"), 1u);
}

TEST_F(InputPluginTest, WithoutAStreamThePathIsGivenAndNoRecord)
{
    Load("good");
    EXPECT_EQ(plugin.GetImage(u"\\a.smp", nullptr, &image, Callbacks()), 2);
    EXPECT_EQ(Number(u"path"), 1u);
    EXPECT_EQ(Number(u"stream"), 0u);
}

TEST_F(InputPluginTest, TheStreamIsReleasedAlsoWhenThePluginFails)
{
    Load("good");
    WatchedStream shortened("\2\2abc");
    EXPECT_EQ(plugin.GetImage(nullptr, &shortened, &image, Callbacks()), -8);
    EXPECT_EQ(shortened.log.back(), "release+heap");
    EXPECT_EQ(shortened.Open(), 0u);
}

TEST_F(InputPluginTest, TheCountOfOpenRecordsIsTheSameAfterEveryCall)
{
    Load("good");
    WatchedStream stream(SamplePicture());
    PluginStreamRecord held = {};
    held.size = sizeof(held);
    ASSERT_EQ(stream.GetInterface(&held), 1);
    RasterInfo info = {};
    (void)plugin.GetImage(nullptr, &stream, &image, Callbacks());
    EXPECT_EQ(stream.Open(), 1u);
    (void)plugin.GetImageFast(nullptr, &stream, &image, Callbacks());
    EXPECT_EQ(stream.Open(), 1u);
    (void)plugin.GetImageInfo(nullptr, &stream, &info);
    EXPECT_EQ(stream.Open(), 1u);
}

TEST_F(InputPluginTest, ARefusedInterfaceIsHandedOnEmpty)
{
    Load("no_configure"); // reads nothing from what it gets
    WatchedStream stream("");
    stream.refused = true;
    EXPECT_EQ(plugin.GetImage(nullptr, &stream, &image, Callbacks()), 11);
    EXPECT_EQ(stream.log, (Log{"interface+heap", "release+heap"}));
}

TEST_F(InputPluginTest, ThePluginMayGiveUpWhenTheUserDoes)
{
    Load("good");
    WatchedStream stream(SamplePicture());
    const PluginCallbacks callbacks = Callbacks();
    CurrentTold().progressAnswer = -1;
    EXPECT_EQ(plugin.GetImage(nullptr, &stream, &image, callbacks), -9);
    EXPECT_EQ(CurrentTold().progress.size(), 1u);
}

TEST_F(InputPluginTest, WithoutAHeapThePluginIsNotCalled)
{
    Load("good");
    WatchedStream stream(SamplePicture());
    const PluginCallbacks callbacks = Callbacks();
    const AllHeapsTaken taken;
    EXPECT_EQ(plugin.GetImage(nullptr, &stream, &image, callbacks), -2);
    EXPECT_EQ(plugin.GetImageFast(nullptr, &stream, &image, callbacks), -2);
    EXPECT_EQ(stream.log, Log{});
    EXPECT_TRUE(CurrentTold().numbers.empty());
}

TEST_F(InputPluginTest, GetImageInfoHasNoHeap)
{
    Load("good");
    WatchedStream stream(SamplePicture());
    RasterInfo info = {};
    EXPECT_EQ(plugin.GetImageInfo(u"\\a.smp", &stream, &info), 7);
    EXPECT_EQ(info.width, 0u); // no path beside a stream
    EXPECT_EQ(info.height, sizeof(void*) == 8 ? 48u : 24u);
    EXPECT_EQ(stream.log, (Log{"interface", "release"}));
    EXPECT_EQ(plugin.GetImageInfo(u"\\a.smp", nullptr, &info), 7);
    EXPECT_EQ(info.width, u'\\');
    EXPECT_EQ(info.height, 0u);
}

TEST_F(InputPluginTest, TheQuickDecodeIsCalledWithPathsOnly)
{
    Load("good");
    WatchedStream stream(SamplePicture());
    EXPECT_EQ(plugin.GetImageFast(u"\\a.smp", nullptr, &image, Callbacks()), 4);
    EXPECT_EQ(Number(u"export"), 2u);
    EXPECT_EQ(Number(u"path"), 1u);
    EXPECT_EQ(plugin.GetImageFast(u"\\a.smp", &stream, &image, Callbacks()), 3);
    EXPECT_EQ(Number(u"export"), 1u);
    EXPECT_EQ(Number(u"path"), 0u);
}

TEST_F(InputPluginTest, WithoutAQuickDecodeTheFullOneIsCalled)
{
    Load("no_configure");
    WatchedStream stream("");
    EXPECT_EQ(plugin.GetImageFast(u"\\a.smp", nullptr, &image, Callbacks()), 11);
    EXPECT_EQ(plugin.GetImageFast(nullptr, &stream, &image, Callbacks()), 11);
}

TEST_F(InputPluginTest, AQuickDecodeAloneTakesNoStream)
{
    Load("fast_only");
    WatchedStream stream("");
    EXPECT_EQ(plugin.GetImageFast(u"\\a.smp", nullptr, &image, Callbacks()), 12);
    EXPECT_EQ(plugin.GetImageFast(nullptr, &stream, &image, Callbacks()), -3);
    EXPECT_EQ(plugin.GetImage(u"\\a.smp", nullptr, &image, Callbacks()), -3);
    EXPECT_EQ(stream.log, Log{});
}

TEST_F(InputPluginTest, ConfigureGetsTheOwnerAndThreeCallbacks)
{
    Load("good");
    int window = 0;
    const HWND owner = reinterpret_cast<HWND>(&window);
    EXPECT_EQ(plugin.Configure(owner, Callbacks()), 0);
    EXPECT_EQ(Number(u"owner"), reinterpret_cast<uintptr_t>(owner));
    EXPECT_EQ(CurrentTold().messages, std::vector<std::u16string>{u"configured"});
}

TEST_F(InputPluginTest, AMissingConfigureIsAFailureAndProcessingGoesOn)
{
    Load("no_configure");
    EXPECT_EQ(plugin.Configure(nullptr, Callbacks()), -3);
    EXPECT_EQ(plugin.GetImage(u"\\a", nullptr, &image, Callbacks()), 11);
}

TEST_F(InputPluginTest, APluginWithoutItsExportIsLoadedAndConfigured)
{
    Load("configure_only");
    EXPECT_EQ(plugin.Configure(nullptr, Callbacks()), 1);
    EXPECT_EQ(plugin.GetImage(u"\\a", nullptr, &image, Callbacks()), -3);
}

TEST_F(InputPluginTest, TheExportsGoWithTheLibrary)
{
    Load("good");
    ASSERT_EQ(plugin.Unload(), 1);
    EXPECT_EQ(plugin.Configure(nullptr, Callbacks()), -3);
    EXPECT_EQ(plugin.GetImage(u"\\a", nullptr, &image, Callbacks()), -3);
    EXPECT_EQ(plugin.GetImageFast(u"\\a", nullptr, &image, Callbacks()), -3);
    EXPECT_EQ(plugin.GetImageInfo(u"\\a", nullptr, nullptr), -3);
}

TEST_F(InputPluginTest, ExceptionsBecomeFailuresAndEverythingIsGivenBack)
{
    Load("throws");
    WatchedStream stream("");
    EXPECT_EQ(plugin.GetImage(nullptr, &stream, &image, Callbacks()), -1);
    EXPECT_EQ(stream.log, (Log{"interface+heap", "release+heap"}));
    EXPECT_EQ(stream.Open(), 0u);
    EXPECT_EQ(PluginHeap(), nullptr);
    EXPECT_EQ(plugin.Configure(nullptr, Callbacks()), -1);
    EXPECT_EQ(plugin.Unload(), 1);
    EXPECT_FALSE(IsMapped("throws.dll"));
}

TEST_F(InputPluginTest, SpoiledTablesAreWholeAtTheNextCall)
{
    Load("spoils");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(plugin.GetImage(u"\\a", nullptr, &image, Callbacks()), 1) << i;
        EXPECT_EQ(Number(u"rasters"), sizeof(void*) == 8 ? 136u : 68u) << i;
        EXPECT_EQ(Number(u"palettes"), sizeof(void*) == 8 ? 88u : 44u) << i;
    }
}

TEST_F(InputPluginTest, LinesLeftLockedStayThePicturesOwn)
{
    Load("leaves_locked");
    EXPECT_EQ(plugin.GetImage(u"\\a", nullptr, &image, Callbacks()), 3);
    EXPECT_EQ(plugin.Unload(), 1);
    EXPECT_EQ(image.UnlockAll(), 1);
    EXPECT_EQ(Line(2, 1), std::string(1, '\0'));
}

TEST_F(InputPluginTest, WhatAPluginForgetsIsGivenBackWithItsFiles)
{
    namespace fs = std::filesystem;
    Load("forgets");
    tavrix::testing::SetFreeMemory(0);
    MemoryGauge::Sample();
    const auto files = [] {
        int found = 0;
        for (const auto& entry : fs::directory_iterator(tavrix::testing::HostPath(u"\\Temp")))
            found += entry.path().extension() == ".tmp";
        return found;
    };
    EXPECT_EQ(plugin.GetImage(u"\\a", nullptr, &image, Callbacks()), 1);
    EXPECT_EQ(Number(u"refused"), 1u);
    EXPECT_EQ(files(), 5); // the lines of the host's picture, which the call made with folders
    image.Reset();
    EXPECT_EQ(files(), 0);
}

TEST_F(InputPluginTest, AStreamKeptFromACallIsOfNoUseLater)
{
    unsetenv("TAVRIX_FIXTURE_KEPT"); // see keeps_tables.c
    Load("keeps_tables");
    auto first = std::make_unique<WatchedStream>("abc");
    EXPECT_EQ(plugin.GetImage(nullptr, first.get(), &image, Callbacks()), 1);
    first.reset();
    WatchedStream second("defg");
    EXPECT_EQ(plugin.GetImage(nullptr, &second, &image, Callbacks()), 1);
    EXPECT_EQ(Number(u"used"), 10u);
    EXPECT_EQ(Number(u"accepted"), 0u);
    // Nor was the running call's stream reached by the handle of the one before.
    EXPECT_EQ(second.log, (Log{"interface+heap", "release+heap"}));
}

TEST_F(InputPluginTest, ASpoiledRecordHarmsNothing)
{
    Load("wipes_tables");
    WatchedStream stream("abc");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(plugin.GetImage(nullptr, &stream, &image, Callbacks()), 1);
        EXPECT_EQ(stream.Open(), 0u);
        EXPECT_EQ(stream.recordSize, sizeof(void*) == 8 ? 48u : 24u);
    }
}

TEST_F(InputPluginTest, AThreadOfThePluginMayReadTheStreamDuringTheCall)
{
    Load("own_thread");
    WatchedStream stream("abc");
    EXPECT_EQ(plugin.GetImage(nullptr, &stream, &image, Callbacks()), 1);
    EXPECT_EQ(static_cast<i32>(Number(u"read")), 1);
    EXPECT_EQ(stream.log, (Log{"interface+heap", "read", "release+heap"}));
}

} // namespace
