// Time and memory of every reader and writer on a picture of 12 megapixels, each as a process of
// its own, beside the tool that comes with the same library, in one run. Processor time, the better
// of the rounds, and the largest resident size; of ours less what the bare process takes. At the
// end a table in Markdown.
//
//   codec_bench [--benchmark_filter=...]
//   codec_bench --pictures    makes what it reads and ends

#include "platform/testing/core/TestPaths.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

const std::string folder = tavrix::testing::InBuild("/bench/codec-pictures");
const std::string runner = tavrix::testing::InBuild("/bench/plugin-run");
const std::string plugins = tavrix::testing::InBuild("/bin/PLUGINS/");
constexpr int rounds = 2;

struct Row {
    const char* name;
    // "read" or "write", and the plugin.
    const char* what;
    const char* plugin;
    // Settings in front, as KEY=number.
    const char* settings;
    // The picture that is read; of a writer the file that comes of it.
    const char* file;
    // Makes the picture from soft.ppm; empty for a writer.
    const char* make;
    // The tool, with the file in place of a %s.
    const char* tool;
};

// Soft pixels with some noise, as photographs have.
const Row rows[] = {
    {"JPEG", "read", "INPUT/JPEG", "", "soft.jpg", "cjpeg -quality 90 -outfile soft.jpg soft.ppm",
     "djpeg -outfile /dev/null soft.jpg"},
    {"JPEG, progressive", "read", "INPUT/JPEG", "", "progressive.jpg",
     "cjpeg -quality 90 -progressive -outfile progressive.jpg soft.ppm",
     "djpeg -outfile /dev/null progressive.jpg"},
    {"PNG", "read", "INPUT/PNG", "", "soft.png", "pnmtopng -compression 3 soft.ppm > soft.png",
     "pngtopnm soft.png > /dev/null"},
    {"GIF", "read", "INPUT/GIF", "", "soft.gif",
     "pnmquant -quiet 256 soft.ppm | ppmtogif -quiet > soft.gif",
     "gif2rgb -o /dev/null -1 soft.gif"},
    {"TIFF, Deflate", "read", "INPUT/TIFF", "", "soft.tif",
     "ppm2tiff -c zip -r 16 soft.ppm soft.tif", "tiff2rgba -c none soft.tif tool.tif"},
    {"WebP, lossy", "read", "INPUT/WebP", "", "soft.webp",
     "cwebp -quiet -m 1 soft.ppm -o soft.webp", "dwebp -quiet soft.webp -ppm -o tool.ppm"},
    {"WebP, lossless", "read", "INPUT/WebP", "", "lossless.webp",
     "cwebp -quiet -lossless -z 0 soft.ppm -o lossless.webp",
     "dwebp -quiet lossless.webp -ppm -o tool.ppm"},
    {"AVIF", "read", "INPUT/AVIF", "", "soft.avif",
     "pnmtopng soft.ppm > a.png && avifenc -s 10 -j all a.png soft.avif > /dev/null",
     "avifdec -j 1 --raw-color soft.avif tool.y4m > /dev/null"},
    {"JPEG XL", "read", "INPUT/JXL", "", "soft.jxl", "cjxl -e 3 soft.ppm soft.jxl 2> /dev/null",
     "djxl --num_threads=0 soft.jxl tool.ppm 2> /dev/null"},
    {"HEIF", "read", "INPUT/HEIF", "", "soft.heic",
     "pnmtopng soft.ppm > a.png && heif-enc -p preset=ultrafast a.png -o soft.heic > /dev/null "
     "2>&1",
     "heif-convert soft.heic tool.jpg > /dev/null 2>&1"},
    {"BMP", "read", "INPUT/BMP", "", "soft.bmp", "ppmtobmp -quiet soft.ppm > soft.bmp",
     "bmptopnm -quiet soft.bmp > /dev/null"},
    {"PNM", "read", "INPUT/PNM", "", "soft.ppm", "true", "pnmtopnm soft.ppm > /dev/null"},
    {"TGA", "read", "INPUT/TGA", "", "soft.tga", "ppmtotga -quiet -rgb -norle soft.ppm > soft.tga",
     "tgatoppm -quiet soft.tga > /dev/null"},
    {"PCX", "read", "INPUT/PCX", "", "soft.pcx", "ppmtopcx -24bit -quiet soft.ppm > soft.pcx",
     "pcxtoppm -quiet soft.pcx > /dev/null"},
    {"JPEG", "write", "OUTPUT/JPEG", "JpegOutputSampling=3", "ours.jpg", "",
     "cjpeg -quality 90 -outfile tool.jpg soft.ppm"},
    {"PNG", "write", "OUTPUT/PNG", "PngOutputCompression=3", "ours.png", "",
     "pnmtopng -compression 3 soft.ppm > tool.png"},
    {"BMP", "write", "OUTPUT/BMP", "", "ours.bmp", "", "ppmtobmp -quiet soft.ppm > tool.bmp"},
    {"GIF", "write", "OUTPUT/GIF", "", "ours.gif", "",
     "pnmquant -quiet -floyd 256 soft.ppm | ppmtogif -quiet > tool.gif"},
    {"TIFF, Deflate", "write", "OUTPUT/TIFF", "BY_PATH=1 TiffOutputCompression=3", "ours.tif", "",
     "ppm2tiff -c zip:2 soft.ppm tool.tif"},
    {"WebP, lossy", "write", "OUTPUT/WebP", "", "ours.webp", "",
     "cwebp -quiet -q 90 soft.ppm -o tool.webp"},
    {"JPEG XL", "write", "OUTPUT/JXL", "", "ours.jxl", "",
     "cjxl -q 90 -e 4 --num_threads=0 soft.ppm tool.jxl 2> /dev/null"},
    {"PNM", "write", "OUTPUT/PNM", "", "ours.ppm", "", "pnmtopnm soft.ppm > tool.ppm"},
};

struct Cost {
    double seconds = 1e9;
    long kilobytes = 0;
    bool failed = false;
};

// The tool itself, without the shell around it where the command is a single one.
Cost RunOnce(const std::string& command)
{
    const pid_t child = fork();
    if (child == 0) {
        if (chdir(folder.c_str()) != 0)
            _exit(127);
        execl("/bin/sh", "sh", "-c", ("exec env " + command).c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), usage.ru_maxrss, status != 0};
}

void Take(Cost* best, const Cost& cost)
{
    best->seconds = std::min(best->seconds, cost.seconds);
    best->kilobytes = std::max(best->kilobytes, cost.kilobytes);
    best->failed |= cost.failed;
}

std::string OursOf(const Row& row)
{
    const std::string plugin = plugins + row.plugin + ".dll";
    const bool reads = std::string(row.what) == "read";
    return std::string(row.settings) + " " + runner + " " + row.what + " " + plugin + " " +
           (reads ? folder + "/" + row.file : folder + "/soft-bgr.ppm " + folder + "/" + row.file);
}

bool Make(const Row& row)
{
    std::filesystem::create_directories(folder);
    const auto run = [](const std::string& command) {
        return std::system(("cd " + folder + " && " + command).c_str()) == 0;
    };
    if (!std::filesystem::exists(folder + "/soft.ppm") &&
        !run(tavrix::testing::InBuild("/tools/make-picture 4000 3000 soft-made.jpg && ") +
             "djpeg -outfile soft.ppm soft-made.jpg && "
             "pamchannel -infile soft.ppm -tupletype RGB 2 1 0 | pamtopnm > soft-bgr.ppm"))
        return false;
    return row.make[0] == 0 || std::filesystem::exists(folder + "/" + row.file) || run(row.make);
}

struct Line {
    const Row* row;
    Cost ours;
    Cost tool;
    Cost idle;
};
std::vector<Line> lines;

double Net(const Line& line)
{
    return line.ours.seconds - line.idle.seconds;
}

std::string FirstWord(const std::string& text)
{
    return text.substr(0, text.find(' '));
}

void Measure(benchmark::State& state, const Row& row)
{
    if (!std::filesystem::exists(plugins + row.plugin + ".dll") || !Make(row)) {
        state.SkipWithError("the picture cannot be made, or the plugin is not built");
        return;
    }
    Line line = {&row, {}, {}, {}};
    for (auto _ : state) {
        for (int i = 0; i < rounds; ++i) {
            Take(&line.idle, RunOnce(runner + " idle"));
            Take(&line.ours, RunOnce(OursOf(row)));
            Take(&line.tool, RunOnce(row.tool));
        }
        state.SetIterationTime(Net(line));
    }
    if (line.ours.failed || line.tool.failed) {
        state.SkipWithError(line.ours.failed ? "the plugin failed" : "the tool failed");
        return;
    }
    lines.push_back(line);
    state.SetLabel(FirstWord(row.tool));
    state.counters["of_tool"] = Net(line) / line.tool.seconds;
    state.counters["our_mb"] =
        static_cast<double>(line.ours.kilobytes - line.idle.kilobytes) / 1024;
    state.counters["tool_mb"] = static_cast<double>(line.tool.kilobytes) / 1024;
}

void PrintTable()
{
    if (lines.empty())
        return;
    utsname machine = {};
    uname(&machine);
    char date[32];
    const std::time_t now = std::time(nullptr);
    std::strftime(date, sizeof date, "%Y-%m-%d", std::gmtime(&now));
    std::printf("\n%s, %s, 4000 x 3000 pixels, best of %d\n\n", date, machine.machine, rounds);
    std::printf("| format | | time | tool | its time | ratio | memory | its memory |\n");
    std::printf("|---|---|---|---|---|---|---|---|\n");
    for (const Line& line : lines)
        std::printf("| %s | %s | %.0f ms | `%s` | %.0f ms | %.2f | %.1f MB | %.1f MB |\n",
                    line.row->name, line.row->what, 1e3 * Net(line),
                    FirstWord(line.row->tool).c_str(), 1e3 * line.tool.seconds,
                    Net(line) / line.tool.seconds,
                    static_cast<double>(line.ours.kilobytes - line.idle.kilobytes) / 1024,
                    static_cast<double>(line.tool.kilobytes) / 1024);
}

} // namespace

int main(int count, char** arguments)
{
    if (count == 2 && std::strcmp(arguments[1], "--pictures") == 0)
        return std::all_of(std::begin(rows), std::end(rows), Make) ? 0 : 1;
    for (const Row& row : rows)
        benchmark::RegisterBenchmark((std::string(row.what) + "/" + row.name).c_str(),
                                     [&row](benchmark::State& state) { Measure(state, row); })
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    PrintTable();
    return 0;
}
