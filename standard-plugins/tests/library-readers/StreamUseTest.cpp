// How the three readers use what the host gives them: the stream, the progress callback, the lines,
// memory; and what they leave behind.

#include "standard-plugins/common/HostLibrary.h"
#include "standard-plugins/tests/library-readers/References.h"

#include <fstream>

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::FirstDifference;
using plugintest::IsMapped;
using plugintest::MemoryInUse;
using plugintest::PluginLibrary;

namespace
{

struct Kind {
    const char* name;
    const char* library;
    /// Makes out from in.ppm.
    const char* command;
    /// Broken off at 1/16, 2/16, ..., the lines that came are right and come in order.
    bool inOrder;
};

const Kind kinds[] = {
    {"Gif", "INPUT/GIF", "convert in.ppm -colors 64 gif:out", true},
    {"InterlacedGif", "INPUT/GIF", "convert in.ppm -colors 64 -interlace GIF gif:out", false},
    {"TiffStrips", "INPUT/TIFF",
     "convert in.ppm -compress none i.tif && tiffcp -c lzw -r 4 i.tif out", true},
    {"TiffTiles", "INPUT/TIFF",
     "convert in.ppm -compress none i.tif && tiffcp -c zip -t -w 16 -l 16 i.tif out", true},
    {"TiffPlanes", "INPUT/TIFF",
     "convert in.ppm -compress none i.tif && tiffcp -c packbits -p separate -r 4 i.tif out", true},
    {"WebpLossy", "INPUT/WebP", "cwebp -quiet -q 90 in.ppm -o out", true},
    {"WebpLossless", "INPUT/WebP", "cwebp -quiet -lossless in.ppm -o out", true},
};

class StreamUse : public plugintest::ReaderTest, public testing::WithParamInterface<Kind>
{
protected:
    std::string File(uint32_t width, uint32_t height) const
    {
        Write("in.ppm", plugintest::MakePpm(width, height, plugintest::SoftSample));
        Run(GetParam().command);
        return Read("out");
    }

    PluginLibrary plugin{GetParam().library};
};

INSTANTIATE_TEST_SUITE_P(Each, StreamUse, testing::ValuesIn(kinds),
                         [](const auto& entry) { return std::string(entry.param.name); });

bool SameLine(const Canvas& a, const Canvas& b, uint32_t y)
{
    for (uint32_t x = 0; x < a.width; ++x)
        if (!(a.At(x, y) == b.At(x, y)))
            return false;
    return true;
}

} // namespace

TEST_P(StreamUse, TakesAStreamOfSingleBytesLikeAnyOther)
{
    const std::string file = File(90, 70);
    ByteStream whole(file);
    Canvas expected;
    ASSERT_EQ(Decode(plugin, whole, expected), 1);
    EXPECT_LE(whole.reads, static_cast<int>(file.size() / 65536 + 2));
    for (const uint32_t most : {1u, 3u, 1000u}) {
        ByteStream stream(file, most);
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        EXPECT_EQ(FirstDifference(canvas, 90, 70,
                                  [&](uint32_t x, uint32_t y) { return expected.At(x, y); }),
                  "")
            << most;
        EXPECT_EQ(stream.seeks + stream.sizesAsked, 0);
    }
}

TEST_P(StreamUse, ReportsEveryHundredthAndTheEnd)
{
    ByteStream stream(File(40, 1200));
    Canvas canvas;
    ASSERT_EQ(Decode(plugin, stream, canvas), 1);
    const auto& told = CurrentHost().progress;
    ASSERT_GE(told.size(), 90u);
    EXPECT_LE(told.size(), 200u);
    uint32_t last = 0;
    for (const auto& [done, total] : told) {
        EXPECT_EQ(total, told.front().second);
        EXPECT_GE(done, last);
        EXPECT_LE((done - last) * 50, total) << done;
        last = done;
    }
    EXPECT_EQ(told.back().first, told.back().second);
}

TEST_P(StreamUse, StopsAtEveryRefusal)
{
    const std::string file = File(40, 300);
    ByteStream sound(file);
    Canvas whole;
    ASSERT_EQ(Decode(plugin, sound, whole), 1);
    const auto calls = static_cast<int>(CurrentHost().progress.size());
    for (int from = 0; from < calls; ++from) {
        CurrentHost().refuseFrom = from;
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0) << from;
        EXPECT_EQ(CurrentHost().progress.size(), static_cast<size_t>(from) + 1) << from;
    }
}

TEST_P(StreamUse, KeepsTheGoodLinesOfAFileThatBreaksOff)
{
    const std::string file = File(70, 64);
    ByteStream sound(file);
    Canvas whole;
    ASSERT_EQ(Decode(plugin, sound, whole), 1);
    uint32_t most = 0;
    for (size_t part = 0; part < 16; ++part)
        for (const bool failsAtEnd : {false, true}) {
            SCOPED_TRACE(part);
            ByteStream stream(file.substr(0, file.size() * part / 16));
            stream.failsAtEnd = failsAtEnd;
            Canvas canvas;
            EXPECT_LT(Decode(plugin, stream, canvas), 0);
            if (canvas.height == 0)
                continue;
            uint32_t good = 0;
            for (uint32_t y = 0; y < canvas.height; ++y) {
                if (canvas.WasWritten(y)) {
                    EXPECT_TRUE(SameLine(canvas, whole, y)) << y;
                }
                good += canvas.WasWritten(y);
            }
            EXPECT_GE(good, most);
            most = good;
        }
    // A TIFF of these programs has its directory at the end: nothing can be read without it.
    if (GetParam().library != std::string("INPUT/TIFF")) {
        EXPECT_GE(most, 32u);
    }
}

TEST_P(StreamUse, StopsWhereALineCannotBeHadOrStored)
{
    const std::string file = File(40, 100);
    for (const bool locking : {true, false}) {
        ByteStream stream(file);
        Canvas canvas;
        (locking ? canvas.failLockAfter : canvas.failUnlockAfter) = 30;
        EXPECT_EQ(Decode(plugin, stream, canvas), -101);
        EXPECT_EQ(canvas.locks, 31);
    }
    ByteStream stream(file);
    Canvas none;
    none.mostBytes = 1000;
    EXPECT_EQ(Decode(plugin, stream, none), -2);
    EXPECT_EQ(none.frees, 1);
    EXPECT_EQ(none.locks, 0);
}

TEST_P(StreamUse, GivesBackAllItTook)
{
    const std::string file = File(120, 90);
    // The device has records of its own about files that come and go. What is really lost the leak
    // sanitizer finds.
    const bool usesFiles = GetParam().library == std::string("INPUT/TIFF");
    const size_t slack = usesFiles ? 16 * 1024 : 512;
    for (const size_t part : {size_t{0}, size_t{200}, file.size() / 2, file.size()}) {
        const auto once = [&] {
            ByteStream stream(file.substr(0, part));
            Canvas canvas;
            (void)Decode(plugin, stream, canvas);
            CurrentHost() = {};
        };
        once();
        const size_t before = MemoryInUse();
        for (int i = 0; i < 5; ++i)
            once();
        EXPECT_LE(MemoryInUse(), before + slack) << part;
    }
}

TEST_P(StreamUse, DoesWithoutAProgressCallback)
{
    ByteStream stream(File(40, 40));
    Canvas canvas;
    EXPECT_EQ(plugin.getImage(nullptr, &stream.record, canvas.Handle(), canvas.Table(), nullptr,
                              nullptr, nullptr, nullptr, nullptr),
              1);
}

TEST(GifMemory, DoesNotGrowWithTheHeight)
{
    PluginLibrary plugin("INPUT/GIF");
    size_t most[2] = {};
    int i = 0;
    const auto folder = std::filesystem::path(tavrix::testing::FreshFolder());
    for (const int height : {500, 4000}) {
        const std::string file = (folder / "flat.gif").string();
        ASSERT_EQ(
            std::system(
                ("convert -size 1000x" + std::to_string(height) + " 'xc:#305070' " + file).c_str()),
            0);
        ByteStream stream(plugintest::BytesOf(file));
        Canvas canvas;
        canvas.forgets = true;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        most[i++] = canvas.peak.Most();
    }
    EXPECT_GT(most[0], 64u * 1024); // it does measure
    EXPECT_LT(most[1], most[0] + 16 * 1024);
    EXPECT_LT(most[1], 512u * 1024);
}

TEST(HostLibraries, ThatAreMissingAreRefusedAndThatAreThereAreClosedAgain)
{
    HostLibrary library = {};
    EXPECT_FALSE(OpenHostLibrary(&library, "libnobody-has-this.so.99", u"nobody.dll"));
    EXPECT_EQ(library.handle, nullptr);
    CloseHostLibrary(&library);
    ASSERT_TRUE(OpenHostLibrary(&library, "libgif.so.7", u"gif.dll"));
    EXPECT_EQ(FindInHostLibrary(library, "NoFunctionOfThisName"), nullptr);
    CloseHostLibrary(&library);
    EXPECT_EQ(library.handle, nullptr);
    EXPECT_FALSE(IsMapped("libgif.so.7.2.0"));
}

TEST(HostLibraries, AreOpenOnlyWhileAPictureIsRead)
{
    for (const auto& [plugin, name, kept] :
         {std::tuple{"INPUT/GIF", "libgif.so.7", "gif/good-64-colours.gif"},
          {"INPUT/TIFF", "libtiff.so.6", "tiff/good-zstd.tif"},
          {"INPUT/WebP", "libwebp.so.7", "webp/good-lossy.webp"}}) {
        const auto mapped = [&, wanted = std::string(name)] {
            std::ifstream maps("/proc/self/maps");
            for (std::string line; std::getline(maps, line);)
                if (line.find("/" + wanted) != std::string::npos)
                    return true;
            return false;
        };
        PluginLibrary library(plugin);
        EXPECT_FALSE(mapped()) << name;
        ByteStream stream(plugintest::BytesOf(plugintest::KeptFolder(kept)));
        Canvas canvas;
        EXPECT_EQ(Decode(library, stream, canvas), 1);
        EXPECT_FALSE(mapped()) << name;
    }
}
