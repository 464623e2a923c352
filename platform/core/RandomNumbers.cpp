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

// Never by a call: the library is there when the program starts.
[[gnu::tls_model("initial-exec")]] constinit thread_local Claim claimed{};

// Known from the first number on.
constinit std::atomic<TestHooks*> knownHooks{nullptr};

[[gnu::noinline]] void Renew(Claim* claim)
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
    Claim& claim = claimed;
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

// With what a test may bend; apart, so that the other way is short.
[[gnu::noinline]] LONG NumberAfterHooks()
{
    TestHooks& hooks = Hooks();
    knownHooks.store(&hooks, std::memory_order_release);
    if (hooks.active.load(std::memory_order_relaxed)) {
        const std::lock_guard<std::mutex> guard(hooks.lock);
        if (hooks.randomNext < hooks.randomNumbers.size())
            return hooks.randomNumbers[hooks.randomNext++];
    }
    return NextNumber();
}

} // namespace

LONG WINAPI Random(void)
{
    const TestHooks* const hooks = knownHooks.load(std::memory_order_acquire);
    if (hooks == nullptr || hooks->active.load(std::memory_order_relaxed))
        return NumberAfterHooks();
    return NextNumber();
}
