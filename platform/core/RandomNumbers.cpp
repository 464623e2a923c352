// The device's random numbers: one generator for all threads, seeded by the host at its first use.

#include "platform/core/TestHooks.h"

#include <handheld.h>

#include <array>
#include <mutex>
#include <random>

using namespace tavrix::platform;

namespace
{

std::mt19937 SeededGenerator()
{
    std::random_device host;
    std::array<uint32_t, 8> words{};
    for (uint32_t& word : words)
        word = host();
    std::seed_seq seed(words.begin(), words.end());
    return std::mt19937(seed);
}

LONG NextNumber()
{
    static std::mutex lock;
    static std::mt19937 generator = SeededGenerator();
    const std::lock_guard<std::mutex> guard(lock);
    return static_cast<LONG>(generator() & 0x7FFFFFFFu);
}

} // namespace

LONG WINAPI Random(void)
{
    TestHooks& hooks = Hooks();
    if (hooks.active.load(std::memory_order_relaxed)) {
        const std::lock_guard<std::mutex> guard(hooks.lock);
        if (hooks.randomNext < hooks.randomNumbers.size())
            return hooks.randomNumbers[hooks.randomNext++];
    }
    return NextNumber();
}
