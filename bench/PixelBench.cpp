// The program: one pinned thread, all families, and the table.

#include "bench/Peers.h"
#include "bench/Table.h"
#include "foundation/MemoryGauge.h"
#include "platform/testing/Testing.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <sched.h>
#include <unistd.h>

namespace
{

// Threads that a library starts inherit it.
bool PinThread()
{
    const int processor = sched_getcpu();
    if (processor < 0)
        return false;
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(static_cast<unsigned>(processor), &set);
    return sched_setaffinity(0, sizeof(set), &set) == 0;
}

// The gauge keeps this figure, since no message loop runs here that would let it take another. The
// hooks rest again at once, so that no allocation waits for their lock.
void PretendPlentyOfMemory()
{
    tavrix::testing::SetFreeMemory(0xFFFFFFFFu);
    MemoryGauge::Sample();
    tavrix::testing::Reset();
}

// Line files lie in memory, where there is such a folder: how long a disk's file system takes to
// make a file hangs on how many were removed lately, whoever did it. TMPDIR names another folder.
void ChooseFolder()
{
    constexpr const char* inMemory = "/dev/shm";
    if (access(inMemory, W_OK) == 0)
        setenv("TMPDIR", inMemory, 0);
}

} // namespace

int main(int argc, char** argv)
{
    ChooseFolder();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    if (!PinThread())
        std::fprintf(stderr, "pixel_bench: the thread cannot be pinned; figures will wander\n");
    PretendPlentyOfMemory();
    if (!bench::StartPeers(argv[0]))
        return 1;
    bench::AddStretches();
    bench::AddFills();
    bench::AddBlends();
    bench::AddSurfaces();
    bench::AddTurns();
    bench::AddTexts();
    bench::AddStores();
    const bool right = bench::RunAll();
    bench::EndPeers();
    benchmark::Shutdown();
    return right ? 0 : 1;
}
