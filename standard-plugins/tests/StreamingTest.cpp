// How the readers use what the host gives them: the stream, the progress callback, the lines,
// memory.

#include "standard-plugins/tests/support/Decoding.h"
#include "standard-plugins/tests/support/JpegMaking.h"
#include "standard-plugins/tests/support/PngMaking.h"

#include <gtest/gtest.h>

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::FirstDifference;
using plugintest::MakeJpeg;
using plugintest::MakePng;
using plugintest::MemoryInUse;
using plugintest::PluginLibrary;

namespace
{

uint8_t Rough(uint32_t x, uint32_t y, int channel)
{
    return static_cast<uint8_t>(((x * 2654435761u) ^ (y * 40503u)) >> (9 + channel) ^ (x + y));
}

uint8_t Flat(uint32_t, uint32_t, int)
{
    return 90;
}

enum class Kind { Jpeg, ProgressiveJpeg, Png, InterlacedPng };

constexpr Kind kinds[] = {Kind::Jpeg, Kind::ProgressiveJpeg, Kind::Png, Kind::InterlacedPng};

using Sampler = uint8_t (*)(uint32_t, uint32_t, int);

std::string File(Kind kind, uint32_t width, uint32_t height, Sampler sampler = Rough)
{
    const bool same = sampler == Flat;
    switch (kind) {
    case Kind::Jpeg:
        return MakeJpeg({.width = width, .height = height, .sameRows = same}, sampler);
    case Kind::ProgressiveJpeg:
        return MakeJpeg({.width = width, .height = height, .progressive = true, .sameRows = same},
                        sampler);
    case Kind::Png:
        return MakePng({.width = width, .height = height, .sameRows = same}, sampler);
    default:
        return MakePng({.width = width, .height = height, .interlaced = true, .sameRows = same},
                       sampler);
    }
}

const char* Library(Kind kind)
{
    return kind == Kind::Jpeg || kind == Kind::ProgressiveJpeg ? "INPUT/JPEG" : "INPUT/PNG";
}

std::string NameOf(Kind kind)
{
    constexpr const char* names[] = {"Jpeg", "ProgressiveJpeg", "Png", "InterlacedPng"};
    return names[static_cast<int>(kind)];
}

class Reading : public testing::TestWithParam<Kind>
{
protected:
    Reading() { CurrentHost() = {}; }
    ~Reading() override { CurrentHost() = {}; }
    PluginLibrary plugin{Library(GetParam())};
};

INSTANTIATE_TEST_SUITE_P(Each, Reading, testing::ValuesIn(kinds),
                         [](const auto& entry) { return NameOf(entry.param); });

} // namespace

TEST_P(Reading, TakesAStreamOfSingleBytesLikeAnyOther)
{
    const std::string file = File(GetParam(), 90, 70);
    ByteStream whole(file);
    Canvas expected;
    ASSERT_EQ(Decode(plugin, whole, expected), 1);
    for (const uint32_t most : {1u, 2u, 3u, 1000u}) {
        ByteStream stream(file, most);
        Canvas canvas;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        EXPECT_EQ(FirstDifference(canvas, 90, 70,
                                  [&](uint32_t x, uint32_t y) { return expected.At(x, y); }),
                  "")
            << most;
    }
}

TEST_P(Reading, ReadsForwardOnlyAndInLargePieces)
{
    ByteStream stream(File(GetParam(), 600, 400));
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(stream.seeks, 0);
    EXPECT_EQ(stream.sizesAsked, 0);
    EXPECT_LE(stream.reads, static_cast<int>(stream.bytes.size() / 65536 + 2));
}

TEST_P(Reading, ReportsEveryHundredthAndTheEnd)
{
    ByteStream stream(File(GetParam(), 40, 1200));
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    const auto& told = CurrentHost().progress;
    ASSERT_GE(told.size(), 50u);
    EXPECT_LE(told.size(), 400u);
    uint32_t last = 0;
    for (const auto& [done, total] : told) {
        ASSERT_GT(total, 0u);
        EXPECT_EQ(total, told.front().second);
        EXPECT_GE(done, last);
        EXPECT_LE(done, total);
        // The host computes done * 300 / total in 32 bits.
        EXPECT_LT(uint64_t{done} * 300, uint64_t{1} << 32);
        // Only scans that are few may move the bar in greater steps: their number is not known.
        if (GetParam() != Kind::ProgressiveJpeg) {
            EXPECT_LE((done - last) * 50, total) << done;
        }
        last = done;
    }
    EXPECT_EQ(told.back().first, told.back().second);
}

TEST_P(Reading, StopsAtOnceWhenTheUserGivesUp)
{
    const std::string file = File(GetParam(), 40, 1200);
    ByteStream sound(file);
    Canvas whole;
    ASSERT_EQ(Decode(plugin, sound, whole), 1);
    const auto calls = static_cast<int>(CurrentHost().progress.size());
    for (const int from : {0, 1, calls / 3, calls / 2, calls - 1}) {
        CurrentHost().refuseFrom = from;
        ByteStream stream(file);
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0) << from;
        EXPECT_EQ(CurrentHost().progress.size(), static_cast<size_t>(from) + 1) << from;
    }
}

TEST_P(Reading, DoesWithoutAProgressCallback)
{
    ByteStream stream(File(GetParam(), 40, 40));
    Canvas canvas;
    EXPECT_EQ(plugin.getImage(nullptr, &stream.record, canvas.Handle(), canvas.Table(), nullptr,
                              nullptr, nullptr, nullptr, nullptr),
              1);
}

TEST_P(Reading, PassesOnThatThePictureCannotBeAllocated)
{
    ByteStream stream(File(GetParam(), 400, 400));
    Canvas canvas;
    canvas.mostBytes = 1000;
    EXPECT_EQ(Decode(plugin, stream, canvas), -2);
    EXPECT_EQ(canvas.frees, 1); // such a picture must not be shown
    EXPECT_EQ(canvas.locks, 0);
}

TEST_P(Reading, StopsWhereALineCannotBeHad)
{
    ByteStream stream(File(GetParam(), 40, 100));
    Canvas canvas;
    canvas.failLockAfter = 30;
    EXPECT_EQ(Decode(plugin, stream, canvas), -101);
    EXPECT_EQ(canvas.locks, 31);
}

TEST_P(Reading, StopsWhereALineCannotBeStored)
{
    // The host answers 0 when a line did not go to its file: that line is lost.
    ByteStream stream(File(GetParam(), 40, 100));
    Canvas canvas;
    canvas.failUnlockAfter = 30;
    EXPECT_EQ(Decode(plugin, stream, canvas), -101);
    EXPECT_EQ(canvas.locks, 31);
}

TEST_P(Reading, GivesBackAllItTook)
{
    const std::string file = File(GetParam(), 120, 90);
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
        EXPECT_LE(MemoryInUse(), before + 512) << part;
    }
}

TEST(ReadingMemory, DoesNotGrowWithTheHeight)
{
    // A progressive JPEG cannot be read so; its limit has tests of its own.
    for (const Kind kind : {Kind::Jpeg, Kind::Png, Kind::InterlacedPng}) {
        CurrentHost() = {};
        PluginLibrary plugin(Library(kind));
        size_t most[2] = {};
        int i = 0;
        for (const uint32_t height : {1000u, 8000u}) {
            ByteStream stream(File(kind, 1000, height, Flat));
            Canvas canvas;
            canvas.forgets = true;
            EXPECT_EQ(Decode(plugin, stream, canvas), 1);
            most[i++] = canvas.peak.Most();
        }
        EXPECT_GT(most[0], 64u * 1024) << static_cast<int>(kind); // it does measure
        // The canvas keeps a bit a line itself.
        EXPECT_LT(most[1], most[0] + 16 * 1024) << static_cast<int>(kind);
        EXPECT_LT(most[1], 1u << 20) << static_cast<int>(kind);
    }
}

std::string LargeFile(Kind kind)
{
    if (kind == Kind::Jpeg)
        return MakeJpeg({.width = 4096,
                         .height = 20000,
                         .colors = plugintest::JpegColors::Grey,
                         .across = 1,
                         .down = 1,
                         .sameRows = true},
                        Flat);
    return MakePng({.width = 4096, .height = 20000, .colorType = 0, .sameRows = true}, Flat);
}

TEST(ReadingLargePictures, GetLinesAsTheyComeBeyond64MillionPixels)
{
    // 4096 x 20000 pixels: lines for 64 million at once, the others as the file brings them.
    for (const Kind kind : {Kind::Jpeg, Kind::Png}) {
        CurrentHost() = {};
        PluginLibrary plugin(Library(kind));
        const std::string file = LargeFile(kind);
        ByteStream stream(file);
        Canvas canvas;
        canvas.forgets = true;
        EXPECT_EQ(Decode(plugin, stream, canvas), 1);
        EXPECT_EQ(canvas.height, 20000u);
        EXPECT_EQ(canvas.allocations, 1);
        EXPECT_EQ(canvas.insertions, 1);
        EXPECT_TRUE(canvas.WasWritten(0));
        EXPECT_TRUE(canvas.WasWritten(16384));
        EXPECT_TRUE(canvas.WasWritten(19999));

        ByteStream cut(file.substr(0, file.size() / 2));
        Canvas shorter;
        shorter.forgets = true;
        EXPECT_LT(Decode(plugin, cut, shorter), 0);
        EXPECT_EQ(shorter.height, 16384u);
        EXPECT_EQ(shorter.insertions, 0);

        // A picture whose lines could not all be had is freed: its height and lines disagree.
        ByteStream again(file);
        Canvas failing;
        failing.forgets = true;
        failing.failInsertAfter = 0;
        EXPECT_EQ(Decode(plugin, again, failing), -2);
        EXPECT_EQ(failing.frees, 1);
    }
}
