#include "bench/Table.h"

#include "pixel/RowKernels.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>

namespace bench
{

namespace
{

struct Contestant {
    std::string who;
    Clock clock = Clock::Thread;
    u32 items = 1;
    std::string missing; // the package that would bring it
    std::string fault;   // what it did wrong
    double seconds = 0;  // for one item; 0: it did not run
};

struct Operation {
    std::string name;
    std::vector<Contestant> contestants;
};

std::vector<Operation>& Operations()
{
    static std::vector<Operation> operations;
    return operations;
}

Contestant& Enter(const std::string& operation, const std::string& who)
{
    auto& all = Operations();
    auto place = std::find_if(all.begin(), all.end(), [&operation](const Operation& entry) {
        return entry.name == operation;
    });
    if (place == all.end())
        place = all.insert(all.end(), Operation{operation, {}});
    Contestant contestant;
    contestant.who = who;
    return place->contestants.emplace_back(contestant);
}

Contestant* Find(const std::string& benchmark)
{
    const size_t slash = benchmark.rfind('/');
    for (Operation& operation : Operations())
        if (operation.name == benchmark.substr(0, slash))
            for (Contestant& contestant : operation.contestants)
                if (contestant.who == benchmark.substr(slash + 1))
                    return &contestant;
    return nullptr;
}

// The first run warms up caches and takes the pages of the target; it is also the one that is
// looked at.
void Measure(benchmark::State& state, const std::string& name, const Prepare& prepare)
{
    static std::set<std::string> seen;
    const Work work = prepare();
    work.run();
    if (seen.insert(name).second) {
        const std::string fault = work.fault();
        if (!fault.empty()) {
            Find(name)->fault = fault;
            state.SkipWithError(fault.c_str());
            return;
        }
    }
    if (!Find(name)->fault.empty()) {
        state.SkipWithError("not what it should be");
        return;
    }
    Find(name)->items = work.items;
    for (auto _ : state) {
        if (work.between) {
            state.PauseTiming();
            work.between();
            state.ResumeTiming();
        }
        work.run();
    }
    if (work.items > 1)
        state.SetItemsProcessed(state.iterations() * work.items);
}

void Add(const std::string& operation, const std::string& who, const Prepare& prepare, Clock clock)
{
    Enter(operation, who).clock = clock;
    const std::string name = operation + "/" + who;
    auto* const entry = benchmark::RegisterBenchmark(
        name.c_str(), [name, prepare](benchmark::State& state) { Measure(state, name, prepare); });
    entry->Unit(benchmark::kMicrosecond);
    if (clock == Clock::Process)
        entry->MeasureProcessCPUTime();
}

// Prints as usual and keeps, of several repetitions, the one that was disturbed least.
class Collector : public benchmark::ConsoleReporter
{
public:
    Collector() : ConsoleReporter(OO_Tabular) {}
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred || run.iterations == 0)
                continue;
            Contestant* const contestant = Find(run.run_name.function_name);
            if (contestant == nullptr)
                continue;
            const double seconds =
                run.cpu_accumulated_time / static_cast<double>(run.iterations) / contestant->items;
            if (contestant->seconds == 0 || seconds < contestant->seconds)
                contestant->seconds = seconds;
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

std::string Time(double seconds)
{
    char text[32];
    if (seconds < 1e-6)
        std::snprintf(text, sizeof(text), "%.0f ns", seconds * 1e9);
    else if (seconds < 1e-3)
        std::snprintf(text, sizeof(text), "%.3g us", seconds * 1e6);
    else
        std::snprintf(text, sizeof(text), "%.4g ms", seconds * 1e3);
    return text;
}

// How often a second, where a run does many of a kind.
std::string Rate(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof(text), seconds < 1e-5 ? "%.0f k/s" : "%.2f k/s", 1e-3 / seconds);
    return text;
}

std::string Figure(const Contestant& contestant)
{
    if (!contestant.missing.empty())
        return "not there";
    if (!contestant.fault.empty())
        return "WRONG";
    if (contestant.seconds == 0)
        return "not run";
    return contestant.items > 1 ? Rate(contestant.seconds) : Time(contestant.seconds);
}

void PrintRow(const char* operation, const char* ours, const char* who, const char* theirs,
              const char* ratio)
{
    std::printf("%-34s %12s   %-22s %12s %8s\n", operation, ours, who, theirs, ratio);
}

void PrintOperation(const Operation& operation)
{
    const Contestant& ours = operation.contestants.front();
    for (const Contestant& other : operation.contestants) {
        if (!other.fault.empty())
            std::printf("WRONG: %s/%s: %s\n", operation.name.c_str(), other.who.c_str(),
                        other.fault.c_str());
        if (&other == &ours)
            continue;
        char ratio[32] = "";
        if (ours.seconds != 0 && other.seconds != 0)
            std::snprintf(ratio, sizeof(ratio), "%.2f", ours.seconds / other.seconds);
        PrintRow(operation.name.c_str(), Figure(ours).c_str(), other.who.c_str(),
                 Figure(other).c_str(), other.missing.empty() ? ratio : other.missing.c_str());
    }
}

// Of the operations that the filter left; nothing where the benchmarks were only listed. False
// when a contestant did not do what it should.
bool PrintTable()
{
    bool isHeadPrinted = false;
    bool right = true;
    for (const Operation& operation : Operations()) {
        bool ran = false;
        for (const Contestant& contestant : operation.contestants) {
            ran = ran || contestant.seconds != 0 || !contestant.fault.empty();
            right = right && contestant.fault.empty();
        }
        if (!ran)
            continue;
        if (!isHeadPrinted) {
            std::printf("\nThe least disturbed repetition of each; a ratio above 1: ours takes "
                        "longer.\n");
            PrintRow("operation", "ours", "beside", "theirs", "ratio");
            isHeadPrinted = true;
        }
        PrintOperation(operation);
    }
    return right;
}

} // namespace

void AddOurs(const std::string& operation, Prepare prepare, Clock clock)
{
    Add(operation, "tavrix", prepare, clock);
}

void AddPeer(const std::string& operation, const std::string& who, Prepare prepare, Clock clock)
{
    Add(operation, who, prepare, clock);
}

void AddMissing(const std::string& operation, const std::string& who, const std::string& package)
{
    Enter(operation, who).missing = package;
}

void AddLimit(const std::string& operation, u32 rows, size_t bytes, u32 items)
{
    const Prepare prepare = [rows, bytes, items] {
        // Rasters, so that the lines lie in memory just as those that the operation works on.
        const Size size = {static_cast<u32>((bytes + 3) / 4), rows};
        auto from = MakeRaster(size, 32);
        auto to = MakeRaster(size, 32);
        auto read = LinesOf(*from);
        auto written = LinesOf(*to);
        Noise noise(7);
        for (u8* line : read)
            noise.Fill(line, bytes);
        Work work;
        work.items = items;
        work.run = [from, to, read, written, bytes, items] {
            for (u32 item = 0; item < items; ++item)
                for (size_t y = 0; y < read.size(); ++y) {
                    std::memcpy(written[y], read[y], bytes);
                    benchmark::ClobberMemory();
                }
        };
        work.fault = [read, written, bytes]() -> std::string {
            for (size_t y = 0; y < read.size(); ++y)
                if (std::memcmp(written[y], read[y], bytes) != 0)
                    return "row " + std::to_string(y) + " is no copy";
            return {};
        };
        return work;
    };
    Add(operation, "limit", prepare, Clock::Thread);
}

void AddLimit(const std::string& operation, Size size)
{
    AddLimit(operation, size.height, size_t{3} * size.width);
}

std::function<void()> AtPlainLevel(std::function<void()> run)
{
    return [run = std::move(run)] {
        (void)UseLevel(ProcessorLevel::Plain);
        run();
        for (const ProcessorLevel level : {ProcessorLevel::Avx2, ProcessorLevel::Sse41})
            if (UseLevel(level))
                break;
    };
}

bool RunAll()
{
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    return PrintTable();
}

} // namespace bench
