// tavrix-plugin-check: reads the command line, settles in a folder of its own without a display,
// and checks one file after the other.

#include "kit/check/ChildProcess.h"
#include "kit/check/FileCheck.h"
#include "kit/check/Options.h"
#include "kit/check/Text.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>

using namespace plugincheck;

#ifdef __SANITIZE_ADDRESS__
// A plugin that asks for more than there is must be told so, as without the sanitizer.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}
// Nor is it a leak of ours what stands in memory where a plugin ends the process.
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off()
{
    return IsChild() ? 1 : 0;
}
#endif

namespace
{

namespace fs = std::filesystem;

enum ExitStatus { AllPassed = 0, SomeViolate = 1, WrongUse = 2 };

int Refuse(const std::string& why)
{
    std::cerr << "tavrix-plugin-check: " << why << "\nTry tavrix-plugin-check --help.\n";
    return WrongUse;
}

void ShowList()
{
    for (const Check* check = Checks; check->key != nullptr; ++check)
        std::cout << check->key << ": " << check->rule << '\n';
}

bool ReadBytes(const std::string& path, std::vector<u8>* bytes)
{
    std::error_code error;
    std::ifstream file(path, std::ios::binary);
    if (!fs::is_regular_file(path, error) || !file)
        return false;
    bytes->assign(std::istreambuf_iterator<char>(file), {});
    return !file.bad();
}

bool ReadSamples(const Options& options, std::vector<Sample>* samples, std::string* error)
{
    for (const std::string& path : options.samples) {
        Sample sample;
        sample.name = fs::path(path).filename().string();
        if (!ReadBytes(path, &sample.bytes)) {
            *error = "cannot read the sample " + path;
            return false;
        }
        samples->push_back(std::move(sample));
    }
    return true;
}

/// The surroundings of every check: headless, English, nothing of the user's.
void SettleIn()
{
    const char* home = std::getenv("HOME");
    if (std::getenv("XDG_CACHE_HOME") == nullptr && home != nullptr)
        setenv("XDG_CACHE_HOME", (std::string(home) + "/.cache").c_str(), 1); // the fonts' list
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("TAVRIX_SCREEN", "640x480", 1);
    setenv("TAVRIX_LANG", "en", 1);
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "TAVRIX_MEMORY", "TAVRIX_SHOT",
                             "TAVRIX_STORAGE_CARD", "TAVRIX_FULLSCREEN", "TAVRIX_STARTUP_LOG"})
        unsetenv(name);
}

class WorkFolder
{
public:
    WorkFolder()
    {
        const char* base = std::getenv("TMPDIR");
        path = std::string(base != nullptr && *base != 0 ? base : "/tmp") +
               "/tavrix-plugin-check-XXXXXX";
        if (mkdtemp(path.data()) == nullptr)
            path.clear();
    }
    ~WorkFolder()
    {
        std::error_code ignored;
        if (!path.empty())
            fs::remove_all(path, ignored);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    const std::string& Path() const { return path; }

private:
    std::string path;
};

/// Files by kind and name of their plugins: the host shows one entry for two of a name.
using Names = std::map<std::pair<Kind, std::string>, std::string>;

void LookForDouble(const PluginFile& plugin, Names* names, Report* report)
{
    if (plugin.kind == KindCount || plugin.pluginName.empty())
        return;
    const auto [place, fresh] =
        names->emplace(std::pair(plugin.kind, plugin.pluginName), plugin.name);
    if (!fresh)
        report->Add({"duplicate", "",
                     plugin.name + " and " + place->second + " are both " + KindWord(plugin.kind) +
                         " plugins of the name " + Quoted(plugin.pluginName) +
                         "; the host shows one entry for the two.",
                     false});
}

int CheckAll(const Options& options, const std::vector<Sample>& samples, const std::string& self)
{
    const WorkFolder folder;
    if (folder.Path().empty())
        return Refuse("cannot make a folder to work in");
    RunSettings settings;
    settings.secondsAtMost = options.seconds;
    settings.folder = folder.Path();
    settings.restart.push_back(self);
    for (const std::string& sample : options.samples) {
        settings.restart.push_back("--sample");
        settings.restart.push_back(fs::absolute(sample).string());
    }
    Names names;
    u32 violations = 0;
    for (const std::string& file : options.files) {
        PluginFile plugin;
        plugin.path = fs::absolute(file).string();
        plugin.name = fs::path(file).filename().string();
        plugin.kind = options.kind;
        plugin.samples = samples;
        Report report(std::cout, plugin.name);
        CheckFile(&plugin, settings, &report);
        LookForDouble(plugin, &names, &report);
        if (report.Violations() == 0)
            report.Passed(KindWord(plugin.kind));
        violations += report.Violations();
    }
    return violations == 0 ? AllPassed : SomeViolate;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    std::string error;
    if (!ParseOptions({argv + 1, argv + argc}, &options, &error))
        return Refuse(error);
    std::vector<Sample> samples;
    switch (options.what) {
    case Options::ShowHelp:
        std::cout << HelpText();
        return AllPassed;
    case Options::ShowVersion:
        std::cout << "tavrix-plugin-check " TAVRIX_VERSION "\n";
        return AllPassed;
    case Options::ShowList:
        ShowList();
        return AllPassed;
    default:
        break;
    }
    if (!ReadSamples(options, &samples, &error))
        return Refuse(error);
    if (options.what == Options::RunRow) {
        PluginFile plugin;
        plugin.path = options.files.empty() ? "" : options.files[0];
        plugin.name = fs::path(plugin.path).filename().string();
        plugin.kind = options.kind;
        plugin.pluginName = options.pluginName;
        plugin.samples = std::move(samples);
        RunRestarted(plugin, options.row, options.descriptor);
    }
    for (const std::string& file : options.files) {
        std::vector<u8> bytes;
        if (!ReadBytes(file, &bytes))
            return Refuse("cannot read " + file);
    }
    SettleIn();
    return CheckAll(options, samples, argv[0]);
}
