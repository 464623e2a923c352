// What a test may bend in the platform. One process-wide record, all at rest by default; the program
// never touches it. Tests reach it through platform/testing, never directly.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace tavrix::platform
{

/// The operations of the file layer that a test can make fail.
enum class FileOperation { Create, Open, Read, Write };

struct TestHooks {
    std::mutex lock;                            // guards every field that is not atomic
    std::atomic<bool> active{false};            // false: nobody looks further
    std::optional<unsigned long long> freeBytes; // what the device pretends to have free, exactly
    std::optional<LANGID> language;
    std::vector<LONG> randomNumbers;            // given out in order before the generator takes over
    size_t randomNext = 0;
    std::optional<SYSTEMTIME> systemTime;
    std::optional<DWORD> tickCount;
    /// Asked before each operation on a host file, with the device path: true lets it fail. A
    /// failing write comes up short (`*shortBy` bytes fewer, at least one).
    std::function<bool(FileOperation, const WCHAR* path, DWORD* shortBy)> fileFault;
    /// Asked before each allocation from a heap or the global heap: true lets it fail.
    std::function<bool(SIZE_T size)> allocationFault;
    std::atomic<bool> threadFault{false}; // no thread can be made
    /// Counts what the program asked for.
    std::atomic<unsigned> idleTimerResets{0};
    std::atomic<unsigned> beeps{0};
    /// Called on the user-interface thread whenever a modal loop (dialog or message box) has just
    /// been set up and shown, before it waits. `box` tells a message box from a dialog.
    std::function<void(HWND dialog, bool box)> modalStarted;
};

/// The record. Exported, so that test programs reach the one inside the shared library.
CE_API TestHooks& Hooks();

} // namespace tavrix::platform
