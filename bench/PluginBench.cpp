// What the host itself costs around a plugin: loading, asking, the heap and the tables of a call,
// and the pass over all plugins at the start. Beside each what the system takes for the same by
// itself: opening the library, looking its exports up and closing it. "of_plain" is the ratio of
// the two in the same run.

#include "foundation/MemoryStream.h"
#include "image/Raster.h"
#include "platform/testing/core/TestPaths.h"
#include "plugin/EffectPlugin.h"
#include "plugin/FormatList.h"
#include "plugin/FunctionTables.h"
#include "plugin/InputPlugin.h"
#include "plugin/PluginHeap.h"
#include "plugin/PluginObjects.h"
#include "plugin/PluginScan.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace
{

namespace fs = std::filesystem;

const fs::path folder = tavrix::testing::InBuild("/bench/plugin-folders");

std::u16string DevicePath(const fs::path& host)
{
    std::u16string path = u"\\Computer";
    for (const char character : host.string())
        path += character == '/' ? u'\\' : static_cast<char16_t>(character);
    return path;
}

/// A folder with `count` plugins of a kind, each a file of its own; made anew.
fs::path FolderOf(const std::string& library, const std::string& kind, int count)
{
    const fs::path place = folder / (kind + std::to_string(count));
    fs::remove_all(place);
    fs::create_directories(place / kind);
    for (int i = 0; i < count; ++i)
        fs::copy_file(library, place / kind / (std::to_string(1000 + i) + ".dll"));
    return place;
}

i32 TAVRIX_CALL Progress(u32, u32)
{
    return Done;
}
i32 TAVRIX_CALL Message(const TavrixChar*, const TavrixChar*, u32)
{
    return NothingDone;
}
i32 TAVRIX_CALL Property(Variant*)
{
    return Failed;
}
constexpr PluginCallbacks callbacks = {Progress, Message, Property, Property};

/// Opens, looks up what the host looks up, and closes.
void Plainly(const std::string& library)
{
    void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        std::abort();
    for (const char* name : {"SetLanguage", "GetPluginInfo", "GetPluginInfo", "GetImageInfo",
                             "GetImage", "GetImageFast", "Configure"})
        benchmark::DoNotOptimize(dlsym(handle, name));
    dlclose(handle);
}

double Now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// Runs ours and the plain way by turns, counts ours, and tells the ratio.
template <typename Ours, typename Plain>
void Beside(benchmark::State& state, Ours ours, Plain plain)
{
    double mine = 0;
    double theirs = 0;
    for (auto _ : state) {
        const double begin = Now();
        ours();
        const double middle = Now();
        plain();
        theirs += Now() - middle;
        mine += middle - begin;
        state.SetIterationTime(middle - begin);
    }
    state.counters["of_plain"] = mine / theirs;
}

void LoadAndUnload(benchmark::State& state, const std::string& library)
{
    const fs::path place = FolderOf(library, "INPUT", 1);
    InputPlugin plugin;
    if (plugin.ScanIn(DevicePath(place).c_str(), ForgetPaths) != 1)
        return state.SkipWithError("the plugin is not found");
    plugin.Unload();
    Beside(
        state,
        [&] {
            benchmark::DoNotOptimize(plugin.LoadByIndex(0, 0));
            plugin.Unload();
        },
        [&] { Plainly((place / "INPUT/1000.dll").string()); });
}
BENCHMARK_CAPTURE(LoadAndUnload, nothing,
                  tavrix::testing::InBuild("/bench/bench_nothing_INPUT.dll"))
    ->UseManualTime();
BENCHMARK_CAPTURE(LoadAndUnload, jpeg, tavrix::testing::InBuild("/bin/PLUGINS/INPUT/JPEG.dll"))
    ->UseManualTime();

/// The pass over a folder of plugins, which loads each twice, beside the same loads by themselves.
void StartUpPass(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    const fs::path place =
        FolderOf(tavrix::testing::InBuild("/bin/PLUGINS/INPUT/JPEG.dll"), "INPUT", count);
    Beside(
        state,
        [&] {
            InputPlugin plugins;
            FormatList formats;
            WCHAR text[2048];
            const i32 found = plugins.ScanIn(DevicePath(place).c_str(), KeepPaths);
            if (found != count)
                std::abort();
            for (i32 i = 0; i < found; ++i) {
                (void)plugins.LoadByIndex(static_cast<u32>(i), 0);
                for (u32 k = 0; k < PluginFormatLimit; ++k) {
                    WCHAR pattern[2048];
                    if (plugins.Info(PluginInfoFormat + 2 * k, text, 2048) < 0 ||
                        plugins.Info(PluginInfoPattern + 2 * k, pattern, 2048) < 0)
                        break;
                    (void)formats.Add(i, text, pattern);
                }
                (void)plugins.Info(PluginInfoName, text, 2048);
                plugins.Unload();
            }
        },
        [&] {
            for (int i = 0; i < count; ++i) {
                const std::string file =
                    (place / "INPUT" / (std::to_string(1000 + i) + ".dll")).string();
                Plainly(file);
                Plainly(file);
            }
        });
}
BENCHMARK(StartUpPass)->Arg(0)->Arg(10)->Arg(100)->UseManualTime()->Unit(benchmark::kMillisecond);

/// A call of an effect that does nothing: the heap, both tables, the shim.
void CallAnEffect(benchmark::State& state)
{
    const fs::path place =
        FolderOf(tavrix::testing::InBuild("/bench/bench_nothing_EFFECT.dll"), "EFFECT", 1);
    EffectPlugin plugin;
    if (plugin.ScanIn(DevicePath(place).c_str(), ForgetPaths) != 1 || plugin.LoadByIndex(0, 0) < 0)
        return state.SkipWithError("the plugin is not found");
    Raster image;
    for (auto _ : state)
        benchmark::DoNotOptimize(plugin.Process(&image, callbacks));
}
BENCHMARK(CallAnEffect);

/// The same for a reader, with the record of a stream.
void CallAReader(benchmark::State& state)
{
    const fs::path place =
        FolderOf(tavrix::testing::InBuild("/bench/bench_nothing_INPUT.dll"), "INPUT", 1);
    InputPlugin plugin;
    if (plugin.ScanIn(DevicePath(place).c_str(), ForgetPaths) != 1 || plugin.LoadByIndex(0, 0) < 0)
        return state.SkipWithError("the plugin is not found");
    Raster image;
    MemoryStream stream;
    if (stream.Open(nullptr, 16, 0, TEXT("bench")) < 0)
        return state.SkipWithError("no stream");
    for (auto _ : state)
        benchmark::DoNotOptimize(plugin.GetImage(nullptr, &stream, &image, callbacks));
}
BENCHMARK(CallAReader);

/// A line locked and unlocked through the table, beside the same on the raster itself.
void LockThroughTheTable(benchmark::State& state)
{
    if (MakeHeap() < 0)
        return state.SkipWithError("no heap");
    RasterFunctionTable table;
    WriteRasterFunctions(&table);
    Raster image;
    if (image.Create(600, 400, 24, nullptr, nullptr) < 0)
        return state.SkipWithError("no picture");
    LendPluginImage(&image);
    Beside(
        state,
        [&] {
            for (i32 line = 0; line < 399; ++line) {
                void* bytes = nullptr;
                benchmark::DoNotOptimize(
                    table.RasterLockLines(ToHandle(&image), line, &bytes, nullptr));
                benchmark::DoNotOptimize(table.RasterUnlockLines(ToHandle(&image), line, 1));
            }
        },
        [&] {
            for (i32 line = 0; line < 399; ++line) {
                u8* bytes = nullptr;
                benchmark::DoNotOptimize(image.LockLines(line, &bytes, nullptr));
                benchmark::DoNotOptimize(image.ReleaseLines(line, 1, 0));
            }
        });
    DropHeap();
}
BENCHMARK(LockThroughTheTable)->UseManualTime();

} // namespace

BENCHMARK_MAIN();
