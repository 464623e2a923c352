// What a person waits for while the pen moves: one stamp of the brush, from the pointer's message
// to the pixels in the window, a stroke of 1000, and one redraw of the whole view. A real main
// window of 800x480 in the headless platform; the picture is loaded by nobody, only painted.
//
// "of_copy" is the ratio to a plain copy of the same surface in the same run; "of_frame" to one
// frame of a 60 Hz display, 16.7 ms.

#include "platform/host/Resources.h"
#include "platform/testing/core/TestPaths.h"
#include "resources/Embedded.h"
#include "resources/Ids.h"
#include "shell/Application.h"
#include "shell/MainFrame.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr double FrameSeconds = 1.0 / 60;
constexpr u32 PictureWidth = 4000;
constexpr u32 PictureHeight = 3000;

/// The thread's own time, which leaves out what other programs take.
double Now()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// The program's record with its main window and a picture of noise; one for all benchmarks.
MainFrame& Frame()
{
    static MainFrame* const frame = [] {
        const EmbeddedResources resources = GetEmbeddedResources();
        TavrixRegisterResources(nullptr, resources.begin, resources.end);
        auto* made = new MainFrame;
        made->showToolbox = 0;
        made->showColorbox = 0;
        static Application application;
        application.frame = made;
        application.instance = GetModuleHandleW(nullptr);
        if (application.Init() != Done ||
            made->image->Create(PictureWidth, PictureHeight, 24, nullptr, nullptr) != Done)
            std::abort();
        u32 noise = 1;
        for (u32 y = 0; y < PictureHeight; ++y) {
            u8* row = nullptr;
            if (made->image->LockLines(static_cast<i32>(y), &row, nullptr) != Done)
                std::abort();
            for (u32 x = 0; x < PictureWidth * 3; ++x) {
                noise = noise * 1664525 + 1013904223;
                row[x] = static_cast<u8>(noise >> 24);
            }
            made->image->ReleaseLines(static_cast<i32>(y), 1, 0);
        }
        made->imagePresent = 1;
        return made;
    }();
    return *frame;
}

/// Times `work` by turns with a copy of a surface of the screen's size.
template <typename Work>
void BesideACopy(benchmark::State& state, const MainFrame& frame, Work work)
{
    const size_t bytes =
        size_t{3} * static_cast<u32>(frame.screenWidth) * static_cast<u32>(frame.screenHeight);
    std::vector<u8> from(bytes, 1);
    std::vector<u8> to(bytes, 2);
    double ours = 0;
    double copies = 0;
    for (auto _ : state) {
        const double begin = Now();
        work();
        const double middle = Now();
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
        copies += Now() - middle;
        ours += middle - begin;
        state.SetIterationTime(middle - begin);
    }
    state.counters["of_copy"] = ours / copies;
    state.counters["copy_us"] =
        benchmark::Counter(copies * 1e6, benchmark::Counter::kAvgIterations);
    state.counters["of_frame"] =
        benchmark::Counter(ours / FrameSeconds, benchmark::Counter::kAvgIterations);
}

struct ScreenMode {
    u32 dither;
    u32 mono;
};
constexpr ScreenMode Colour = {0, 0};
constexpr ScreenMode Dithered = {1, 0};
constexpr ScreenMode FourGreys = {0, 1};

MainFrame& FrameIn(const ScreenMode& mode, u32 zoomCommand)
{
    MainFrame& frame = Frame();
    frame.dither = mode.dither;
    frame.SetMonoScreen(mode.mono);
    if (zoomCommand == CommandZoomWindow)
        frame.FitToWindow(1);
    else
        frame.SetZoom(zoomCommand);
    return frame;
}

/// A drag of the brush, an event at a time; the last one is looked at.
void Stamp(benchmark::State& state, ScreenMode mode)
{
    MainFrame& frame = FrameIn(mode, CommandZoom100);
    if (frame.brush->Create(static_cast<u32>(state.range(0)), 256, 1) != Done)
        return state.SkipWithError("no brush");
    frame.ChooseTool(CommandBrush);
    frame.faceColor = 0x20C04000;
    SendMessageW(frame.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(400, 240));
    int step = 0;
    int x = 0;
    int y = 0;
    BesideACopy(state, frame, [&] {
        ++step;
        x = 150 + step * 37 % 500;
        y = 150 + step * 23 % 200;
        SendMessageW(frame.window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x, y));
    });
    SendMessageW(frame.window, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
    HDC dc = GetDC(frame.window);
    const COLORREF shown = GetPixel(dc, x, y);
    ReleaseDC(frame.window, dc);
    // The middle of a stamp covers by 255 of 256.
    bool painted = true;
    for (const int shift : {0, 8, 16}) {
        const u32 ink = RGB(0x20, 0xC0, 0x40) >> shift & 255;
        const u32 channel = shown >> shift & 255;
        painted = painted && channel <= ink + 1 && channel + 1 >= ink;
    }
    if (mode.dither == 0 && mode.mono == 0 && !painted)
        state.SkipWithError("the stamp is not in the window");
}
BENCHMARK_CAPTURE(Stamp, colour, Colour)->Arg(5)->Arg(100)->UseManualTime();
BENCHMARK_CAPTURE(Stamp, dithered, Dithered)->Arg(5)->Arg(100)->UseManualTime();
BENCHMARK_CAPTURE(Stamp, four_greys, FourGreys)->Arg(5)->Arg(100)->UseManualTime();

void RedrawView(benchmark::State& state, ScreenMode mode, u32 zoomCommand)
{
    MainFrame& frame = FrameIn(mode, zoomCommand);
    BesideACopy(state, frame, [&] { frame.RedrawView(); });
}
/// A drag that moves over the whole view, from the press to the lift; checked as one stamp is.
void Stroke(benchmark::State& state, ScreenMode mode)
{
    constexpr int Dabs = 1000;
    MainFrame& frame = FrameIn(mode, CommandZoom100);
    if (frame.brush->Create(static_cast<u32>(state.range(0)), 256, 1) != Done)
        return state.SkipWithError("no brush");
    frame.ChooseTool(CommandBrush);
    u32 color = 0x20C04000;
    int x = 0;
    int y = 0;
    BesideACopy(state, frame, [&] {
        color ^= 0xFFFFFF00; // so that no stroke finds its own colour there
        frame.faceColor = color;
        SendMessageW(frame.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(400, 240));
        for (int step = 1; step < Dabs; ++step) {
            x = 150 + step * 37 % 500;
            y = 150 + step * 23 % 200;
            SendMessageW(frame.window, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x, y));
        }
        SendMessageW(frame.window, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
    });
    u32 painted = 0;
    MainFrame::Point point = {static_cast<f64>(x), static_cast<f64>(y)};
    frame.WindowToView(&point);
    frame.ViewToImage(&point);
    (void)frame.image->GetPixel(static_cast<i32>(point.x), static_cast<i32>(point.y), &painted);
    frame.image->UnlockAll();
    for (const int shift : {8, 16, 24}) {
        const u32 got = painted >> shift & 255;
        const u32 ink = color >> shift & 255;
        if (got > ink + 1 || got + 1 < ink)
            return state.SkipWithError("the stroke is not in the picture");
    }
    state.SetItemsProcessed(state.iterations() * Dabs);
}

void AddStrokesAndRedraws()
{
    const std::pair<const char*, ScreenMode> modes[] = {
        {"colour", Colour}, {"dithered", Dithered}, {"four_greys", FourGreys}};
    const std::pair<const char*, u32> zooms[] = {{"100", CommandZoom100},
                                                 {"25", CommandZoom25},
                                                 {"400", CommandZoom400},
                                                 {"adjusted", CommandZoomWindow}};
    for (const auto& [modeName, mode] : modes) {
        const ScreenMode shown = mode;
        benchmark::RegisterBenchmark((std::string("Stroke_of_1000/") + modeName).c_str(),
                                     [shown](benchmark::State& state) { Stroke(state, shown); })
            ->Arg(5)
            ->UseManualTime();
        for (const auto& [zoomName, zoom] : zooms) {
            const u32 command = zoom;
            benchmark::RegisterBenchmark(
                (std::string("RedrawView/") + modeName + "_" + zoomName).c_str(),
                [shown, command](benchmark::State& state) { RedrawView(state, shown, command); })
                ->UseManualTime();
        }
    }
}

/// Away from the person's own settings and pages, without a display.
void SetSurroundings()
{
    const std::filesystem::path home = tavrix::testing::InBuild("/bench/view-home");
    std::filesystem::create_directories(home);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_DATA_HOME", (home / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home / "config").c_str(), 1);
    setenv("TAVRIX_SCREEN", "800x480", 1);
}

} // namespace

int main(int argc, char** argv)
{
    SetSurroundings();
    benchmark::SetDefaultTimeUnit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    AddStrokesAndRedraws();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    // The window and what it stands on go with the process, as in the program.
    std::_Exit(0);
}
