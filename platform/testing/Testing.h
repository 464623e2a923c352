// The one door through which tests bend the platform: free memory, failing files, the language,
// Random, the clock. Compiled into test programs only. Everything set here is undone by Reset,
// which a Scope calls at its end.
#pragma once

#include "platform/core/TestHooks.h"

#include <string>
#include <vector>

namespace tavrix::testing
{

/// Puts every hook to rest.
void Reset();

/// Undoes at its end whatever a test set.
struct Scope {
    Scope() { Reset(); }
    ~Scope() { Reset(); }
};

/// The device now reports exactly `bytes` of free memory. The memory gauge sees it at its next
/// sample (call MemoryGauge::Sample).
void SetFreeMemory(unsigned long long bytes);
void SetLanguage(LANGID language); // 1041 Japanese, 1033 English
/// The next numbers of Random, in order; after them the generator goes on.
void SetRandom(std::vector<LONG> numbers);
void SetSystemTime(const SYSTEMTIME& time);
void SetTickCount(DWORD milliseconds);
/// Asked before each operation on a file (see TestHooks::fileFault).
void SetFileFault(
    std::function<bool(platform::FileOperation, const WCHAR* path, DWORD* shortBy)> fault);
/// What is left on every disk, in bytes; writes beyond that come up short, and at 0 no file can be
/// made. Deleting gives nothing back.
void SetDiskSpace(unsigned long long bytes);
/// Asked before each allocation (which ones: see Faults.h).
void SetAllocationFault(std::function<bool(SIZE_T size)> fault);

/// Asked before each thread is made.
void SetThreadFault(std::function<bool()> fault);
/// Asked before each call on a socket (see TestHooks::socketFault).
void SetSocketFault(std::function<bool(platform::SocketOperation, int* length)> fault);

/// The host path behind a device path, in UTF-8, for looking from outside. Empty when it has none.
std::string HostPath(const WCHAR* devicePath);
/// UTF-8 to device text and back, for readable expectations.
std::u16string Wide(const std::string& utf8);
std::string Utf8(const WCHAR* text);
/// A fresh folder below the test's own temporary folder, removed when the process ends; answers its
/// host path.
std::string FreshFolder();

} // namespace tavrix::testing
