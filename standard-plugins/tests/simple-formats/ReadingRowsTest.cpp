// How the readers by rows use what the host gives them: the stream, the progress callback, the
// lines, memory, the folder for temporary files.

#include "standard-plugins/tests/simple-formats/Pictures.h"
#include "standard-plugins/tests/simple-formats/SimpleMaking.h"
#include "standard-plugins/tests/support/PngMaking.h"

#include <gtest/gtest.h>

using namespace plugintest;

namespace
{

std::string Bitmap(uint32_t width, uint32_t height, int64_t sign)
{
    const uint32_t rowBytes = (3 * width + 3) & ~3u;
    return MakeBmp({.width = width,
                    .height = sign * static_cast<int64_t>(height),
                    .pixels = FilledRows(height, rowBytes, rowBytes)});
}

std::string BitmapRuns(uint32_t width, uint32_t height)
{
    std::string codes;
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; x += 10)
            codes += Bytes({static_cast<int>(std::min(10u, width - x)),
                            static_cast<int>((x / 10 * 7 + y) % 256)});
        codes += Bytes({0, y + 1 == height ? 1 : 0});
    }
    return MakeBmp({.width = width,
                    .height = height,
                    .bits = 8,
                    .compression = 1,
                    .entries = 256,
                    .palette = FilledRows(256, 4, 4),
                    .pixels = codes});
}

std::string Anymap(uint32_t width, uint32_t height, bool plain)
{
    const std::string rows = FilledRows(height, 3 * width, 3 * width);
    std::string file = (plain ? "P3\n" : "P6\n") + std::to_string(width) + " " +
                       std::to_string(height) + "\n255\n";
    if (!plain)
        return file + rows;
    for (const char byte : rows)
        file += std::to_string(static_cast<uint8_t>(byte)) + "\n";
    return file;
}

std::string Targa(uint32_t width, uint32_t height, uint32_t descriptor)
{
    return MakeTga({.width = width,
                    .height = height,
                    .descriptor = descriptor,
                    .pixels = FilledRows(height, 3 * width, 3 * width)});
}

std::string TargaRuns(uint32_t width, uint32_t height)
{
    std::string codes;
    for (uint32_t left = width * height, i = 0; left > 0; ++i) {
        const uint32_t run = std::min({left, 37u, i % 50 + 1});
        codes += Bytes({static_cast<int>(127 + run), static_cast<int>(i % 256), 5,
                        static_cast<int>(i / 3 % 256)});
        left -= run;
    }
    return MakeTga({.type = 10, .width = width, .height = height, .pixels = codes});
}

std::string PcxColor(uint32_t width, uint32_t height)
{
    return MakePcx({.width = width,
                    .height = height,
                    .planeBytes = width,
                    .data = PcxRuns(FilledRows(height, 3 * width, 3 * width))});
}

std::string Pcx256(uint32_t width, uint32_t height)
{
    return MakePcx({.width = width,
                    .height = height,
                    .planes = 1,
                    .planeBytes = width,
                    .data = PcxRuns(FilledRows(height, width, width)) + PcxPalette()});
}

std::string IconBitmap(uint32_t width, uint32_t height)
{
    const uint32_t rowBytes = (3 * width + 3) & ~3u;
    BmpForm form = {.width = width, .height = 2 * static_cast<int64_t>(height)};
    form.pixels = FilledRows(height, rowBytes, rowBytes) +
                  std::string((width + 31) / 32 * 4 * size_t{height}, '\0');
    return MakeIco({{0, 0, 24, MakeDib(form)}});
}

std::string IconPng(uint32_t width, uint32_t height, bool interlaced)
{
    return MakeIco({{0, 0, 32,
                     MakePng({.width = width, .height = height, .interlaced = interlaced},
                             [](uint32_t x, uint32_t y, int channel) {
                                 return (x * 2654435761u ^ y * 40503u ^
                                         static_cast<uint32_t>(channel * 977)) >>
                                            7 &
                                        255;
                             })}});
}

/// A form of a file that every test here reads.
struct Form {
    const char* name;
    const char* plugin;
    std::string (*make)(uint32_t width, uint32_t height);
    /// Lines of a file that breaks off are those of the whole, and come one after the other.
    bool linesStay = true;
    bool goesToADisk = false;
};

const Form forms[] = {
    {"Bmp", "INPUT/BMP", [](uint32_t w, uint32_t h) { return Bitmap(w, h, 1); }},
    {"BmpFromTheTop", "INPUT/BMP", [](uint32_t w, uint32_t h) { return Bitmap(w, h, -1); }},
    {"BmpRuns", "INPUT/BMP", BitmapRuns},
    {"PnmRaw", "INPUT/PNM", [](uint32_t w, uint32_t h) { return Anymap(w, h, false); }},
    {"PnmPlain", "INPUT/PNM", [](uint32_t w, uint32_t h) { return Anymap(w, h, true); }},
    {"Tga", "INPUT/TGA", [](uint32_t w, uint32_t h) { return Targa(w, h, 0x20); }},
    {"TgaFromTheBottom", "INPUT/TGA", [](uint32_t w, uint32_t h) { return Targa(w, h, 0x10); }},
    {"TgaRuns", "INPUT/TGA", TargaRuns},
    {"Pcx", "INPUT/PCX", PcxColor},
    {"Pcx256", "INPUT/PCX", Pcx256, false, true},
    {"IcoBitmap", "INPUT/ICO", IconBitmap, true, true},
    {"IcoPng", "INPUT/ICO", [](uint32_t w, uint32_t h) { return IconPng(w, h, false); }, true,
     true},
    {"IcoPngInterlaced", "INPUT/ICO", [](uint32_t w, uint32_t h) { return IconPng(w, h, true); },
     false, true},
};

void PrintTo(const Form& form, std::ostream* out)
{
    *out << form.name;
}

class ReadingRows : public testing::TestWithParam<Form>
{
protected:
    ReadingRows() { CurrentHost() = {}; }
    ~ReadingRows() override
    {
        CurrentHost() = {};
        EXPECT_EQ(TemporaryFiles(), "");
    }
    static std::string TemporaryFiles()
    {
        const std::filesystem::path temporary = tavrix::testing::HostPath(u"\\Temp");
        return std::filesystem::exists(temporary) ? NamesIn(temporary) : "";
    }
    static std::string File(uint32_t width, uint32_t height)
    {
        return GetParam().make(width, height);
    }

    tavrix::testing::Scope scope;
    PluginLibrary plugin{GetParam().plugin};
};

INSTANTIATE_TEST_SUITE_P(Each, ReadingRows, testing::ValuesIn(forms),
                         [](const auto& entry) { return std::string(entry.param.name); });

} // namespace

TEST_P(ReadingRows, TakesAStreamOfSingleBytesLikeAnyOther)
{
    const std::string file = File(90, 70);
    ByteStream whole(file);
    Canvas expected;
    ASSERT_EQ(Decode(plugin, whole, expected), 1);
    for (const uint32_t most : {1u, 7u, 1000u}) {
        ByteStream stream(file, most);
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        EXPECT_EQ(FirstDifference(canvas, 90, 70,
                                  [&](uint32_t x, uint32_t y) { return expected.At(x, y); }),
                  "")
            << most;
    }
}

TEST_P(ReadingRows, ReadsForwardOnlyAndInLargePieces)
{
    ByteStream stream(File(600, 400));
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(stream.seeks + stream.sizesAsked, 0);
    EXPECT_LE(stream.reads, static_cast<int>(stream.bytes.size() / 65536 + 2));
    EXPECT_EQ(canvas.allocations, 1);
    EXPECT_LE(canvas.mostLentAtOnce, 2u); // the last line stays locked
}

TEST_P(ReadingRows, ReportsEveryHundredthAndTheEnd)
{
    ByteStream stream(File(20, 1200));
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    const auto& told = CurrentHost().progress;
    ASSERT_GE(told.size(), 100u);
    EXPECT_LE(told.size(), 110u);
    uint32_t last = 0;
    for (const auto& [done, total] : told) {
        // Nothing counts as done while a file goes to the disk.
        if (done == 0)
            continue;
        EXPECT_EQ(total, told.back().second);
        EXPECT_GE(done, last);
        EXPECT_LE((done - last) * 100, total + 100) << done; // a row more, to the next hundredth
        last = done;
    }
    EXPECT_EQ(told.back().first, told.back().second);
}

TEST_P(ReadingRows, StopsAtOnceWhenTheUserGivesUp)
{
    const std::string file = File(200, 300);
    ByteStream sound(file);
    Canvas whole;
    ASSERT_EQ(Decode(plugin, sound, whole), 1);
    const auto calls = static_cast<int>(CurrentHost().progress.size());
    ASSERT_GE(calls, 100);
    for (int from = 0; from < calls; ++from) {
        CurrentHost().refuseFrom = from;
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0) << from;
        EXPECT_EQ(CurrentHost().progress.size(), static_cast<size_t>(from) + 1) << from;
        EXPECT_EQ(TemporaryFiles(), "");
    }
}

TEST_P(ReadingRows, LeavesTheGoodLinesOfAFileThatBreaksOff)
{
    const std::string file = File(70, 64);
    ByteStream sound(file);
    Canvas whole;
    ASSERT_EQ(Decode(plugin, sound, whole), 1);
    uint32_t most = 0;
    for (size_t part = 0; part < 16; ++part)
        for (const bool failsAtEnd : {false, true}) {
            SCOPED_TRACE("part " + std::to_string(part));
            ByteStream stream(file.substr(0, file.size() * part / 16));
            stream.failsAtEnd = failsAtEnd;
            Canvas canvas;
            EXPECT_LT(Decode(plugin, stream, canvas), 0);
            if (!GetParam().linesStay || canvas.height == 0)
                continue;
            ASSERT_EQ(canvas.height, whole.height);
            uint32_t good = 0;
            for (uint32_t y = 0; y < canvas.height; ++y) {
                good += canvas.WasWritten(y);
                for (uint32_t x = 0; canvas.WasWritten(y) && x < canvas.width; ++x)
                    ASSERT_EQ(canvas.At(x, y), whole.At(x, y)) << x << "," << y;
            }
            EXPECT_GE(good, most);
            most = good;
        }
    if (GetParam().linesStay) {
        EXPECT_GE(most, 50u);
    }
}

TEST_P(ReadingRows, HoldsNoMoreForATallPicture)
{
    size_t most[2] = {};
    int i = 0;
    for (const uint32_t height : {300u, 2400u}) {
        ByteStream stream(File(500, height));
        Canvas canvas;
        canvas.forgets = true;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        CurrentHost() = {};
        most[i++] = canvas.peak.Most();
    }
    EXPECT_GT(most[0], 64u * 1024); // it does measure
    EXPECT_LT(most[1], most[0] + 16 * 1024);
    EXPECT_LT(most[1], 512u * 1024);
}

TEST_P(ReadingRows, PassesOnThatLinesCannotBeHadOrStored)
{
    const std::string file = File(400, 100);
    ByteStream first(file);
    Canvas none;
    none.mostBytes = 1000;
    EXPECT_EQ(Decode(plugin, first, none), -2);
    EXPECT_EQ(none.frees, 1);
    ByteStream second(file);
    Canvas unlocked;
    unlocked.failLockAfter = 30;
    EXPECT_EQ(Decode(plugin, second, unlocked), -101);
    EXPECT_EQ(unlocked.locks, 31);
    ByteStream third(file);
    Canvas unstored;
    unstored.failUnlockAfter = 30;
    EXPECT_EQ(Decode(plugin, third, unstored), -101);
    EXPECT_EQ(unstored.locks, 31);
}

TEST_P(ReadingRows, GivesBackAllItTook)
{
    const std::string file = File(120, 90);
    for (const size_t part : {size_t{0}, size_t{100}, file.size() / 2, file.size()}) {
        const auto once = [&] {
            ByteStream stream(file.substr(0, part));
            Canvas canvas;
            (void)Decode(plugin, stream, canvas);
            CurrentHost() = {};
        };
        once();
        const size_t before = MemoryInUse();
        constexpr int runs = 5;
        for (int i = 0; i < runs; ++i)
            once();
        // A closed handle keeps its place for a while, so that it is not mistaken for the next one.
        const size_t handles = GetParam().goesToADisk ? runs * 128 : 0;
        EXPECT_LE(MemoryInUse(), before + 512 + handles) << part;
    }
}

TEST_P(ReadingRows, TellsTheSize)
{
    ByteStream stream(File(123, 45));
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1);
    EXPECT_EQ(info.width, 123u);
    EXPECT_EQ(info.height, 45u);
    EXPECT_EQ(info.depth, 24u);
    ByteStream broken("no picture");
    EXPECT_LT(plugin.getImageInfo(nullptr, &broken.record, &info), 0);
}

TEST_P(ReadingRows, ADiskThatTakesNothingIsAFailureOfThoseThatNeedIt)
{
    const std::string file = File(60, 50);
    tavrix::testing::SetDiskSpace(0);
    ByteStream stream(file);
    Canvas canvas;
    const int32_t result = Decode(plugin, stream, canvas);
    if (GetParam().goesToADisk) {
        EXPECT_LT(result, 0);
        EXPECT_EQ(canvas.allocations, 0);
    } else {
        EXPECT_EQ(result, 1);
    }
    tavrix::testing::Reset();
}

TEST(ReadingRowsOfLargePictures, ThatBeginWithTheLastLineGrowUpwards)
{
    // 4096 x 17000 pixels of one bit: lines for 64 million at once, the others above them as they
    // come.
    CurrentHost() = {};
    PluginLibrary plugin("INPUT/BMP");
    const std::string file = MakeBmp({.width = 4096,
                                      .height = 17000,
                                      .bits = 1,
                                      .palette = Bytes({0, 0, 0, 0, 255, 255, 255, 0}),
                                      .pixels = std::string(512 * 17000, '\0')});
    ByteStream stream(file);
    Canvas canvas;
    canvas.forgets = true;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(canvas.height, 17000u);
    EXPECT_EQ(canvas.insertions, 1);
    for (uint32_t y = 0; y < 17000; ++y)
        ASSERT_TRUE(canvas.WasWritten(y)) << y;
    // Half of it: the lower lines alone.
    ByteStream cut(file.substr(0, file.size() / 2));
    Canvas shorter;
    shorter.forgets = true;
    EXPECT_LT(Decode(plugin, cut, shorter), 0);
    EXPECT_EQ(shorter.height, 16384u);
    EXPECT_EQ(shorter.insertions, 0);
    EXPECT_TRUE(shorter.WasWritten(16383));
    EXPECT_FALSE(shorter.WasWritten(0));
}
