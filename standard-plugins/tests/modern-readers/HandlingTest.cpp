// How the readers use what the host gives them, and what they leave behind.

#include "standard-plugins/tests/modern-readers/Formats.h"

#include <chrono>
#include <filesystem>
#include <thread>

#include <dlfcn.h>

using moderntest::EachFormat;
using moderntest::formats;
using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::FirstDifference;
using plugintest::IsMapped;
using plugintest::MemoryInUse;
using plugintest::Pixel;
using plugintest::PluginLibrary;

namespace
{

INSTANTIATE_TEST_SUITE_P(Each, EachFormat, testing::ValuesIn(formats), moderntest::NameOfFormat);

size_t CountEntries(const char* folder)
{
    size_t count = 0;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        ++count;
    return count;
}

// Threads that were joined may stand in the list for a moment yet.
size_t ThreadsAfterAWhile(size_t expected)
{
    for (int i = 0; i < 100 && CountEntries("/proc/self/task") > expected; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return CountEntries("/proc/self/task");
}

// A decode of each kind of end: whole, broken off, refused.
void DecodeInEveryWay(const PluginLibrary& plugin, const std::string& file)
{
    for (const size_t part : {file.size(), file.size() / 2, size_t{40}, size_t{0}}) {
        ByteStream stream(file.substr(0, part));
        Canvas canvas;
        (void)Decode(plugin, stream, canvas);
    }
    CurrentHost().refuseFrom = 2;
    ByteStream stream(file);
    Canvas canvas;
    (void)Decode(plugin, stream, canvas);
    CurrentHost() = {};
}

} // namespace

TEST_P(EachFormat, TakesAStreamOfSingleBytesLikeAnyOther)
{
    const std::string file = Plain();
    ByteStream whole(file);
    Canvas expected;
    ASSERT_EQ(Decode(plugin, whole, expected), 1);
    for (const uint32_t most : {1u, 7u, 1000u}) {
        ByteStream stream(file, most);
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        EXPECT_EQ(FirstDifference(canvas, expected.width, expected.height,
                                  [&](uint32_t x, uint32_t y) { return expected.At(x, y); }),
                  "")
            << most;
    }
}

TEST_P(EachFormat, ReportsInSmallStepsAndTheEnd)
{
    ByteStream stream(Plain());
    Canvas canvas;
    ASSERT_EQ(Decode(plugin, stream, canvas), 1);
    const auto& told = CurrentHost().progress;
    ASSERT_GE(told.size(), 50u);
    EXPECT_LE(told.size(), 400u);
    uint32_t last = 0;
    for (const auto& [done, total] : told) {
        ASSERT_GT(total, 0u);
        EXPECT_EQ(total, told.front().second);
        EXPECT_GE(done, last);
        // A row of the small picture is nearly two hundredths.
        EXPECT_LE((done - last) * 50, total + 50) << done;
        last = done;
    }
    EXPECT_EQ(told.back().first, told.back().second);
}

TEST_P(EachFormat, StopsAtOnceWhereverTheUserGivesUp)
{
    const std::string file = Plain();
    ByteStream sound(file);
    Canvas whole;
    ASSERT_EQ(Decode(plugin, sound, whole), 1);
    const auto calls = static_cast<int>(CurrentHost().progress.size());
    for (int from = 0; from < calls; from += from < 4 || from > calls - 4 ? 1 : 9) {
        CurrentHost().refuseFrom = from;
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0) << from;
        EXPECT_EQ(CurrentHost().progress.size(), static_cast<size_t>(from) + 1) << from;
    }
}

TEST_P(EachFormat, DoesWithoutCallbacks)
{
    ByteStream stream(Plain());
    Canvas canvas;
    EXPECT_EQ(plugin.getImage(nullptr, &stream.record, canvas.Handle(), canvas.Table(), nullptr,
                              nullptr, nullptr, nullptr, nullptr),
              1);
}

TEST_P(EachFormat, PassesOnThatThePictureCannotBeAllocated)
{
    ByteStream stream(Plain());
    Canvas canvas;
    canvas.mostBytes = 1000;
    EXPECT_EQ(Decode(plugin, stream, canvas), -2);
    EXPECT_EQ(canvas.frees, 1);
    EXPECT_EQ(canvas.locks, 0);
}

TEST_P(EachFormat, StopsWhereALineCannotBeHadOrStored)
{
    for (const bool lock : {true, false}) {
        ByteStream stream(Plain());
        Canvas canvas;
        (lock ? canvas.failLockAfter : canvas.failUnlockAfter) = 30;
        EXPECT_EQ(Decode(plugin, stream, canvas), -101);
        EXPECT_EQ(canvas.locks, 31);
    }
}

TEST_P(EachFormat, LaysAlphaOverTheBackgroundThatIsChosen)
{
    const std::string file = moderntest::Input(GetParam(), GetParam().transparent);
    const auto expected = moderntest::Decoded(file, GetParam().extension, GetParam().reference);
    ASSERT_GT(expected.width, 0u);
    const std::u16string prefix = GetParam().settings;
    CurrentHost().settings = {{prefix + u"BackgroundRed", 10},
                              {prefix + u"BackgroundGreen", 200},
                              {prefix + u"BackgroundBlue", 77}};
    ByteStream stream(file);
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(moderntest::LargestStep(canvas, expected, {10, 200, 77}), 0);
    EXPECT_GT(moderntest::LargestStep(canvas, expected), 50); // the file has alpha at all
}

TEST_P(EachFormat, NamesTheSettingWhereThePictureTakesTooMuchMemory)
{
    const std::u16string key = std::u16string(GetParam().settings) + u"Memory";
    const std::string wide = moderntest::Input(GetParam(), "large-flat");
    ASSERT_FALSE(wide.empty());
    CurrentHost().settings[key] = 1;
    ByteStream stream(wide);
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), -2);
    EXPECT_EQ(canvas.allocations, 0);
    ASSERT_EQ(CurrentHost().messages.size(), 1u);
    EXPECT_NE(CurrentHost().messages[0].find(key), std::u16string::npos);
    EXPECT_EQ(CurrentHost().messageFlags[0], 16u);
    CurrentHost() = {};
    ByteStream again(wide);
    Canvas whole;
    EXPECT_EQ(Decode(plugin, again, whole), 1);
    EXPECT_TRUE(CurrentHost().messages.empty());
}

TEST_P(EachFormat, GivesBackAllItTook)
{
    const std::string file = Plain();
    // Each loading of these libraries leaves some hundred bytes of their own behind, so the library
    // is held: what grows then is the reader's. It keeps tables from its first use on.
    void* held = dlopen(GetParam().library, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(held, nullptr);
    DecodeInEveryWay(plugin, file);
    const size_t before = MemoryInUse();
    for (int i = 0; i < 20; ++i)
        DecodeInEveryWay(plugin, file);
    // A closed file's handle keeps its place for a while, so that it is not mistaken for the next
    // one.
    const size_t decodes = 20 * 5;
    const bool copies = std::string(GetParam().name) != "Jxl";
    EXPECT_LE(MemoryInUse(), before + (copies ? decodes * 128 : 512));
    dlclose(held);
}

TEST_P(EachFormat, LeavesNoMoreThanAKilobyteOfItsLibraryBehindEachLoading)
{
    const std::string file = Plain();
    constexpr size_t decodes = 5;
    DecodeInEveryWay(plugin, file);
    const size_t before = MemoryInUse();
    for (int i = 0; i < 20; ++i)
        DecodeInEveryWay(plugin, file);
    EXPECT_LE(MemoryInUse(), before + 20 * decodes * 1024);
}

TEST_P(EachFormat, LeavesNeitherThreadNorOpenFileBehind)
{
    const std::string file = Plain();
    DecodeInEveryWay(plugin, file);
    const size_t threads = CountEntries("/proc/self/task");
    const size_t descriptors = CountEntries("/proc/self/fd");
    for (int i = 0; i < 5; ++i)
        DecodeInEveryWay(plugin, file);
    EXPECT_EQ(ThreadsAfterAWhile(threads), threads);
    EXPECT_EQ(CountEntries("/proc/self/fd"), descriptors);
}

TEST_P(EachFormat, HasEndedItsThreadsWhenTheCallReturns)
{
    // This one is the first use in the process when it is run alone.
    const size_t threads = CountEntries("/proc/self/task");
    ByteStream stream(Plain());
    Canvas canvas;
    ASSERT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(ThreadsAfterAWhile(threads), threads);
}

TEST_P(EachFormat, LeavesNoTemporaryFileBehind)
{
    const std::string folder = tavrix::testing::HostPath(u"\\Temp");
    const size_t before = CountEntries(folder.c_str());
    int writes = 0;
    tavrix::testing::SetFileFault(
        [&writes](tavrix::platform::FileOperation operation, const WCHAR* path, DWORD*) {
            writes += operation == tavrix::platform::FileOperation::Write &&
                      std::u16string(path).starts_with(u"\\Temp\\");
            return false;
        });
    ByteStream stream(Plain());
    Canvas canvas;
    ASSERT_EQ(Decode(plugin, stream, canvas), 1);
    DecodeInEveryWay(plugin, Plain());
    EXPECT_EQ(CountEntries(folder.c_str()), before) << folder;
    tavrix::testing::SetFileFault(nullptr);
    // JPEG XL is read as it comes.
    EXPECT_EQ(writes > 0, std::string(GetParam().name) != "Jxl");
}

TEST_P(EachFormat, RefusesWhereTheTemporaryFileCannotBeWritten)
{
    if (std::string(GetParam().name) == "Jxl")
        GTEST_SKIP() << "reads without one";
    tavrix::testing::SetFileFault(
        [](tavrix::platform::FileOperation operation, const WCHAR* path, DWORD*) {
            return operation == tavrix::platform::FileOperation::Write &&
                   std::u16string(path).starts_with(u"\\Temp\\");
        });
    ByteStream stream(Plain());
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    EXPECT_EQ(canvas.allocations, 0);
    tavrix::testing::SetFileFault(nullptr);
    EXPECT_EQ(CountEntries(tavrix::testing::HostPath(u"\\Temp").c_str()), 0u);
}

TEST(ModernReaders, AreUnmappedWhenTheyAreUnloadedThoughTheirLibrariesStay)
{
    for (const moderntest::Format& format : formats) {
        const std::string tail = std::string(format.plugin) + ".dll";
        {
            PluginLibrary plugin(format.plugin);
            ASSERT_TRUE(plugin.IsLoaded());
            EXPECT_TRUE(IsMapped(tail));
            DecodeInEveryWay(plugin, moderntest::Input(format, format.plain));
        }
        EXPECT_FALSE(IsMapped(tail)) << tail;
    }
}
