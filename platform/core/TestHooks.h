// What a test may bend in the platform. One process-wide record, all at rest by default; the
// program never touches it. Tests reach it through platform/testing, never directly.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace tavrix::platform
{

/// The operations of the file layer that a test can make fail. The last three are the steps in
/// which a replaced file (Replacement.h) takes its place.
enum class FileOperation { Create, Open, Read, Write, Sync, Rename, SyncFolder };

/// The calls on sockets that a test can make fail.
enum class SocketOperation {
    Create,
    Option,
    Name,    // the own address
    Resolve, // the address behind a host's name
    Bind,
    Listen,
    Accept,
    Connect,
    Send,
    Receive
};

struct TestHooks {
    std::mutex lock;                             // guards every field that is not atomic
    std::atomic<bool> active{false};             // false: nobody looks further
    std::optional<unsigned long long> freeBytes; // what the device pretends to have free, exactly
    std::optional<LANGID> language;
    std::vector<LONG> randomNumbers; // given out in order before the generator takes over
    size_t randomNext = 0;
    std::optional<SYSTEMTIME> systemTime;
    std::optional<DWORD> tickCount;
    /// Asked before each operation on a host file, with the device path: true lets it fail. A
    /// failing write comes up short (`*shortBy` bytes fewer, at least one). A failing read is an
    /// error, or comes up short if `*shortBy` was set.
    std::function<bool(FileOperation, const WCHAR* path, DWORD* shortBy)> fileFault;
    /// Bytes by which files can still grow, on all disks together. Deleting gives nothing back.
    std::optional<unsigned long long> diskSpace;
    /// Asked before each allocation from a heap or the global heap, and in test programs before the
    /// program's own from the C run time: true lets it fail. Called under the lock.
    std::function<bool(SIZE_T size)> allocationFault;
    /// Asked before each thread is made: true lets it fail. Called under the lock.
    std::function<bool()> threadFault;
    /// Asked before each call on a socket: true lets it fail. `*length` is the number of bytes to
    /// send or to receive at most, and can be lowered; null for other calls. Called under the lock.
    std::function<bool(SocketOperation, int* length)> socketFault;
    /// Counts what the program asked for.
    std::atomic<unsigned> idleTimerResets{0};
    std::atomic<unsigned> beeps{0};
    /// Called on the user-interface thread whenever a modal loop (dialog or message box) has just
    /// been set up and shown, before it waits. `box` tells a message box from a dialog.
    std::function<void(HWND dialog, bool box)> modalStarted;
};

/// The record. Exported, so that test programs reach the one inside the shared library.
CE_API TestHooks& Hooks();

/// Whether a test lets an allocation of `size` bytes fail.
CE_API bool IsAllocationFaulty(SIZE_T size);

/// While one lives on a thread, memory asked of the C run time there is the platform's own part of
/// an allocation that has been asked about already.
class CE_API HostAllocation
{
public:
    HostAllocation();
    ~HostAllocation();
    HostAllocation(const HostAllocation&) = delete;
    HostAllocation& operator=(const HostAllocation&) = delete;
    static bool IsUnderWay();
};

/// What the program holds of the device, to see that nothing stays behind.
struct Holdings {
    size_t heapBytes = 0;
    size_t heaps = 0;
    size_t kernelHandles = 0;
    size_t drawingObjects = 0; // bitmaps, brushes, fonts, contexts
    bool operator==(const Holdings&) const = default;
};
CE_API Holdings CountHoldings();

} // namespace tavrix::platform
