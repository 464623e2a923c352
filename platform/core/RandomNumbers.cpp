// The device's random numbers: one sequence for all threads, seeded by the host at its first use.

#include "platform/core/TestHooks.h"

#include <handheld.h>

#include <atomic>
#include <mutex>
#include <random>

using namespace tavrix::platform;

namespace
{

uint64_t Seed()
{
    std::random_device host;
    return uint64_t{host()} << 32 | host();
}

constexpr uint64_t Step = 0x9E3779B97F4A7C15u;
constexpr uint64_t ClaimedSteps = 256;

// A thread's part of the sequence that it has not drawn yet.
struct Claim {
    uint64_t word;
    uint64_t left; // steps
};

void Renew(Claim* claim)
{
    static std::atomic<uint64_t> counter{Seed()};
    claim->word = counter.fetch_add(Step * ClaimedSteps, std::memory_order_relaxed);
    claim->left = ClaimedSteps;
}

// A counter whose steps cover every word of 64 bits, mixed: SplitMix64 of Steele, Lea and Flood,
// "Fast Splittable Pseudorandom Number Generators" (2014). A picture in four greys asks for a
// number a pixel, of which a lock around a larger generator would be the dearest part, and so would
// a counter that all threads share: each takes steps of it for some time.
LONG NextNumber()
{
    static thread_local Claim claim;
    if (claim.left == 0)
        Renew(&claim);
    --claim.left;
    claim.word += Step;
    uint64_t word = claim.word;
    word = (word ^ word >> 30) * 0xBF58476D1CE4E5B9u;
    word = (word ^ word >> 27) * 0x94D049BB133111EBu;
    word ^= word >> 31;
    return static_cast<LONG>(word & 0x7FFFFFFFu);
}

} // namespace

LONG WINAPI Random(void)
{
    static TestHooks& hooks = Hooks();
    if (hooks.active.load(std::memory_order_relaxed)) {
        const std::lock_guard<std::mutex> guard(hooks.lock);
        if (hooks.randomNext < hooks.randomNumbers.size())
            return hooks.randomNumbers[hooks.randomNext++];
    }
    return NextNumber();
}
