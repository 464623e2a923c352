#include "tests/endurance/Troubles.h"

#include "foundation/MemoryGauge.h"
#include "platform/testing/core/TestHome.h"
#include "platform/testing/Testing.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace endurance
{

namespace
{

using namespace tavrix;
using platform::FileOperation;

// What the device has, and what its heaps can hold beyond that before the figure of free memory is
// read anew.
constexpr unsigned long long PlentyOfMemory = 64ULL << 20;
constexpr unsigned long long EndOfMemory = 160ULL << 20;
constexpr unsigned long long PlentyOfDisk = 256ULL << 20;

std::atomic<unsigned long long> heldAtRound{0}; // by the device's heaps, in the loop's last round
std::atomic<unsigned long long> takenSince{0};

/// A device's memory has an end, which the test's own host may be far from.
bool IsBeyondMemory(SIZE_T size)
{
    if (size <= EndOfMemory && heldAtRound + (takenSince += size) <= EndOfMemory)
        return false;
    takenSince -= size;
    return true;
}

/// Chances that are drawn from any thread.
class SharedDice
{
public:
    explicit SharedDice(Dice own) : dice(own) {}
    bool Chance(int perMille)
    {
        const std::lock_guard<std::mutex> guard(lock);
        return dice.Below(1000) < perMille;
    }
    int Below(int count)
    {
        const std::lock_guard<std::mutex> guard(lock);
        return dice.Below(count);
    }

private:
    std::mutex lock;
    Dice dice;
};

/// The whole machine stands below this folder of the device; of it the test's own home alone may
/// be touched.
bool IsBeyondFence(const std::u16string& path)
{
    static const std::u16string machine = u"\\computer\\";
    static const std::u16string home = [] {
        std::u16string own = u"\\computer" + testing::Wide(testing::TestHome());
        for (char16_t& sign : own)
            sign = sign == u'/' ? u'\\' : static_cast<char16_t>(towlower(sign));
        return own;
    }();
    std::u16string lower = path;
    for (char16_t& sign : lower)
        sign = static_cast<char16_t>(towlower(sign));
    if (!lower.starts_with(machine))
        return false;
    return !lower.starts_with(home) || lower.find(u"..") != lower.npos;
}

/// Each operation on a file fails by `perMille`, some of them by coming up short.
void SetFiles(const std::shared_ptr<SharedDice>& dice, int perMille, unsigned operations)
{
    testing::SetFileFault([=](FileOperation operation, const WCHAR* path, DWORD* shortBy) {
        if (path != nullptr && IsBeyondFence(path))
            return true;
        if (perMille == 0 || (operations >> static_cast<unsigned>(operation) & 1) == 0 ||
            !dice->Chance(perMille))
            return false;
        const bool transfer = operation == FileOperation::Read || operation == FileOperation::Write;
        if (shortBy != nullptr && transfer && dice->Below(2) == 0)
            *shortBy = static_cast<DWORD>(1 + dice->Below(64));
        return true;
    });
}

void SetMemory(unsigned long long bytes)
{
    testing::SetFreeMemory(bytes);
    MemoryGauge::Sample();
}

std::string BeginFiles(Dice& dice)
{
    const int perMille = dice.Pick({5, 50, 300, 1000});
    const unsigned operations = dice.Chance(50) ? 1u << dice.Below(7) : 0x7Fu;
    SetFiles(std::make_shared<SharedDice>(dice.Fork()), perMille, operations);
    return "files fail, " + std::to_string(perMille) + " of 1000, operations " +
           std::to_string(operations);
}

std::string BeginAllocations(Dice& dice)
{
    const auto own = std::make_shared<SharedDice>(dice.Fork());
    const int perMille = dice.Pick({2, 20, 200, 1000});
    const SIZE_T least = dice.Pick({0, 0, 64, 4096});
    testing::SetAllocationFault([=](SIZE_T size) {
        return IsBeyondMemory(size) || (size >= least && own->Chance(perMille));
    });
    return "allocations from " + std::to_string(least) + " bytes fail, " +
           std::to_string(perMille) + " of 1000";
}

std::string BeginThreads(Dice& dice)
{
    const auto own = std::make_shared<SharedDice>(dice.Fork());
    testing::SetThreadFault([=] { return own->Chance(600); });
    return "threads fail";
}

std::string BeginSockets(Dice& dice)
{
    const auto own = std::make_shared<SharedDice>(dice.Fork());
    testing::SetSocketFault([=](platform::SocketOperation, int* length) {
        if (length != nullptr && *length > 1 && own->Chance(500))
            *length = 1 + own->Below(*length);
        return own->Chance(150);
    });
    return "sockets fail";
}

std::string BeginDisk(Dice& dice)
{
    const int bytes = dice.Pick({0, 10, 1000, 20000, 200000});
    testing::SetDiskSpace(static_cast<unsigned long long>(bytes));
    return "the disk has " + std::to_string(bytes) + " bytes left";
}

std::string BeginMemory(Dice& dice)
{
    const int kilobytes = dice.Pick({0, 1, 640, 641, 700, 1000, 2000, 8000});
    SetMemory(static_cast<unsigned long long>(kilobytes) << 10);
    return "memory has " + std::to_string(kilobytes) + " KB left";
}

} // namespace

Troubles::Troubles()
{
    End();
}

Troubles::~Troubles()
{
    testing::SetFileFault(nullptr);
    testing::SetAllocationFault(nullptr);
    testing::SetThreadFault(nullptr);
    testing::SetSocketFault(nullptr);
}

std::string Troubles::Begin(Dice& dice)
{
    End();
    using BeginOne = std::string (*)(Dice&);
    constexpr BeginOne Kinds[] = {BeginFiles,   BeginAllocations, BeginThreads,
                                  BeginSockets, BeginDisk,        BeginMemory,
                                  BeginMemory,  BeginFiles,       BeginAllocations};
    const BeginOne begin = dice.Pick(Kinds);
    memoryShort = begin == BeginMemory;
    const std::string what = begin(dice);
    steps = dice.Between(1, 40);
    return what + " for " + std::to_string(steps) + " steps";
}

void Troubles::Step()
{
    if (steps > 0 && --steps == 0)
        End();
}

void Troubles::Round()
{
    heldAtRound = platform::CountHoldings().heapBytes;
    takenSince = 0;
    if (!memoryShort)
        SetMemory(heldAtRound < PlentyOfMemory ? PlentyOfMemory - heldAtRound : 0);
}

void Troubles::End()
{
    steps = 0;
    testing::SetAllocationFault(IsBeyondMemory);
    testing::SetThreadFault(nullptr);
    testing::SetSocketFault(nullptr);
    SetFiles(nullptr, 0, 0);
    testing::SetDiskSpace(PlentyOfDisk);
    memoryShort = false;
    Round();
}

} // namespace endurance
