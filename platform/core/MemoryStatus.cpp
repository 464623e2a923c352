#include "platform/core/MemoryStatus.h"

#include "platform/core/Heaps.h"
#include "platform/core/TestHooks.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

using namespace tavrix::platform;

namespace
{

using Bytes = unsigned long long;

// A host that tells nothing is taken for a small device.
constexpr Bytes UnknownHost = 128ull << 20;

Bytes ReadBudget()
{
    if (const auto wanted = ParseMemorySize(std::getenv("TAVRIX_MEMORY")))
        return *wanted;
    return EndOfHostMemory() / 2;
}

Bytes Budget()
{
    static const Bytes budget = ReadBudget();
    return budget;
}

Bytes Available()
{
    TestHooks& hooks = Hooks();
    if (hooks.active.load(std::memory_order_relaxed)) {
        const std::lock_guard<std::mutex> guard(hooks.lock);
        if (hooks.freeBytes)
            return *hooks.freeBytes;
    }
    const Bytes held = HeldBytes();
    return Budget() > held ? Budget() - held : 0;
}

// The device's words have 32 bits; a host with more must not look as if it had less.
SIZE_T Saturated(Bytes bytes)
{
    return static_cast<SIZE_T>(std::min<Bytes>(bytes, 0xFFFFFFFFu));
}

} // namespace

namespace tavrix::platform
{

std::optional<unsigned long long> ParseMemorySize(const char* text)
{
    if (text == nullptr || *text < '0' || *text > '9')
        return std::nullopt;
    constexpr Bytes Most = std::numeric_limits<Bytes>::max();
    Bytes bytes = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        const Bytes digit = static_cast<Bytes>(*text - '0');
        bytes = bytes > (Most - digit) / 10 ? Most : bytes * 10 + digit;
    }
    int shift = 0;
    switch (*text) {
    case 'k':
    case 'K':
        shift = 10;
        break;
    case 'm':
    case 'M':
        shift = 20;
        break;
    case 'g':
    case 'G':
        shift = 30;
        break;
    default:
        break;
    }
    if (shift != 0)
        ++text;
    if (*text != 0 || bytes == 0)
        return std::nullopt;
    return bytes > Most >> shift ? Most : bytes << shift;
}

unsigned long long EndOfHostMemory()
{
    static const Bytes end = HostAvailableBytes("").value_or(UnknownHost);
    return end;
}

} // namespace tavrix::platform

void WINAPI GlobalMemoryStatus(LPMEMORYSTATUS status)
{
    if (status == nullptr)
        return;
    const Bytes available = Available();
    const Bytes total = std::max(Budget(), available);
    status->dwLength = sizeof(MEMORYSTATUS);
    status->dwMemoryLoad = static_cast<DWORD>(
        total == 0 ? 100.0
                   : 100.0 * (1.0 - static_cast<double>(available) / static_cast<double>(total)));
    status->dwTotalPhys = Saturated(total);
    status->dwAvailPhys = Saturated(available);
    // A handheld has no page file, and its address space is not what runs short first.
    status->dwTotalPageFile = 0;
    status->dwAvailPageFile = 0;
    status->dwTotalVirtual = Saturated(total);
    status->dwAvailVirtual = Saturated(available);
}
