#include "tests/endurance/Journal.h"

#include "platform/core/TestHooks.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

#if defined(__SANITIZE_ADDRESS__)
/// Asked by the sanitizer of undefined behaviour, which knows no callback at its end, before main.
extern "C" const char* __ubsan_default_options()
{
    return "abort_on_error=1";
}
#endif

namespace endurance
{

namespace
{

Journal* current = nullptr;

long MillisecondsSinceStart()
{
    using Clock = std::chrono::steady_clock;
    static const Clock::time_point start = Clock::now();
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

void TellLast()
{
    if (current != nullptr)
        std::fprintf(stderr, "%s", current->Text().c_str());
    current = nullptr;
}

void OnSignal(int number)
{
    TellLast();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

} // namespace

Journal::Journal(uint64_t runSeed, bool traced) : seed(runSeed), trace(traced)
{
    current = this;
    std::signal(SIGABRT, OnSignal);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_set_death_callback(TellLast);
#else
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        std::signal(number, OnSignal);
#endif
    watcher = std::thread([this] { Watch(); });
}

Journal::~Journal()
{
    over = true;
    watcher.join();
    std::signal(SIGABRT, SIG_DFL);
    current = nullptr;
}

void Journal::Note(const std::string& action)
{
    ++step;
    actions.push_back(std::to_string(step) + " " + action);
    if (actions.size() > Kept)
        actions.pop_front();
    Tell(actions.back());
}

void Journal::Tell(const std::string& line) const
{
    if (!trace)
        return;
    const tavrix::platform::Holdings held = tavrix::platform::CountHoldings();
    std::fprintf(stderr, "%8ld ms, %zu KB in %zu heaps: %s\n", MillisecondsSinceStart(),
                 held.heapBytes >> 10, held.heaps, line.c_str());
}

std::string Journal::Text() const
{
    std::ostringstream text;
    text << "seed " << seed << ", step " << step << "; the last actions:\n";
    for (const std::string& action : actions)
        text << "  " << action << '\n';
    return text.str();
}

void Journal::Watch()
{
    constexpr std::chrono::milliseconds Look{100};
    unsigned seen = beats;
    auto since = std::chrono::steady_clock::now();
    while (!over) {
        std::this_thread::sleep_for(Look);
        if (beats != seen) {
            seen = beats;
            since = std::chrono::steady_clock::now();
        } else if (std::chrono::steady_clock::now() - since >
                   std::chrono::seconds(LongestSilence)) {
            std::fprintf(stderr, "the message loop stands still\n");
            std::abort();
        }
    }
}

} // namespace endurance
