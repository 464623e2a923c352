// A library is loaded for each use and unloaded behind it. Used ten thousand times it takes no more
// of the process than used once.

#include "image/Raster.h"
#include "plugin/InputPlugin.h"
#include "plugin/tests/Fixtures.h"

#include <unistd.h>

namespace
{

using plugintest::Callbacks;
using plugintest::IsMapped;
using plugintest::PluginFolder;

/// What the process holds, as the host tells it.
struct Taken {
    size_t mappings = 0;
    size_t files = 0;
    size_t residentBytes = 0;
    tavrix::platform::Holdings device;
};

Taken Look()
{
    Taken taken;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        ++taken.mappings;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        taken.files += !entry.path().empty();
    size_t pages = 0;
    std::ifstream sizes("/proc/self/statm");
    sizes >> pages >> pages;
    taken.residentBytes = pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
    taken.device = tavrix::platform::CountHoldings();
    return taken;
}

// The address sanitizer keeps what was freed for a while, and its own books of libraries.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IsWatched = true;
#elif defined(__has_feature)
constexpr bool IsWatched = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool IsWatched = false;
#endif

TEST(ManyLoads, TenThousandUsesOfAPluginTakeNoMoreThanOne)
{
    const tavrix::testing::Scope scope;
    const PluginFolder folder;
    folder.Put("good", "ten-thousand.dll");
    InputPlugin plugin;
    ASSERT_EQ(plugin.ScanIn(folder.Device().c_str(), ForgetPaths), 1);
    const auto use = [&] {
        Raster image;
        WCHAR name[16] = {};
        ASSERT_EQ(plugin.LoadByIndex(0, 17), 1);
        ASSERT_EQ(plugin.Info(1, name, 16), 1);
        ASSERT_EQ(plugin.GetImage(u"\\a", nullptr, &image, Callbacks()), 2);
        ASSERT_EQ(plugin.Unload(), 1);
    };
    for (int i = 0; i < 100; ++i)
        use();
    const Taken before = Look();
    for (int i = 0; i < 10000 && !HasFailure(); ++i)
        use();
    const Taken after = Look();
    EXPECT_FALSE(IsMapped("ten-thousand.dll"));
    EXPECT_EQ(after.files, before.files);
    EXPECT_TRUE(after.device == before.device);
    if (IsWatched)
        return;
    EXPECT_EQ(after.mappings, before.mappings);
    // What an emulator keeps of the code that it translated at each load counts as the process's.
    const std::vector<std::string> emulator = tavrix::testing::TestEmulator();
    if (!emulator.empty())
        return;
    // Less than 7 bytes a use; one forgotten block of the smallest size would be 32.
    EXPECT_LT(after.residentBytes, before.residentBytes + 65536)
        << "of " << before.residentBytes << " bytes";
}

} // namespace
