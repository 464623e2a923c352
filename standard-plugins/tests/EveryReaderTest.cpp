// What holds for every reader, whatever its format: over the kept files of its format that are
// sound (tests/inputs/<format>/good-*), over parts of them, and over what is no such file at all.

#include "standard-plugins/tests/support/Decoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/testing/core/TestPaths.h"

using namespace plugintest;

namespace
{

struct Format {
    const char* library;
    const char* folder;
    /// What the codec itself leaves each time that it is opened.
    size_t leftBytes = 0;
};

const Format formats[] = {
    {"INPUT/PNG", "png"},   {"INPUT/JPEG", "jpeg"},       {"INPUT/GIF", "gif"},
    {"INPUT/TIFF", "tiff"}, {"INPUT/WebP", "webp"},       {"INPUT/AVIF", "avif", 256},
    {"INPUT/JXL", "jxl"},   {"INPUT/HEIF", "heif", 1024}, {"INPUT/BMP", "bmp"},
    {"INPUT/PNM", "pnm"},   {"INPUT/TGA", "tga"},         {"INPUT/PCX", "pcx"},
    {"INPUT/ICO", "ico"},
};

void PrintTo(const Format& format, std::ostream* out)
{
    *out << format.library;
}

std::string BytesOf(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in) << path;
    return {std::istreambuf_iterator<char>(in), {}};
}

struct Sample {
    std::string name;
    std::string bytes;
};

std::vector<Sample> KeptFiles(const char* folder)
{
    std::vector<Sample> samples;
    const auto place = std::filesystem::path(tavrix::testing::InSource("/tests/inputs")) / folder;
    for (const auto& entry : std::filesystem::directory_iterator(place))
        samples.push_back({entry.path().filename(), BytesOf(entry.path())});
    std::sort(samples.begin(), samples.end(),
              [](const Sample& a, const Sample& b) { return a.name < b.name; });
    return samples;
}

std::vector<Sample> SoundFiles(const char* folder)
{
    std::vector<Sample> samples = KeptFiles(folder);
    std::erase_if(samples, [](const Sample& sample) { return !sample.name.starts_with("good-"); });
    return samples;
}

// For what is done many times to each: the small ones, a few of them, and none whose picture ends
// long before the file, as the first of several does.
std::vector<Sample> SmallSoundFiles(const char* folder, size_t most = 6)
{
    std::vector<Sample> samples = SoundFiles(folder);
    std::erase_if(samples, [](const Sample& sample) {
        return sample.bytes.size() > 32 * 1024 ||
               sample.name.find("-behind") != std::string::npos ||
               sample.name.find("animation") != std::string::npos;
    });
    if (samples.size() > most)
        samples.resize(most);
    return samples;
}

class EveryReader : public testing::TestWithParam<Format>
{
protected:
    EveryReader() { CurrentHost() = {}; }
    ~EveryReader() override { CurrentHost() = {}; }

    int32_t Read(const std::string& bytes, Canvas& canvas)
    {
        ByteStream stream(bytes);
        return Decode(plugin, stream, canvas);
    }
    void ExpectSame(const Canvas& got, const Canvas& want, const std::string& what)
    {
        EXPECT_EQ(FirstDifference(got, want.width, want.height,
                                  [&](uint32_t x, uint32_t y) { return want.At(x, y); }),
                  "")
            << what;
    }
    // Neither a result that passes nor a picture asked for.
    void ExpectRefused(const std::string& bytes, const std::string& what)
    {
        Canvas canvas;
        EXPECT_LT(Read(bytes, canvas), 0) << what;
        EXPECT_EQ(canvas.allocations, 0) << what;
    }
    PluginLibrary plugin{GetParam().library};
};

INSTANTIATE_TEST_SUITE_P(Each, EveryReader, testing::ValuesIn(formats), [](const auto& entry) {
    return std::string(entry.param.library).substr(6);
});

} // namespace

TEST_P(EveryReader, ReadsEachSoundFileWhole)
{
    const auto samples = SoundFiles(GetParam().folder);
    ASSERT_FALSE(samples.empty());
    for (const Sample& sample : samples) {
        Canvas canvas;
        EXPECT_EQ(Read(sample.bytes, canvas), 1) << sample.name;
        EXPECT_EQ(canvas.depth, 24u) << sample.name;
        for (uint32_t y = 0; y < canvas.height; ++y)
            ASSERT_TRUE(canvas.WasWritten(y)) << sample.name << " " << y;
        EXPECT_TRUE(CurrentHost().messages.empty()) << sample.name;
    }
}

TEST_P(EveryReader, TellsTheSizeFromTheHeaderAsThePictureHasIt)
{
    for (const Sample& sample : SoundFiles(GetParam().folder)) {
        Canvas canvas;
        ASSERT_EQ(Read(sample.bytes, canvas), 1) << sample.name;
        ByteStream stream(sample.bytes);
        RasterInfo info = {};
        info.size = sizeof info;
        EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1) << sample.name;
        EXPECT_EQ(info.width, canvas.width) << sample.name;
        EXPECT_EQ(info.height, canvas.height) << sample.name;
        EXPECT_EQ(info.depth, 24u) << sample.name;
        EXPECT_EQ(stream.seeks, 0);
    }
}

TEST_P(EveryReader, ReadsForwardOnlyAlsoFromAStreamOfSingleBytes)
{
    for (const Sample& sample : SmallSoundFiles(GetParam().folder)) {
        Canvas whole;
        ASSERT_EQ(Read(sample.bytes, whole), 1) << sample.name;
        for (const uint32_t most : {1u, 7u, 1000u}) {
            ByteStream stream(sample.bytes, most);
            Canvas canvas;
            EXPECT_EQ(Decode(plugin, stream, canvas), 1) << sample.name << " by " << most;
            ExpectSame(canvas, whole, sample.name);
            EXPECT_EQ(stream.seeks, 0) << sample.name;
            EXPECT_EQ(stream.sizesAsked, 0) << sample.name;
        }
    }
}

TEST_P(EveryReader, ReportsProgressForwardToItsEnd)
{
    for (const Sample& sample : SmallSoundFiles(GetParam().folder)) {
        Canvas canvas;
        ASSERT_EQ(Read(sample.bytes, canvas), 1) << sample.name;
        const auto& told = CurrentHost().progress;
        ASSERT_FALSE(told.empty()) << sample.name;
        double last = 0;
        for (const auto& [done, total] : told) {
            ASSERT_GT(total, 0u) << sample.name;
            const double part = static_cast<double>(done) / total;
            EXPECT_GE(part, last) << sample.name;
            EXPECT_LE(part, 1) << sample.name;
            last = part;
        }
        EXPECT_EQ(last, 1) << sample.name;
    }
}

TEST_P(EveryReader, StopsWhereTheUserGivesUp)
{
    for (const Sample& sample : SmallSoundFiles(GetParam().folder)) {
        Canvas whole;
        ASSERT_EQ(Read(sample.bytes, whole), 1) << sample.name;
        const auto calls = static_cast<int>(CurrentHost().progress.size());
        for (int from = 0; from<calls; from += calls> 20 ? calls / 10 : 1) {
            CurrentHost().refuseFrom = from;
            Canvas canvas;
            EXPECT_LT(Read(sample.bytes, canvas), 0) << sample.name << " at " << from;
            EXPECT_EQ(CurrentHost().progress.size(), static_cast<size_t>(from) + 1)
                << sample.name << ": who gave up is not asked again";
            CurrentHost().refuseFrom = -1;
        }
    }
}

TEST_P(EveryReader, AFileThatBreaksOffIsNeverTakenForAWholeOne)
{
    // All of them, but those behind the first few in fewer places.
    const auto samples = SmallSoundFiles(GetParam().folder, 100);
    for (size_t i = 0; i < samples.size(); ++i)
        for (size_t part = 0; part < 16; part += i < 6 ? 1 : 5) {
            const std::string& bytes = samples[i].bytes;
            Canvas canvas;
            EXPECT_LT(Read(bytes.substr(0, bytes.size() * part / 16), canvas), 0)
                << samples[i].name << ", " << part << "/16";
        }
}

TEST_P(EveryReader, ReadErrorsOfTheStreamAreItsEnd)
{
    for (const Sample& sample : SmallSoundFiles(GetParam().folder)) {
        ByteStream stream(sample.bytes.substr(0, sample.bytes.size() / 2));
        stream.failsAtEnd = true;
        Canvas canvas;
        EXPECT_LT(Decode(plugin, stream, canvas), 0) << sample.name;
    }
}

TEST_P(EveryReader, RefusesWhatIsNoSuchFile)
{
    ExpectRefused("", "nothing");
    ExpectRefused("\x55", "a byte");
    ExpectRefused("<!DOCTYPE html>\n<html><head><title>404 Not Found</title></head></html>\n",
                  "an error page");
    ExpectRefused(std::string("\x1f\x8b\x08\0\0\0\0\0\0\x03", 10) + std::string(300, 'z'), "gzip");
    ExpectRefused(std::string(4096, '\0'), "zeros");
    ExpectRefused(std::string(4096, '\xff'), "ones");
    for (const Format& other : formats)
        // The two share a container, and the one library reads both.
        if (std::string(other.folder) != GetParam().folder &&
            std::string(other.folder) + GetParam().folder != "avifheif")
            ExpectRefused(SoundFiles(other.folder).front().bytes, other.library);
    for (const Sample& sample : SmallSoundFiles(GetParam().folder))
        for (const size_t count : {1u, 2u, 4u, 8u})
            ExpectRefused(sample.bytes.substr(0, count), sample.name + "'s first bytes");
}

TEST_P(EveryReader, RefusesEveryKeptFileOfTheOtherFormats)
{
    for (const Format& other : formats) {
        // As above.
        if (std::string(other.folder) == GetParam().folder ||
            std::string(other.folder) + GetParam().folder == "avifheif")
            continue;
        for (const Sample& sample : KeptFiles(other.folder))
            // A PNG among the files of another format is one for its own reader.
            if (sample.name.find("really-a-" + std::string(GetParam().folder)) == std::string::npos)
                ExpectRefused(sample.bytes, sample.name);
    }
}

TEST_P(EveryReader, TellsASizeOrAFailureOfEveryKeptFile)
{
    for (const Sample& sample : KeptFiles(GetParam().folder))
        for (const bool half : {false, true}) {
            ByteStream stream(sample.bytes.substr(0, sample.bytes.size() / (half ? 2 : 1)));
            RasterInfo info = {};
            info.size = sizeof info;
            const int32_t result = plugin.getImageInfo(nullptr, &stream.record, &info);
            EXPECT_TRUE(result == 1 || result < 0) << sample.name << ": " << result;
            if (result == 1) {
                EXPECT_GE(std::min(info.width, info.height), 1u) << sample.name;
                EXPECT_LE(std::max(info.width, info.height), 65535u) << sample.name;
            }
            EXPECT_LT(stream.peak.Most(), 64u << 20) << sample.name;
        }
}

TEST_P(EveryReader, TakesAFailureOfTheHostForItsOwn)
{
    for (const Sample& sample : SmallSoundFiles(GetParam().folder)) {
        for (const int after : {0, 1, 5}) {
            Canvas lock;
            lock.failLockAfter = after;
            Canvas unlock;
            unlock.failUnlockAfter = after;
            const int32_t locked = Read(sample.bytes, lock);
            if (lock.locks > after) {
                EXPECT_LT(locked, 0) << sample.name << " lock " << after;
            }
            (void)Read(sample.bytes, unlock); // the last line's unlock does nothing
        }
        Canvas canvas;
        canvas.mostBytes = 2;
        EXPECT_LT(Read(sample.bytes, canvas), 0) << sample.name;
    }
}

TEST_P(EveryReader, LocksOneLineAtATimeAndLeavesNothingInMemory)
{
    for (const Sample& sample : SmallSoundFiles(GetParam().folder)) {
        Canvas canvas;
        ASSERT_EQ(Read(sample.bytes, canvas), 1) << sample.name;
        EXPECT_LE(canvas.mostLentAtOnce, 2u) << sample.name; // the last line stays
    }
    const auto samples = SmallSoundFiles(GetParam().folder);
    const auto readAll = [&] {
        for (const Sample& sample : samples) {
            Canvas whole;
            (void)Read(sample.bytes, whole);
            Canvas part;
            (void)Read(sample.bytes.substr(0, sample.bytes.size() / 2), part);
        }
    };
    // What a library sets up once for a process stays with it.
    readAll();
    readAll();
    const size_t before = MemoryInUse();
    readAll();
    readAll();
    EXPECT_LE(MemoryInUse(), before + 4096 + 4 * samples.size() * GetParam().leftBytes);
}
