// What the tests of this folder share: folders of the device with plugins of the tests in them, and
// the callbacks a host hands to a plugin, which keep what they are told.
#pragma once

#include "platform/testing/core/TestHome.h"
#include "platform/testing/Testing.h"
#include "plugin/PluginHeap.h"
#include "plugin/PluginModule.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/testing/core/TestPaths.h"

namespace plugintest
{

/// The library of the plugin `name` of tests/fixtures, as the build made it.
inline std::filesystem::path Library(const std::string& name)
{
    return std::filesystem::path(tavrix::testing::InBuild("/tests/plugins/fixtures")) /
           (name + ".dll");
}

/// The device path of a host path: all of the host lies below \Computer.
inline std::u16string DevicePath(const std::filesystem::path& host)
{
    std::string text = "\\Computer" + host.string();
    for (char& character : text)
        if (character == '/')
            character = '\\';
    return tavrix::testing::Wide(text);
}

/// A fresh folder to look for plugins in.
class PluginFolder
{
public:
    PluginFolder() : host(tavrix::testing::FreshFolder()) {}
    explicit PluginFolder(std::filesystem::path given) : host(std::move(given)) {}

    /// Puts a plugin of the tests under `file` into the folder of a kind.
    void Put(const std::string& fixture, const std::string& file,
             const std::string& kind = "INPUT") const
    {
        std::filesystem::create_directories(host / kind);
        std::filesystem::copy_file(Library(fixture), host / kind / file,
                                   std::filesystem::copy_options::overwrite_existing);
    }
    void PutText(const std::string& file, const std::string& kind = "INPUT") const
    {
        std::filesystem::create_directories(host / kind);
        std::ofstream(host / kind / file) << "no library\n";
    }
    std::filesystem::path Host() const { return host; }
    std::u16string Device() const { return DevicePath(host); }

private:
    std::filesystem::path host;
};

/// Where the user's plugins lie, which the program sees among its own. The folder beside the test
/// program is shared by all tests that run at the time, and none writes to it.
inline PluginFolder ProgramPlugins()
{
    const std::filesystem::path own =
        std::filesystem::path(tavrix::testing::TestHome()) / "data" / "tavrix" / "PLUGINS";
    std::filesystem::remove_all(own);
    std::filesystem::create_directories(own);
    return PluginFolder(own);
}

/// Whether a library of this file name is in the process.
inline bool IsMapped(const std::string& file)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find("/" + file) != std::string::npos)
            return true;
    return false;
}

/// What the plugin told through the callbacks.
struct Told {
    std::map<std::u16string, uintptr_t> numbers;
    std::vector<std::pair<u32, u32>> progress;
    std::vector<std::u16string> messages;
    std::vector<std::u16string> captions;
    std::vector<u32> flags;
    std::vector<std::u16string> asked;
    bool heapAtMessage = false; // whether the heap of a call was there at the last message
    i32 progressAnswer = 1;
};

inline Told& CurrentTold()
{
    static Told told;
    return told;
}

inline PluginCallbacks Callbacks()
{
    CurrentTold() = {};
    return {
        [](u32 done, u32 total) -> i32 {
            CurrentTold().progress.emplace_back(done, total);
            return CurrentTold().progressAnswer;
        },
        [](const TavrixChar* text, const TavrixChar* caption, u32 flags) -> i32 {
            CurrentTold().messages.emplace_back(text == nullptr ? u"(null)" : text);
            CurrentTold().captions.emplace_back(caption == nullptr ? u"(null)" : caption);
            CurrentTold().flags.push_back(flags);
            CurrentTold().heapAtMessage = PluginHeap() != nullptr;
            return 0;
        },
        [](Variant* item) -> i32 {
            if (item != nullptr && item->name != nullptr)
                CurrentTold().numbers[item->name] = item->value;
            return 3;
        },
        [](Variant* item) -> i32 {
            if (item != nullptr && item->name != nullptr)
                CurrentTold().asked.emplace_back(item->name);
            return -10;
        },
    };
}

} // namespace plugintest
