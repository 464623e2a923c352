// A writer in the program's own hands: found in its folder, loaded by the host, given a real
// picture, writing to a file of the device or to a stream; and the means to look at what it wrote
// with programs that nobody here has written.
#pragma once

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"
#include "platform/testing/Testing.h"
#include "plugin/OutputPlugin.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace plugintest
{

/// The path of the device under which all of the host lies.
std::u16string DevicePath(const std::filesystem::path& host);
std::string FileBytes(const std::filesystem::path& file);
void WriteBytes(const std::filesystem::path& file, const std::string& bytes);
/// What a command of the host prints, byte for byte.
std::string OutputOf(const std::string& command);
/// The same with its errors and without the final line break.
std::string AnswerOf(const std::string& command);
/// Names in a folder of the host, in order, joined with "|".
std::string NamesIn(const std::filesystem::path& folder);

/// `channel` 0 red, 1 green, 2 blue.
using Samples = std::function<u8(u32 x, u32 y, int channel)>;
/// Every bit of every sample changes often.
u8 Wild(u32 x, u32 y, int channel);
/// As photographs are: neighbours are alike.
u8 Soft(u32 x, u32 y, int channel);
/// A picture of 24 or 32 bits; at 32 the fourth bytes are anything.
void Fill(Raster* image, u32 width, u32 height, u32 depth, const Samples& samples);
/// The rows of the same picture as red, green and blue bytes.
std::string Rgb(u32 width, u32 height, const Samples& samples);
/// The same as a binary PPM file.
std::string Ppm(u32 width, u32 height, const Samples& samples);

/// What the callbacks of a call were told, and what they answer.
struct WriterHost {
    std::vector<std::pair<u32, u32>> progress;
    std::vector<std::u16string> messages;
    std::vector<std::u16string> captions;
    std::vector<u32> messageFlags;
    std::map<std::u16string, uintptr_t> settings;
    bool storesNothing = false;
    /// The progress callback refuses its n-th call (from 0) and all behind it; none when negative.
    int refuseFrom = -1;
    /// Run in each call of the progress callback.
    std::function<void()> onProgress;
};
WriterHost& CurrentWriterHost();
PluginCallbacks WriterCallbacks();

class WriterTest : public testing::Test
{
protected:
    WriterTest();
    ~WriterTest() override;

    /// `file` as in "PNG.dll"; language 17 is Japanese, 9 English.
    void Load(const std::string& file, u32 language = 9);
    /// Writes to a file of the host, through its device path.
    i32 Write(Raster* image, const std::filesystem::path& target);
    i32 WriteStream(Raster* image, Stream* stream);
    /// Through a stream, for many small files: nobody waits for the disk. Must succeed.
    void WriteQuickly(Raster* image, const std::filesystem::path& target);
    void Set(const std::u16string& key, u32 value) { CurrentWriterHost().settings[key] = value; }
    static void PretendMemory(u64 bytes);

    tavrix::testing::Scope scope;
    OutputPlugin plugin;
    std::filesystem::path folder = tavrix::testing::FreshFolder();

private:
    i32 found = 0;
};

} // namespace plugintest
