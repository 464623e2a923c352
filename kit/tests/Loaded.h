// What the tests of the kit share: a plugin that build-templates has made, loaded by the program's
// own class of its kind; pictures by their bytes; callbacks that keep what they are told.
#pragma once

#include "foundation/MemoryGauge.h"
#include "image/Raster.h"
#include "platform/testing/Testing.h"
#include "plugin/PluginModule.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kittest
{

inline std::filesystem::path WorkFolder()
{
    return TAVRIX_KIT_WORK;
}

/// All of the host lies below \Computer.
inline std::u16string DevicePath(const std::filesystem::path& host)
{
    std::string text = "\\Computer" + host.string();
    for (char& character : text)
        if (character == '/')
            character = '\\';
    return tavrix::testing::Wide(text);
}

inline std::string FileBytes(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline bool IsMapped(const std::string& file)
{
    return FileBytes("/proc/self/maps").find("/" + file) != std::string::npos;
}

/// A plugin of a kind, loaded while this lives.
template <class Kind>
class Loaded
{
public:
    explicit Loaded(const std::string& name, u32 language = 0) : file(name + ".dll")
    {
        tavrix::testing::SetFreeMemory(1u << 30);
        MemoryGauge::Sample();
        const i32 found =
            plugin.ScanIn(DevicePath(WorkFolder() / "plugins/PLUGINS").c_str(), ForgetPaths);
        const std::u16string end = u"\\" + tavrix::testing::Wide(file);
        for (u32 i = 0; found > 0 && i < static_cast<u32>(found); ++i) {
            const std::u16string path = plugin.Path(i);
            if (path.ends_with(end)) {
                EXPECT_EQ(plugin.LoadByIndex(i, language), 1);
                return;
            }
        }
        ADD_FAILURE() << file << " is none of the " << found << " plugins of its kind";
    }
    ~Loaded()
    {
        plugin.Unload();
        EXPECT_FALSE(IsMapped(file)) << "still in the process after its unload";
    }
    Kind* operator->() { return &plugin; }

    std::u16string Info(u32 index)
    {
        WCHAR text[257] = {};
        return plugin.Info(index, text, 256) > 0 ? text : u"(none)";
    }

private:
    std::string file;
    Kind plugin;
};

/// What a plugin told and was answered.
struct Told {
    std::map<std::u16string, uintptr_t> numbers;
    std::map<std::u16string, std::u16string> texts;
    std::vector<std::pair<u32, u32>> progress;
    std::vector<std::u16string> messages;
    size_t refusedFrom = ~size_t{0}; // the first report that is answered with a refusal
};

inline Told& CurrentTold()
{
    static Told told;
    return told;
}

inline PluginCallbacks Callbacks()
{
    return {
        [](u32 done, u32 total) -> i32 {
            Told& told = CurrentTold();
            told.progress.emplace_back(done, total);
            return told.progress.size() > told.refusedFrom ? -1 : 1;
        },
        [](const TavrixChar* text, const TavrixChar*, u32) -> i32 {
            CurrentTold().messages.emplace_back(text);
            return 0;
        },
        [](Variant* item) -> i32 {
            CurrentTold().numbers[item->name] = item->value;
            return 3;
        },
        [](Variant* item) -> i32 {
            Told& told = CurrentTold();
            if (item->type == VariantWide && told.texts.contains(item->name)) {
                item->value = reinterpret_cast<uintptr_t>(told.texts[item->name].c_str());
                return 1;
            }
            if (item->type == VariantUnsigned && told.numbers.contains(item->name)) {
                item->value = told.numbers[item->name];
                return 1;
            }
            return -10;
        },
    };
}

using Bytes = std::vector<u8>;

/// A picture of the given lines, each without its padding.
inline void Fill(Raster* image, u32 depth, const std::vector<Bytes>& lines)
{
    const u32 width = static_cast<u32>(lines[0].size()) / (depth / 8);
    ASSERT_EQ(image->Create(width, static_cast<u32>(lines.size()), depth, TEXT("\\Temp\\"),
                            TEXT("\\Storage Card\\Temp\\")),
              1);
    for (size_t y = 0; y < lines.size(); ++y) {
        u8* line = nullptr;
        ASSERT_EQ(image->LockLines(static_cast<i32>(y), &line, nullptr), 1);
        std::copy(lines[y].begin(), lines[y].end(), line);
    }
    image->UnlockAll();
}

/// The lines of a picture without their padding.
inline std::vector<Bytes> Lines(Raster* image)
{
    image->UnlockAll();
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(image->GetInfo(&info), 1);
    std::vector<Bytes> lines;
    for (u32 y = 0; y < info.height; ++y) {
        u8* line = nullptr;
        EXPECT_EQ(image->LockLines(static_cast<i32>(y), &line, nullptr), 1);
        lines.emplace_back(line, line + info.width * (info.depth / 8));
    }
    image->UnlockAll();
    return lines;
}

/// Every test begins with callbacks that have been told nothing.
class KitTest : public ::testing::Test
{
protected:
    KitTest() { CurrentTold() = {}; }
    ~KitTest() override
    {
        tavrix::testing::Reset();
        MemoryGauge::Sample();
    }
    tavrix::testing::Scope scope;
};

} // namespace kittest
