// A plugin that changes pictures in the program's own hands: found in its folder, loaded by the
// host, given a real picture; and the means to compare what came of it with sums of the test's own.
#pragma once

#include "standard-plugins/tests/support/MemoryInUse.h"
#include "standard-plugins/tests/support/Writing.h"

#include "plugin/AdjustPlugin.h"
#include "plugin/EffectPlugin.h"
#include "plugin/ScalePlugin.h"

#include "platform/testing/core/TestPaths.h"

namespace plugintest
{

/// Bytes of red, green and blue, row by row; the size beside them.
struct Pixels {
    u32 width = 0;
    u32 height = 0;
    std::vector<u8> bytes;
    u8 At(u32 x, u32 y, u32 channel) const { return bytes[(size_t{y} * width + x) * 3 + channel]; }
    bool operator==(const Pixels&) const = default;
};

/// What the picture holds; unlocks all its lines. It must be 24 bits deep.
Pixels PixelsOf(Raster* image);
/// The picture that Fill makes of the samples.
Pixels PixelsOf(u32 width, u32 height, const Samples& samples);
/// Exact values, in the order of Pixels::bytes, held against rounded ones: the largest distance.
double LargestError(const Pixels& got, const std::vector<double>& exact);

/// Lines of the host's line files at the moment.
size_t LineFiles();

template <typename Host>
class ChangeTest : public testing::Test
{
protected:
    ChangeTest()
    {
        CurrentWriterHost() = {};
        PretendMemory(u64{1} << 30);
        const auto plugins = tavrix::testing::InBuild("/bin/PLUGINS");
        found = plugin.ScanIn(DevicePath(plugins).c_str(), ForgetPaths);
    }
    ~ChangeTest() override
    {
        plugin.Unload();
        tavrix::testing::Reset();
        MemoryGauge::Sample();
    }

    /// `file` as in "Lanczos.dll"; language 17 is Japanese, 9 English.
    void Load(const std::string& file, u32 language = 9)
    {
        for (u32 i = 0; found > 0 && i < static_cast<u32>(found); ++i)
            if (tavrix::testing::Utf8(plugin.Path(i)).ends_with("\\" + file)) {
                ASSERT_EQ(plugin.LoadByIndex(i, language), 1);
                return;
            }
        FAIL() << file << " is not among the plugins";
    }
    /// EFFECT and ADJUST.
    i32 Process(Raster* image)
    {
        CurrentWriterHost().progress.clear();
        CurrentWriterHost().messages.clear();
        const i32 result = plugin.Process(image, WriterCallbacks());
        image->UnlockAll();
        return result;
    }
    void Set(const std::u16string& key, u32 value) { CurrentWriterHost().settings[key] = value; }
    static void PretendMemory(u64 bytes)
    {
        tavrix::testing::SetFreeMemory(bytes);
        MemoryGauge::Sample();
    }
    /// What the user was told, which has to be a single text.
    static std::u16string OnlyMessage()
    {
        const auto& messages = CurrentWriterHost().messages;
        return messages.size() == 1 ? messages[0]
                                    : u"(" + std::u16string(messages.size(), u'?') + u")";
    }

    tavrix::testing::Scope scope;
    Host plugin;
    std::filesystem::path folder = tavrix::testing::FreshFolder();

private:
    i32 found = 0;
};

/// Of the writes of lines' files the n-th fails, and all behind it or none of them.
void FailLineFilesFrom(int attempt, bool onward = true);

constexpr const char16_t* noLineText =
    u"A line of the picture cannot be had; memory or temporary space is short.";
constexpr const char16_t* noLineTextJapanese =
    u"画像の行を取得できません。メモリまたは一時領域が不足しています。";

} // namespace plugintest
