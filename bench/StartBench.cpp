// From exec to the screen: the empty window, a 12-megapixel JPEG and a 100-megapixel PNG, each as a
// process of its own in the headless platform (or on a display, with TAVRIX_BENCH_DISPLAY set),
// beside the plain decode of the same file by its library, all in one run.
//
// "budget" is what a picture may take: the empty window, the job's fixed 100 ms, and 1.3 times the
// plain decode. "of_budget" below 1 is within it.

#include "platform/testing/core/TestPaths.h"

#include <benchmark/benchmark.h>

#include <jpeglib.h>
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

const std::string folder = tavrix::testing::InBuild("/bench/pictures");
const std::string built = tavrix::testing::InBuild("/bin");

double Now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

std::string Picture(int width, int height, const std::string& name)
{
    std::filesystem::create_directories(folder);
    const std::string path = folder + "/" + name;
    if (!std::filesystem::exists(path)) {
        const std::string command = tavrix::testing::InBuild("/tools/make-picture ") +
                                    std::to_string(width) + " " + std::to_string(height) + " '" +
                                    path + "'";
        if (std::system(command.c_str()) != 0)
            std::abort();
    }
    return path;
}

struct Start {
    double firstPaint = 0; // seconds since exec
    double over = 0;       // the picture is on the screen and nothing is left to do
    long peakKilobytes = 0;
};

/// Starts the program in the folder `bin` once; it ends by itself when the start is over.
Start RunOnce(const std::string& picture, const char* memory, const std::string& bin = built)
{
    const std::string program = bin + "/tavrix";
    const std::string log = folder + "/startup.log";
    std::filesystem::create_directories(folder + "/home");
    std::filesystem::remove(log);
    const double begin = Now();
    const pid_t child = fork();
    if (child == 0) {
        if (std::getenv("TAVRIX_BENCH_DISPLAY") == nullptr)
            setenv("QT_QPA_PLATFORM", "offscreen", 1);
        setenv("HOME", (folder + "/home").c_str(), 1);
        setenv("XDG_DATA_HOME", (folder + "/home/data").c_str(), 1);
        setenv("XDG_CONFIG_HOME", (folder + "/home/config").c_str(), 1);
        setenv("TAVRIX_SCREEN", "800x480", 1);
        setenv("TAVRIX_STARTUP_LOG", log.c_str(), 1);
        setenv("TAVRIX_SHOT", (folder + "/shot.png").c_str(), 1);
        if (memory != nullptr)
            setenv("TAVRIX_MEMORY", memory, 1);
        execl(program.c_str(), "tavrix", picture.empty() ? nullptr : picture.c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    Start start;
    start.peakKilobytes = usage.ru_maxrss;
    std::ifstream in(log);
    std::string name;
    double time = 0;
    while (in >> name >> time) {
        if (name == "first-paint" && start.firstPaint == 0)
            start.firstPaint = time * 1e-9 - begin;
        if (name == "start-over")
            start.over = time * 1e-9 - begin;
    }
    return start;
}

double DecodeJpeg(const std::string& path)
{
    const double begin = Now();
    FILE* file = std::fopen(path.c_str(), "rb");
    jpeg_decompress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_stdio_src(&jpeg, file);
    jpeg_read_header(&jpeg, TRUE);
    jpeg_start_decompress(&jpeg);
    std::vector<unsigned char> row(size_t{jpeg.output_width} * 3);
    while (jpeg.output_scanline < jpeg.output_height) {
        unsigned char* rows[1] = {row.data()};
        jpeg_read_scanlines(&jpeg, rows, 1);
        benchmark::DoNotOptimize(row.data());
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    std::fclose(file);
    return Now() - begin;
}

double DecodePng(const std::string& path)
{
    const double begin = Now();
    FILE* file = std::fopen(path.c_str(), "rb");
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_read_info(png, info);
    std::vector<unsigned char> row(png_get_rowbytes(png, info));
    const unsigned height = png_get_image_height(png, info);
    for (unsigned y = 0; y < height; ++y) {
        png_read_row(png, row.data(), nullptr);
        benchmark::DoNotOptimize(row.data());
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
    return Now() - begin;
}

void EmptyWindow(benchmark::State& state)
{
    RunOnce("", nullptr); // the folders and caches of a first start
    double sum = 0;
    for (auto _ : state) {
        const Start start = RunOnce("", nullptr);
        state.SetIterationTime(start.firstPaint);
        sum += start.firstPaint;
    }
    state.counters["first_paint_ms"] = sum * 1e3 / static_cast<double>(state.iterations());
}
BENCHMARK(EmptyWindow)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

/// A folder with the program and `count` plugins that read pictures, each a file of its own.
std::string ProgramWithPlugins(long count)
{
    namespace fs = std::filesystem;
    const fs::path place = folder + "/plugins-" + std::to_string(count);
    fs::remove_all(place);
    fs::create_directories(place / "PLUGINS/INPUT");
    for (const auto& entry : fs::directory_iterator(built))
        if (entry.is_regular_file())
            fs::copy_file(entry.path(), place / entry.path().filename());
    for (long i = 0; i < count; ++i)
        fs::copy_file(built + "/PLUGINS/INPUT/JPEG.dll",
                      place / "PLUGINS/INPUT" / (std::to_string(1000 + i) + ".dll"));
    return place.string();
}

/// What plugins cost at the start, beside a start without any in the same run.
void EmptyWindowWithPlugins(benchmark::State& state)
{
    const std::string bare = ProgramWithPlugins(0);
    const std::string full = ProgramWithPlugins(state.range(0));
    RunOnce("", nullptr, bare);
    RunOnce("", nullptr, full);
    double with = 0;
    double without = 0;
    for (auto _ : state) {
        without += RunOnce("", nullptr, bare).firstPaint;
        const double start = RunOnce("", nullptr, full).firstPaint;
        with += start;
        state.SetIterationTime(start);
    }
    state.counters["first_paint_ms"] = with * 1e3 / static_cast<double>(state.iterations());
    state.counters["of_start_without"] = with / without;
}
BENCHMARK(EmptyWindowWithPlugins)
    ->Arg(0)
    ->Arg(10)
    ->Arg(100)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(15);

void OnScreen(benchmark::State& state, int width, int height, const char* name,
              double (*decode)(const std::string&))
{
    const std::string path = Picture(width, height, name);
    decode(path);
    double shown = 0;
    double empty = 0;
    double plain = 0;
    long peak = 0;
    for (auto _ : state) {
        empty += RunOnce("", nullptr).firstPaint;
        plain += decode(path);
        const Start start = RunOnce(path, nullptr);
        shown += start.over;
        peak = std::max(peak, start.peakKilobytes);
        state.SetIterationTime(start.over);
    }
    const double count = static_cast<double>(state.iterations());
    const double budget = (empty + 1.3 * plain) / count + 0.1;
    state.counters["plain_decode_ms"] = plain * 1e3 / count;
    state.counters["budget_ms"] = budget * 1e3;
    state.counters["of_budget"] = shown / count / budget;
    state.counters["peak_MB"] = static_cast<double>(peak) / 1024;
}
BENCHMARK_CAPTURE(OnScreen, jpeg_12_megapixels, 4000, 3000, "12.jpg", DecodeJpeg)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(OnScreen, png_100_megapixels, 10000, 10000, "100.png", DecodePng)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

void SmallMemory(benchmark::State& state, const char* memory)
{
    const std::string path = Picture(10000, 10000, "100.png");
    long peak = 0;
    for (auto _ : state) {
        const Start start = RunOnce(path, memory);
        peak = std::max(peak, start.peakKilobytes);
        state.SetIterationTime(start.over);
    }
    state.counters["peak_MB"] = static_cast<double>(peak) / 1024;
}
BENCHMARK_CAPTURE(SmallMemory, png_100_megapixels_in_32M, "32M")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

} // namespace

BENCHMARK_MAIN();
