// The file itself: whether the host can load it, what it exports and needs, how it comes and goes.

#include "kit/check/Check.h"
#include "kit/check/ElfSymbols.h"
#include "kit/check/Text.h"
#include "kit/check/Workbench.h"
#include "plugin/AdjustPlugin.h"
#include "plugin/EffectPlugin.h"
#include "plugin/InputPlugin.h"
#include "plugin/OutputPlugin.h"
#include "plugin/PrintPlugin.h"
#include "plugin/ScalePlugin.h"
#include "plugin/SubtractPlugin.h"

#include <dlfcn.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>

namespace plugincheck
{

namespace
{

namespace fs = std::filesystem;

constexpr u32 IdentityRoom = 1024;

#ifdef __SANITIZE_ADDRESS__
constexpr double SlowMilliseconds = 10; // the sanitizer looks at every library that comes
#else
constexpr double SlowMilliseconds = 1;
#endif
constexpr int TimedLoads = 15;
constexpr int TimedRounds = 4;

constexpr int WarmingRounds = 20;
constexpr int GrowthRounds = 200;
constexpr size_t GrowthAllowed = 64 * 8; // what the C run time itself keeps, once in a while

/// What the host's loader says; it tells the program only that it failed.
std::string LoaderWords(const std::string& path)
{
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library != nullptr) {
        dlclose(library);
        return {};
    }
    const char* words = dlerror();
    std::string text = words != nullptr ? words : "";
    const std::string own = path + ": ";
    if (text.compare(0, own.size(), own) == 0)
        text.erase(0, own.size());
    return text;
}

bool EndsIn(const std::string& text, const char* end)
{
    const size_t length = std::char_traits<char>::length(end);
    return text.size() >= length && strcasecmp(text.c_str() + text.size() - length, end) == 0;
}

/// Names that linkers and sanitizers put into every library.
bool IsToolsOwn(const std::string& name)
{
    for (const char* own : {"_init", "_fini", "_edata", "_end", "__bss_start", "_ftext"})
        if (name == own)
            return true;
    for (const char* start : {"__asan", "___asan", "__odr_asan", "__ubsan", "__sanitizer", "__tsan",
                              "__gcov", "__llvm", "__start_", "__stop_"})
        if (name.compare(0, std::char_traits<char>::length(start), start) == 0)
            return true;
    return false;
}

std::unique_ptr<PluginModule> HostsClass(Kind kind)
{
    switch (kind) {
    case Input:
        return std::make_unique<InputPlugin>();
    case Output:
        return std::make_unique<OutputPlugin>();
    case Print:
        return std::make_unique<PrintPlugin>();
    case Effect:
        return std::make_unique<EffectPlugin>();
    case Adjust:
        return std::make_unique<AdjustPlugin>();
    case Scale:
        return std::make_unique<ScalePlugin>();
    default:
        return std::make_unique<SubtractPlugin>();
    }
}

/// Milliseconds from the load to the first answer.
double TimeLoad(PluginUnderCheck* plugin, const std::u16string& path)
{
    TavrixChar identity[IdentityRoom + 1] = {};
    const auto start = std::chrono::steady_clock::now();
    (void)plugin->Load(path);
    (void)plugin->Ask(PluginInfoIdentity, identity, IdentityRoom);
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    (void)plugin->Unload();
    return taken.count();
}

} // namespace

void CheckLoads(CheckContext& context)
{
    if (!EndsIn(context.plugin.name, ".dll"))
        context.Violation("The file's name does not end in \".dll\", and the host looks for no "
                          "other.",
                          "extension");
    WatchFor(&context, {});
    PluginUnderCheck plugin(KindCount);
    context.Doing("", "while it was loaded");
    const bool loaded = plugin.Load(DevicePath(context.plugin.path));
    if (!loaded) {
        const std::string words =
            ReadLibraryFile(context.plugin.path).readable ? LoaderWords(context.plugin.path) : "";
        context.Violation("The host cannot load it" +
                              (words.empty() ? std::string(": it is no library of this machine.")
                                             : ": " + words + "."),
                          "load");
        return;
    }
    context.Doing("", "while it was unloaded");
    (void)plugin.Unload();
}

void CheckToolkit(CheckContext& context)
{
    for (const std::string& library : ReadLibraryFile(context.plugin.path).needed)
        if (library.compare(0, 5, "libQt") == 0)
            context.Violation("It is linked to " + library +
                              "; a plugin's windows come from the device's interface, and the "
                              "host may run on another toolkit.");
}

void CheckQuestions(CheckContext& context)
{
    WatchFor(&context, {});
    PluginUnderCheck plugin(KindCount);
    if (plugin.Load(DevicePath(context.plugin.path)) && !plugin.Has("GetPluginInfo"))
        context.Violation("It does not export GetPluginInfo, so the host takes it for no plugin.");
}

void CheckProcessing(CheckContext& context)
{
    WatchFor(&context, {});
    PluginUnderCheck plugin(context.plugin.kind);
    const char* work = WorkExport(context.plugin.kind);
    if (plugin.Load(DevicePath(context.plugin.path)) && !plugin.Has(work))
        context.Violation(std::string("It does not export ") + work + ", which does the work of " +
                          KindWord(context.plugin.kind) + " plugins.");
}

void CheckSurplus(CheckContext& context)
{
    const std::vector<std::string> allowed = AllowedExports(context.plugin.kind);
    std::vector<std::string> surplus;
    for (const ExportedSymbol& symbol : ReadLibraryFile(context.plugin.path).exports) {
        if (symbol.unique)
            context.Violation("It exports the unique symbol " + symbol.name +
                                  ", which keeps it in memory for good; build with "
                                  "-fno-gnu-unique.",
                              "unique");
        else if (!IsToolsOwn(symbol.name) &&
                 std::find(allowed.begin(), allowed.end(), symbol.name) == allowed.end())
            surplus.push_back(symbol.name);
    }
    if (surplus.empty())
        return;
    std::string names;
    for (size_t i = 0; i < surplus.size() && i < 4; ++i)
        names += (i == 0 ? "" : ", ") + surplus[i];
    context.Violation("It exports " + Counted(surplus.size(), "symbol") + " that no " +
                      KindWord(context.plugin.kind) + " plugin has (" + names +
                      (surplus.size() > 4 ? ", ..." : "") +
                      "); build with hidden visibility and export the contract's functions only.");
}

void CheckListed(CheckContext& context)
{
    // In a folder of its kind, as an installed plugin stands.
    char folder[4096];
    if (getcwd(folder, sizeof folder) == nullptr)
        return;
    const std::string place = std::string(folder) + "/" + KindWord(context.plugin.kind);
    std::error_code error;
    fs::create_directories(place, error);
    fs::create_symlink(context.plugin.path, place + "/CHECKED.dll", error);
    WatchFor(&context, {});
    const std::unique_ptr<PluginModule> host = HostsClass(context.plugin.kind);
    context.Doing("", "while the host looked for plugins");
    const i32 found = host->ScanIn(DevicePath(folder).c_str(), ForgetPaths);
    context.Doing("", "while the host loaded it for a use");
    const bool loaded = found == 1 && host->LoadByIndex(0, 17) > 0;
    context.Doing("", "while the host unloaded it");
    (void)host->Unload();
    context.DoingNothing();
    if (!loaded)
        context.Violation(std::string("The host does not find it in the folder ") +
                          KindWord(context.plugin.kind) + ".");
}

void CheckQuick(CheckContext& context)
{
    WatchFor(&context, {});
    PluginUnderCheck plugin(context.plugin.kind);
    const std::u16string path = DevicePath(context.plugin.path);
    context.Doing("", "while it was loaded many times");
    double best = 0;
    for (int round = 0; round < TimedRounds; ++round) {
        std::vector<double> times;
        for (int i = 0; i < TimedLoads; ++i)
            times.push_back(TimeLoad(&plugin, path));
        std::nth_element(times.begin(), times.begin() + TimedLoads / 2, times.end());
        const double median = times[TimedLoads / 2];
        best = round == 0 ? median : std::min(best, median);
        if (best <= SlowMilliseconds)
            return;
        usleep(100000); // others may be at work on this machine
    }
    char number[32];
    std::snprintf(number, sizeof number, "%.1f", best);
    context.Violation(std::string("It takes ") + number +
                      " milliseconds from its load to its first answer, and every plugin is loaded "
                      "twice at each start; open large libraries in the call that needs them.");
}

void CheckUnmapped(CheckContext& context)
{
    WatchFor(&context, {});
    PluginUnderCheck plugin(context.plugin.kind);
    const std::string real = fs::canonical(context.plugin.path).string();
    context.Doing("", "while it was loaded and unloaded");
    if (!plugin.Load(DevicePath(context.plugin.path)))
        return;
    TavrixChar text[IdentityRoom + 1] = {};
    (void)plugin.Ask(PluginInfoIdentity, text, IdentityRoom);
    (void)plugin.Unload();
    if (IsMapped(real))
        context.Violation("It stays in memory when it is unloaded, by a unique symbol, a thread's "
                          "own data with a destructor or a flag of its link.");
}

void CheckGrowth(CheckContext& context)
{
    WatchFor(&context, {});
    PluginUnderCheck plugin(context.plugin.kind);
    const std::u16string path = DevicePath(context.plugin.path);
    context.Doing("", "while it was loaded and unloaded many times");
    const auto rounds = [&plugin, &path](int count) {
        TavrixChar text[IdentityRoom + 1] = {};
        for (int i = 0; i < count; ++i) {
            (void)plugin.Load(path);
            (void)plugin.Ask(PluginInfoName, text, IdentityRoom);
            (void)plugin.Unload();
        }
    };
    rounds(WarmingRounds);
    const size_t before = AllocatedBytes();
    rounds(GrowthRounds);
    const size_t after = AllocatedBytes();
    if (after > before + GrowthAllowed)
        context.Violation("Loading, asking and unloading it " + std::to_string(GrowthRounds) +
                          " times leaves " + Counted(after - before, "byte") + " of memory taken.");
}

} // namespace plugincheck
