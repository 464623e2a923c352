#include "standard-plugins/tests/support/Writing.h"

#include "foundation/MemoryStream.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "platform/testing/core/TestPaths.h"

namespace plugintest
{

std::u16string DevicePath(const std::filesystem::path& host)
{
    std::string text = "\\Computer" + host.string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return tavrix::testing::Wide(text);
}

std::string FileBytes(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void WriteBytes(const std::filesystem::path& file, const std::string& bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string OutputOf(const std::string& command)
{
    std::string text;
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 65536> part;
    while (pipe) {
        const size_t got = fread(part.data(), 1, part.size(), pipe);
        if (got == 0)
            break;
        text.append(part.data(), got);
    }
    if (pipe)
        pclose(pipe);
    return text;
}

std::string AnswerOf(const std::string& command)
{
    std::string text = OutputOf("( " + command + " ) 2>&1");
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

std::string NamesIn(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    std::string joined;
    for (const std::string& name : names)
        joined += (joined.empty() ? "" : "|") + name;
    return joined;
}

u8 Wild(u32 x, u32 y, int channel)
{
    u32 mixed = (x * 2654435761u) ^ (y * 2246822519u) ^ (static_cast<u32>(channel) * 3266489917u);
    mixed ^= mixed >> 15;
    mixed *= 2246822519u;
    return static_cast<u8>(mixed >> 23);
}

u8 Soft(u32 x, u32 y, int channel)
{
    const u32 slope = x * (channel == 0 ? 3 : 1) + y * (channel == 1 ? 2 : 1);
    const u32 folded = (slope + static_cast<u32>(channel) * 60) % 510;
    return static_cast<u8>(folded < 255 ? folded : 510 - folded);
}

void Fill(Raster* image, u32 width, u32 height, u32 depth, const Samples& samples)
{
    ASSERT_EQ(image->Create(width, height, depth, TEXT("\\Temp\\"), TEXT("\\Storage Card\\Temp\\")),
              1);
    const u32 step = depth / 8;
    for (u32 y = 0; y < height; ++y) {
        u8* line = nullptr;
        ASSERT_EQ(image->LockLines(static_cast<i32>(y), &line, nullptr), 1);
        for (u32 x = 0; x < width; ++x) {
            for (int channel = 0; channel < 3; ++channel)
                line[x * step + 2 - static_cast<u32>(channel)] = samples(x, y, channel);
            if (step == 4)
                line[x * step + 3] = Wild(y, x, 3);
        }
        image->ReleaseLines(static_cast<i32>(y), 1, 0);
    }
    image->UnlockAll();
}

std::string Rgb(u32 width, u32 height, const Samples& samples)
{
    std::string rgb;
    for (u32 y = 0; y < height; ++y)
        for (u32 x = 0; x < width; ++x)
            for (int channel = 0; channel < 3; ++channel)
                rgb += static_cast<char>(samples(x, y, channel));
    return rgb;
}

std::string Ppm(u32 width, u32 height, const Samples& samples)
{
    return "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n" +
           Rgb(width, height, samples);
}

WriterHost& CurrentWriterHost()
{
    static WriterHost host;
    return host;
}

PluginCallbacks WriterCallbacks()
{
    return {[](u32 done, u32 total) -> i32 {
                WriterHost& host = CurrentWriterHost();
                host.progress.emplace_back(done, total);
                if (host.onProgress)
                    host.onProgress();
                const auto calls = static_cast<int>(host.progress.size());
                return host.refuseFrom >= 0 && calls > host.refuseFrom ? -1 : 1;
            },
            [](const TavrixChar* text, const TavrixChar* caption, u32 flags) -> i32 {
                CurrentWriterHost().messages.emplace_back(text);
                CurrentWriterHost().captions.emplace_back(caption);
                CurrentWriterHost().messageFlags.push_back(flags);
                return 0;
            },
            [](Variant* item) -> i32 {
                WriterHost& host = CurrentWriterHost();
                if (host.storesNothing)
                    return -2;
                host.settings[item->name] = item->value;
                return 3;
            },
            [](Variant* item) -> i32 {
                const auto& settings = CurrentWriterHost().settings;
                const auto stored = settings.find(item->name);
                if (stored == settings.end())
                    return -10;
                item->value = stored->second;
                return 1;
            }};
}

WriterTest::WriterTest()
{
    CurrentWriterHost() = {};
    PretendMemory(u64{1} << 30);
    const auto plugins = tavrix::testing::InBuild("/bin/PLUGINS");
    found = plugin.ScanIn(DevicePath(plugins).c_str(), ForgetPaths);
}

WriterTest::~WriterTest()
{
    plugin.Unload();
    tavrix::testing::Reset();
    MemoryGauge::Sample();
}

void WriterTest::Load(const std::string& file, u32 language)
{
    for (u32 i = 0; found > 0 && i < static_cast<u32>(found); ++i)
        if (tavrix::testing::Utf8(plugin.Path(i)).ends_with("\\" + file)) {
            ASSERT_EQ(plugin.LoadByIndex(i, language), 1);
            return;
        }
    FAIL() << file << " is not among the plugins";
}

i32 WriterTest::Write(Raster* image, const std::filesystem::path& target)
{
    CurrentWriterHost().progress.clear();
    const i32 result =
        plugin.PutImage(DevicePath(target).c_str(), nullptr, image, WriterCallbacks());
    image->UnlockAll();
    return result;
}

i32 WriterTest::WriteStream(Raster* image, Stream* stream)
{
    CurrentWriterHost().progress.clear();
    const i32 result = plugin.PutImage(nullptr, stream, image, WriterCallbacks());
    image->UnlockAll();
    return result;
}

void WriterTest::WriteQuickly(Raster* image, const std::filesystem::path& target)
{
    std::string room(256 * 1024, '\0');
    MemoryStream stream;
    ASSERT_EQ(stream.Open(room.data(), static_cast<u32>(room.size()), 0, TEXT("")), 1);
    ASSERT_EQ(WriteStream(image, &stream), 1);
    u64 size = 0;
    i64 none = 0;
    ASSERT_EQ(stream.Seek(&none, &size, 1), 1);
    WriteBytes(target, room.substr(0, size));
}

void WriterTest::PretendMemory(u64 bytes)
{
    tavrix::testing::SetFreeMemory(bytes);
    MemoryGauge::Sample();
}

} // namespace plugintest
