// The whole program on pictures of several sizes, with all the memory that the machine has and with
// little: opening, drawing, painting, reversing, turning, saving, closing. Each flow is a process
// of its own (program-run), whose picture is compared with what the library read, turned likewise.
//
// With --pictures it makes what it reads and ends. A benchmark is named FLOW/STEP; its time is the
// step's on the clock, the best of the rounds. "peer_ms" is what the label names, in the same run:
// the plain decode by the library, the disk's own floor for line files, or a copy of all lines.

#include "bench/program/Flow.h"
#include "bench/program/LibraryCodecs.h"
#include "bench/program/LineFiles.h"
#include "bench/program/TexturedPictures.h"
#include "platform/testing/core/TestPaths.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace
{

using bench::FlowResult;
using bench::Places;
using bench::StepFigures;

const std::string folder = tavrix::testing::InBuild("/bench/program/");
const std::string pages = folder + "pages";
constexpr int SecondsAtMost = 400;
constexpr int JpegTolerance = 3;   // between two ways of enlarging colour
constexpr int SavedTolerance = 24; // of a JPEG that was made of a picture, at grain

double SecondsOf(const std::function<void()>& work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

struct Flow {
    std::string name;
    unsigned width;
    unsigned height;
    std::string (*picture)(unsigned width, unsigned height, const std::string& extension);
    std::string memory;
    int rounds;
    std::vector<std::string> steps; // "open:.jpg" stands for the picture with that extension
};

struct Peer {
    std::string what;
    double seconds = 0;
};

struct Outcome {
    FlowResult best;
    std::map<std::string, Peer> peers;
    double filesMade = 0; // seconds, for as many files as the picture has lines; 0 without paging
    double filesRead = 0;
};

std::string ArgumentOf(const std::string& step)
{
    return step.substr(step.find(':') + 1);
}

bool Is(const std::string& step, const char* kind)
{
    return step.starts_with(kind);
}

/// The steps with real paths: pictures to open, files that are not there yet to save to.
std::vector<std::string> Located(const Flow& flow)
{
    std::vector<std::string> located;
    for (const std::string& step : flow.steps) {
        const std::string argument = ArgumentOf(step);
        if (Is(step, "open:")) {
            located.push_back("open:" + flow.picture(flow.width, flow.height, argument));
        } else if (Is(step, "save:")) {
            std::filesystem::remove(folder + "saved" + argument);
            located.push_back("save:" + folder + "saved" + argument);
        } else {
            located.push_back(step);
        }
    }
    return located;
}

/// What the library reads of a picture, read once.
const Places& LibraryPlaces(const std::string& file)
{
    static std::map<std::string, Places> known;
    auto place = known.find(file);
    if (place == known.end())
        place = known.emplace(file, bench::ReadByLibrary(file)).first;
    return place->second;
}

/// Follows the steps with the library's picture. Empty, or the first step that left another one.
std::string FaultOf(const std::vector<std::string>& steps, const FlowResult& result)
{
    Places expected;
    int tolerance = 0;
    size_t check = 0;
    for (const std::string& step : steps) {
        if (Is(step, "open:")) {
            expected = LibraryPlaces(ArgumentOf(step));
            tolerance = step.ends_with(".jpg") ? JpegTolerance : 0;
        } else if (step == "rotate") {
            expected = bench::Turned(expected);
        } else if (step == "reverse") {
            expected = bench::Reversed(expected);
        } else if (Is(step, "save:") && !step.ends_with(".bmp")) {
            const bool isJpeg = step.ends_with(".jpg");
            if (!bench::Alike(bench::ReadByLibrary(ArgumentOf(step)), expected,
                              isJpeg ? SavedTolerance : tolerance))
                return "another picture is in " + ArgumentOf(step);
        } else if (step == "check") {
            if (check == result.checks.size() ||
                !bench::Alike(result.checks[check++], expected, tolerance))
                return "another picture at check " + std::to_string(check);
        }
    }
    return {};
}

void KeepBetter(FlowResult* best, const FlowResult& round)
{
    for (const auto& [name, figures] : round.steps) {
        const auto [place, isNew] = best->steps.emplace(name, figures);
        if (!isNew && figures.seconds < place->second.seconds) {
            place->second.seconds = figures.seconds;
            place->second.processorSeconds = figures.processorSeconds;
        }
        place->second.peakMegabytes = std::max(place->second.peakMegabytes, figures.peakMegabytes);
    }
    best->peakMegabytes = std::max(best->peakMegabytes, round.peakMegabytes);
}

void KeepLess(Peer* peer, const char* what, double seconds)
{
    if (peer->what.empty() || seconds < peer->seconds)
        *peer = {what, seconds};
}

/// All lines copied to others, each in a block of its own.
double CopyOfLines(unsigned width, unsigned height)
{
    const size_t bytes = size_t{3} * width;
    std::vector<std::unique_ptr<char[]>> from;
    std::vector<std::unique_ptr<char[]>> to;
    for (unsigned y = 0; y < height; ++y) {
        from.push_back(std::make_unique<char[]>(bytes));
        to.push_back(std::make_unique<char[]>(bytes));
    }
    return SecondsOf([&] {
        for (unsigned y = 0; y < height; ++y) {
            std::memcpy(to[y].get(), from[y].get(), bytes);
            benchmark::ClobberMemory();
        }
    });
}

void MeasurePeers(const Flow& flow, const std::vector<std::string>& steps, Outcome* outcome)
{
    for (const std::string& step : steps) {
        const std::string file = ArgumentOf(step);
        if (Is(step, "open:"))
            KeepLess(&outcome->peers[step.ends_with(".png") ? "open_png" : "open_jpg"],
                     "plain decode", SecondsOf([&file] { (void)bench::ReadByLibrary(file); }));
        else if ((step == "rotate" || step == "reverse") && flow.memory.empty())
            KeepLess(&outcome->peers[step], "copy of all lines",
                     CopyOfLines(flow.width, flow.height));
    }
}

Outcome Carry(const Flow& flow)
{
    Outcome outcome;
    const unsigned bytes = 3 * (flow.width + 1);
    if (!flow.memory.empty()) {
        outcome.filesMade = bench::MakeLineFiles(pages, flow.height, bytes);
        outcome.filesRead = bench::ReadLineFiles(pages, flow.height, bytes);
    }
    for (int round = 0; round < flow.rounds; ++round) {
        const std::vector<std::string> steps = Located(flow);
        FlowResult result = bench::RunFlow(steps, flow.memory, pages, SecondsAtMost);
        if (result.fault.empty())
            result.fault = FaultOf(steps, result);
        std::filesystem::remove_all(pages);
        KeepBetter(&outcome.best, result);
        if (!result.fault.empty()) {
            outcome.best.fault = result.fault;
            break;
        }
        MeasurePeers(flow, steps, &outcome);
    }
    for (const char* extension : {".png", ".jpg", ".bmp"})
        std::filesystem::remove(folder + "saved" + extension);
    return outcome;
}

/// Carried out at the first of its benchmarks that runs.
const Outcome& OutcomeOf(const Flow& flow)
{
    static std::map<std::string, Outcome> outcomes;
    auto place = outcomes.find(flow.name);
    if (place == outcomes.end())
        place = outcomes.emplace(flow.name, Carry(flow)).first;
    return place->second;
}

void Measure(benchmark::State& state, const Flow& flow, const std::string& step)
{
    const Outcome& outcome = OutcomeOf(flow);
    const auto place = outcome.best.steps.find(step);
    if (!outcome.best.fault.empty() || place == outcome.best.steps.end()) {
        state.SkipWithError(outcome.best.fault.empty() ? "no such step"
                                                       : outcome.best.fault.c_str());
        return;
    }
    const StepFigures& figures = place->second;
    for (auto _ : state)
        state.SetIterationTime(figures.seconds);
    state.counters["cpu_ms"] = figures.processorSeconds * 1e3;
    state.counters["peak_mb"] = figures.peakMegabytes;
    state.counters["megapixels"] = 1e-6 * flow.width * flow.height;
    if (outcome.filesMade > 0) {
        state.counters["files_made_ms"] = outcome.filesMade * 1e3;
        state.counters["files_read_ms"] = outcome.filesRead * 1e3;
    }
    if (const auto peer = outcome.peers.find(step); peer != outcome.peers.end()) {
        state.counters["peer_ms"] = peer->second.seconds * 1e3;
        state.SetLabel(peer->second.what);
    }
}

/// The name under which program-run prints a step's figures; several for what it does in parts.
std::vector<std::string> NamesOf(const std::string& step)
{
    const std::string argument = ArgumentOf(step);
    if (Is(step, "open:") || Is(step, "save:"))
        return {step.substr(0, 4) + "_" + argument.substr(1)};
    if (Is(step, "zoom:"))
        return {"redraw_" + argument.substr(0, argument.find(':'))};
    if (Is(step, "dabs:"))
        return {"dab"};
    if (step == "corners")
        return {"scroll", "corner_dab"};
    return step == "check" ? std::vector<std::string>{} : std::vector<std::string>{step};
}

/// All of them, which stay where they are.
std::deque<Flow>& Flows()
{
    static std::deque<Flow> flows;
    return flows;
}

void Register(Flow added)
{
    const Flow& flow = Flows().emplace_back(std::move(added));
    std::vector<std::string> names;
    for (const std::string& step : flow.steps)
        for (const std::string& name : NamesOf(step))
            if (std::find(names.begin(), names.end(), name) == names.end())
                names.push_back(name);
    names.push_back("close");
    for (const std::string& name : names)
        benchmark::RegisterBenchmark(
            (flow.name + "/" + name).c_str(),
            [&flow, name](benchmark::State& state) { Measure(state, flow, name); })
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
}

void RegisterFlows()
{
    using bench::Harbour;
    using bench::Textured;
    const std::vector<std::string> everyday = {"open:.jpg", "check",     "open:.png",
                                               "check",     "reverse",   "check",
                                               "save:.png", "save:.jpg", "save:.bmp"};
    std::vector<std::string> withTurn = everyday;
    withTurn.insert(withTurn.end(), {"rotate", "check"});
    Register({"12_megapixels", 4000, 3000, Harbour, "", 2, withTurn});
    // No turn there: it wants the whole picture in memory, asks first, and is refused where the
    // device's memory is short.
    Register({"12_megapixels_in_16M", 4000, 3000, Harbour, "16M", 1, everyday});

    const auto big = [](const char* extension) {
        return std::vector<std::string>{std::string("open:") + extension,
                                        "check",
                                        "zoom:100:1",
                                        "corners",
                                        "zoom:whole:3",
                                        "dabs:5"};
    };
    Register({"40000x4000", 40000, 4000, Textured, "", 1, big(".png")});
    Register({"40000x4000_in_32M", 40000, 4000, Textured, "32M", 1, big(".png")});
    Register({"30000x30000_in_32M", 30000, 30000, Textured, "32M", 1, big(".jpg")});

    const std::vector<std::string> growing = {
        "open:.jpg", "check", "zoom:25:20", "zoom:whole:20", "reverse",    "check",
        "rotate",    "check", "save:.jpg",  "save:.bmp",     "zoom:100:1", "dabs:200"};
    for (const unsigned scale : {1, 2, 4, 8})
        Register({"growth_" + std::to_string(scale * scale), 1152 * scale, 864 * scale, Harbour, "",
                  2, growing});
}

/// Makes the pictures that are not there yet, and nothing else.
bool MakePictures()
{
    bool made = true;
    for (const Flow& flow : Flows())
        for (const std::string& step : flow.steps)
            if (Is(step, "open:"))
                made = !flow.picture(flow.width, flow.height, ArgumentOf(step)).empty() && made;
    return made;
}

} // namespace

int main(int argc, char** argv)
{
    RegisterFlows();
    if (argc == 2 && std::strcmp(argv[1], "--pictures") == 0)
        return MakePictures() ? 0 : 1;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
