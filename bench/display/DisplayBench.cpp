// A person's first moments, seen from outside on an X server: from exec to the first paint of the
// empty window, from exec to a small picture on the screen, and what the program takes of a
// processor while it shows the picture and nothing happens. Other viewers and paint programs stand
// beside ours, under the same eyes, in turns with it; of all rounds the median counts.

#include "bench/display/ScreenWatch.h"
#include "platform/testing/core/TestPaths.h"

#include <benchmark/benchmark.h>

#include <png.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

using bench::Now;
using bench::ScreenPixels;
using bench::ScreenWatch;

constexpr double Patience = 20; // seconds
const std::string folder = tavrix::testing::InBuild("/bench/display-home");
const std::string program = tavrix::testing::InBuild("/bin/tavrix");

struct Viewer {
    const char* name;
    const char* command;
    const char* standsOn;
    bool startsEmpty;
};
const Viewer viewers[] = {
    {"tavrix", program.c_str(), "Qt 6", true},  {"feh", "feh", "no toolkit", false},
    {"mtpaint", "mtpaint", "GTK 2", true},      {"gpicview", "gpicview", "GTK 2", true},
    {"viewnior", "viewnior", "GTK 2", true},    {"eog", "eog", "GTK 3", true},
    {"qimgv", "qimgv", "Qt 5", false},          {"phototonic", "phototonic", "Qt 5", true},
    {"lximage-qt", "lximage-qt", "Qt 5", true},
};

// ---- The picture and what is looked for on the screen.

constexpr int PictureWidth = 320;
constexpr int PictureHeight = 200;
constexpr std::array<uint32_t, 4> Quarters = {0xE04F1A, 0x1A9F60, 0x2B50D3, 0xC7D01B};

std::string PaintPicture()
{
    std::vector<unsigned char> rgb;
    for (int y = 0; y < PictureHeight; ++y)
        for (int x = 0; x < PictureWidth; ++x) {
            const uint32_t color =
                Quarters[size_t(y >= PictureHeight / 2) * 2 + size_t(x >= PictureWidth / 2)];
            for (const int shift : {16, 8, 0})
                rgb.push_back(static_cast<unsigned char>(color >> shift));
        }
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = PictureWidth;
    image.height = PictureHeight;
    image.format = PNG_FORMAT_RGB;
    const std::string path = folder + "/picture.png";
    if (png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr) == 0)
        std::abort();
    return path;
}

/// Every quarter of the picture, at its own size or larger; a tool window may hide a part.
bool ShowsPicture(const ScreenPixels& screen)
{
    constexpr int Most = PictureWidth * PictureHeight / 4;
    return std::all_of(Quarters.begin(), Quarters.end(), [&screen](uint32_t color) {
        return std::count(screen.pixels.begin(), screen.pixels.end(), color) >= Most * 3 / 4;
    });
}

/// A window whose program has painted: one that the server alone filled has one colour.
bool ShowsWindow(const ScreenPixels& screen)
{
    constexpr int FewestPixels = 20000;
    constexpr size_t FewestColors = 4;
    int painted = 0;
    std::set<uint32_t> colors;
    for (const uint32_t pixel : screen.pixels) {
        if (pixel == ScreenWatch::Ground)
            continue;
        ++painted;
        if (colors.size() < FewestColors)
            colors.insert(pixel);
    }
    return painted >= FewestPixels && colors.size() >= FewestColors;
}

bool IsBare(const ScreenPixels& screen)
{
    return std::all_of(screen.pixels.begin(), screen.pixels.end(),
                       [](uint32_t pixel) { return pixel == ScreenWatch::Ground; });
}

// ---- The programs.

/// A session bus for those that look for one.
class SessionBus
{
public:
    SessionBus()
    {
        int ends[2];
        if (pipe(ends) != 0)
            std::abort();
        process = fork();
        if (process == 0) {
            const std::string print = "--print-address=" + std::to_string(ends[1]);
            (void)!std::freopen("/dev/null", "w", stderr);
            execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", print.c_str(), nullptr);
            _exit(127);
        }
        close(ends[1]);
        char text[512] = {};
        (void)!read(ends[0], text, sizeof text - 1);
        close(ends[0]);
        address.assign(text, std::strcspn(text, "\n"));
    }
    ~SessionBus()
    {
        kill(process, SIGTERM);
        waitpid(process, nullptr, 0);
    }
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    std::string address;

private:
    pid_t process = -1;
};

void Surroundings(const ScreenWatch& screen, const SessionBus& bus)
{
    for (const char* name : {"WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "TAVRIX_SHOT", "TAVRIX_SCREEN",
                             "TAVRIX_MEMORY", "XDG_CURRENT_DESKTOP"})
        unsetenv(name);
    setenv("DISPLAY", screen.Display().c_str(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.address.c_str(), 1);
    setenv("NO_AT_BRIDGE", "1", 1);
    setenv("HOME", folder.c_str(), 1);
    setenv("XDG_DATA_HOME", (folder + "/data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (folder + "/config").c_str(), 1);
    setenv("XDG_CACHE_HOME", (folder + "/cache").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (folder + "/run").c_str(), 1);
}

bool IsInstalled(const Viewer& viewer)
{
    if (viewer.command[0] == '/')
        return access(viewer.command, X_OK) == 0;
    const std::string path = "/usr/bin/" + std::string(viewer.command);
    return access(path.c_str(), X_OK) == 0;
}

/// In a group of its own, so that what it starts in its turn ends with it.
pid_t Start(const Viewer& viewer, const std::string& picture)
{
    const pid_t process = fork();
    if (process == 0) {
        setpgid(0, 0);
        (void)!std::freopen("/dev/null", "w", stdout);
        (void)!std::freopen("/dev/null", "w", stderr);
        execlp(viewer.command, viewer.command, picture.empty() ? nullptr : picture.c_str(),
               nullptr);
        _exit(127);
    }
    setpgid(process, process);
    return process;
}

void End(pid_t process)
{
    kill(-process, SIGKILL);
    waitpid(process, nullptr, 0);
}

/// Seconds from before the fork until the screen is as wished; negative where it never was.
double Until(ScreenWatch& screen, const Viewer& viewer, const std::string& picture)
{
    (void)screen.Await(IsBare, Patience);
    const double begin = Now();
    const pid_t process = Start(viewer, picture);
    const double seen = screen.Await(picture.empty() ? ShowsWindow : ShowsPicture, Patience);
    End(process);
    return seen < 0 ? -1 : seen - begin;
}

// ---- What a process takes while nothing happens.

/// Nanoseconds of processor time of all its threads.
double ProcessorTime(pid_t process)
{
    double sum = 0;
    std::error_code ended;
    const std::string tasks = "/proc/" + std::to_string(process) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(tasks, ended)) {
        double spent = 0;
        std::ifstream(task.path() / "schedstat") >> spent;
        sum += spent;
    }
    return sum;
}

struct Figures {
    std::vector<double> empty;
    std::vector<double> picture;
    double idle = -1; // of one processor
};

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void MeasureIdle(ScreenWatch& screen, const Viewer& viewer, const std::string& picture,
                 Figures& figures)
{
    constexpr unsigned Seconds = 10;
    constexpr unsigned SecondsBefore = 3;
    (void)screen.Await(IsBare, Patience);
    const pid_t process = Start(viewer, picture);
    if (screen.Await(ShowsPicture, Patience) >= 0) {
        sleep(SecondsBefore);
        const double before = ProcessorTime(process);
        sleep(Seconds);
        figures.idle = (ProcessorTime(process) - before) * 1e-9 / Seconds;
    }
    End(process);
}

// ---- What is reported.

void Report(const std::string& name, const Viewer& viewer, double value,
            const std::vector<double>& rounds)
{
    const bool missed = value < 0;
    benchmark::RegisterBenchmark((name + "/" + viewer.name).c_str(),
                                 [=, &viewer](benchmark::State& state) {
                                     for (auto _ : state)
                                         state.SetIterationTime(missed ? 0 : value);
                                     state.SetLabel(viewer.standsOn);
                                     if (missed && &viewer == viewers)
                                         state.SkipWithError("it never came to the screen");
                                     if (!rounds.empty())
                                         state.counters["least_ms"] =
                                             *std::min_element(rounds.begin(), rounds.end()) * 1e3;
                                     state.counters["rounds"] = static_cast<double>(rounds.size());
                                 })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(1);
}

void ReportMedian(const std::string& name, const Viewer& viewer, const std::vector<double>& rounds)
{
    const bool missed =
        rounds.empty() || std::any_of(rounds.begin(), rounds.end(), [](double v) { return v < 0; });
    if (!missed || &viewer == viewers)
        Report(name, viewer, missed ? -1 : Median(rounds), missed ? std::vector<double>{} : rounds);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const char* const wanted = std::getenv("TAVRIX_BENCH_ROUNDS");
    const int roundCount = wanted != nullptr ? std::max(std::atoi(wanted), 1) : 15;
    std::filesystem::create_directories(folder + "/run");
    std::filesystem::permissions(folder + "/run", std::filesystem::perms::owner_all);
    ScreenWatch screen;
    const SessionBus bus;
    Surroundings(screen, bus);
    const std::string picture = PaintPicture();

    Figures figures[std::size(viewers)];
    // The first round brings folders and caches and is not counted.
    for (int round = 0; round <= roundCount; ++round)
        for (size_t i = 0; i < std::size(viewers); ++i) {
            const Viewer& viewer = viewers[i];
            if (!IsInstalled(viewer))
                continue;
            const double shown = Until(screen, viewer, picture);
            const double empty = viewer.startsEmpty ? Until(screen, viewer, "") : -1;
            if (round == 0)
                continue;
            figures[i].picture.push_back(shown);
            if (viewer.startsEmpty)
                figures[i].empty.push_back(empty);
        }
    for (size_t i = 0; i < std::size(viewers); ++i)
        if (IsInstalled(viewers[i]))
            MeasureIdle(screen, viewers[i], picture, figures[i]);

    for (size_t i = 0; i < std::size(viewers); ++i)
        ReportMedian("EmptyWindow", viewers[i], figures[i].empty);
    for (size_t i = 0; i < std::size(viewers); ++i)
        ReportMedian("SmallPicture", viewers[i], figures[i].picture);
    // Milliseconds of processor time in a second.
    for (size_t i = 0; i < std::size(viewers); ++i)
        if (figures[i].idle >= 0 || i == 0)
            Report("Idle", viewers[i], figures[i].idle, {});
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
