// The readers in the program's own hands: found in their folder, loaded by the host, fed from a
// file stream, writing into a real picture, with and without memory.

#include "foundation/FileStream.h"
#include "foundation/MemoryGauge.h"
#include "image/Raster.h"
#include "platform/testing/Testing.h"
#include "plugin/InputPlugin.h"
#include "standard-plugins/tests/support/JpegMaking.h"
#include "standard-plugins/tests/support/PngMaking.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/testing/core/TestPaths.h"

using plugintest::MakeJpeg;
using plugintest::MakePng;

namespace
{

constexpr u32 width = 53;
constexpr u32 height = 71;

u32 Sample(u32 x, u32 y, int channel)
{
    return (x * 13 + y * 29 + x * y * 3 + static_cast<u32>(channel) * 80) & 255;
}

uint8_t Smooth(u32 x, u32 y, int channel)
{
    return static_cast<uint8_t>(x * 2 + y + static_cast<u32>(channel) * 20);
}

std::u16string DevicePath(const std::filesystem::path& host)
{
    std::string text = "\\Computer" + host.string();
    for (char& character : text)
        if (character == '/')
            character = '\\';
    return tavrix::testing::Wide(text);
}

PluginCallbacks Callbacks()
{
    return {[](u32, u32) -> i32 { return 1; },
            [](const TavrixChar*, const TavrixChar*, u32) -> i32 { return 0; },
            [](Variant*) -> i32 { return 3; }, [](Variant*) -> i32 { return -10; }};
}

/// A picture that tells how many of its lines are in memory.
class OpenRaster : public Raster
{
public:
    u32 LinesInMemory() const { return lineCount; }
};

class Hosted : public testing::Test
{
protected:
    Hosted()
    {
        tavrix::testing::SetFreeMemory(1u << 30);
        MemoryGauge::Sample();
        const std::filesystem::path plugins = tavrix::testing::InBuild("/bin/PLUGINS");
        found = host.ScanIn(DevicePath(plugins).c_str(), ForgetPaths);
    }
    ~Hosted() override
    {
        host.Unload();
        tavrix::testing::Reset();
        MemoryGauge::Sample();
    }

    void Load(const std::string& file)
    {
        for (u32 i = 0; i < static_cast<u32>(found); ++i) {
            const std::string path = tavrix::testing::Utf8(host.Path(i));
            if (path.size() >= file.size() &&
                path.compare(path.size() - file.size(), file.size(), file) == 0) {
                ASSERT_EQ(host.LoadByIndex(i, 0), 1);
                return;
            }
        }
        FAIL() << file << " is not among the plugins";
    }

    i32 Read(const std::string& bytes, Raster* image)
    {
        const std::filesystem::path file = std::filesystem::path(folder) / "picture";
        std::ofstream(file, std::ios::binary) << bytes;
        FileStream stream;
        EXPECT_EQ(stream.Open(DevicePath(file).c_str(), 1), 1);
        const i32 result = host.GetImage(nullptr, &stream, image, Callbacks());
        image->UnlockAll();
        return result;
    }

    static void PretendMemory(u64 bytes)
    {
        tavrix::testing::SetFreeMemory(bytes);
        MemoryGauge::Sample();
    }

    // Bytes 0, 1, 2 of a pixel: blue, green, red.
    static void ExpectSamples(Raster* image)
    {
        RasterInfo info = {};
        info.size = sizeof info;
        ASSERT_EQ(image->GetInfo(&info), 1);
        ASSERT_EQ(info.width, width);
        ASSERT_EQ(info.height, height);
        ASSERT_EQ(info.depth, 24u);
        for (u32 y = 0; y < height; ++y) {
            u8* line = nullptr;
            ASSERT_EQ(image->LockLines(static_cast<i32>(y), &line, nullptr), 1);
            for (u32 x = 0; x < width; ++x)
                for (u32 byte = 0; byte < 3; ++byte)
                    ASSERT_EQ(line[3 * x + byte], Sample(x, y, static_cast<int>(2 - byte)))
                        << x << "," << y;
            image->ReleaseLines(static_cast<i32>(y), 1, 0);
        }
        image->UnlockAll();
    }

    tavrix::testing::Scope scope;
    InputPlugin host;
    i32 found = 0;
    std::string folder = tavrix::testing::FreshFolder();
};

} // namespace

TEST_F(Hosted, FindsBothReaders)
{
    EXPECT_GE(found, 2);
    Load("JPEG.dll");
    Load("PNG.dll");
}

TEST_F(Hosted, ReadsAFileIntoAPicture)
{
    Load("PNG.dll");
    for (const bool interlaced : {false, true}) {
        Raster image;
        EXPECT_EQ(
            Read(MakePng({.width = width, .height = height, .interlaced = interlaced}, Sample),
                 &image),
            1);
        ExpectSamples(&image);
    }
}

TEST_F(Hosted, ReadsIntoAPictureWhoseLinesLieInFiles)
{
    // Less than the host's reserve is free: every line goes to its own file when it is unlocked,
    // and an interlaced file brings each of them back several times.
    Load("PNG.dll");
    for (const bool interlaced : {false, true}) {
        OpenRaster image;
        const std::string file =
            MakePng({.width = width, .height = height, .interlaced = interlaced}, Sample);
        PretendMemory(1000);
        EXPECT_EQ(Read(file, &image), 1);
        EXPECT_LT(image.LinesInMemory(), 8u);
        PretendMemory(1u << 30);
        ExpectSamples(&image);
    }
}

TEST_F(Hosted, ReadsAPhotographIntoAPictureWhoseLinesLieInFiles)
{
    Load("JPEG.dll");
    for (const bool progressive : {false, true}) {
        const std::string file =
            MakeJpeg({.width = width, .height = height, .progressive = progressive}, Smooth);
        OpenRaster paged;
        PretendMemory(1000);
        EXPECT_EQ(Read(file, &paged), 1);
        EXPECT_LT(paged.LinesInMemory(), 8u);
        PretendMemory(1u << 30);
        const std::vector<uint8_t> reference = plugintest::ReferencePixels(file, 3);
        for (u32 y = 0; y < height; ++y) {
            u8* line = nullptr;
            ASSERT_EQ(paged.LockLines(static_cast<i32>(y), &line, nullptr), 1);
            for (u32 x = 0; x < width; ++x)
                for (u32 byte = 0; byte < 3; ++byte)
                    ASSERT_EQ(line[3 * x + byte], reference[(y * width + x) * 3 + 2 - byte]);
        }
    }
}

TEST_F(Hosted, StopsWhereALineCannotGoToItsFile)
{
    Load("PNG.dll");
    Raster image;
    const std::string file = MakePng({.width = width, .height = height}, Sample);
    PretendMemory(1000);
    int writes = 0;
    tavrix::testing::SetFileFault(
        [&](tavrix::platform::FileOperation operation, const WCHAR*, DWORD* shortBy) {
            if (operation != tavrix::platform::FileOperation::Write || ++writes < 20)
                return false;
            *shortBy = 1;
            return true;
        });
    EXPECT_EQ(Read(file, &image), -101);
    tavrix::testing::SetFileFault(nullptr);
}

TEST_F(Hosted, FailsCleanlyForBrokenFiles)
{
    for (const char* library : {"JPEG.dll", "PNG.dll"}) {
        Load(library);
        Raster image;
        EXPECT_LT(Read("", &image), 0);
        EXPECT_LT(Read("no picture at all", &image), 0);
    }
}
