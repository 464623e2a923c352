// A picture of the test's own behind the contract's table, stricter than the host's: a line that is
// locked is lent as a block of exactly the line's bytes, and is copied back and given up when it is
// unlocked, so that a write behind the line or after the unlock is caught by the sanitizer. As in
// the host, the unlock of a run that touches the last line does nothing. One canvas at a time.
#pragma once

#include "standard-plugins/tests/support/MemoryInUse.h"

#include <tavrix/plugin.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace plugintest
{

struct Pixel {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    bool operator==(const Pixel&) const = default;
};

class Canvas
{
public:
    Canvas();
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    TavrixImageHandle Handle() { return reinterpret_cast<TavrixImageHandle>(this); }
    RasterFunctionTable* Table() { return &table; }

    /// Takes back every line that is still lent, as the host does behind a call.
    void UnlockAll();
    Pixel At(uint32_t x, uint32_t y) const;
    /// Whether a plugin ever unlocked the line, or left it locked at the end.
    bool WasWritten(uint32_t y) const;

    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t depth = 0;
    uint32_t stride = 0;
    /// Bytes of lines beyond which allocations fail, and whether that happened.
    uint64_t mostBytes = uint64_t{1} << 30;
    bool askedTooMuch = false;
    /// No line is kept: each lock lends a fresh one. For measuring a decoder's own memory.
    bool forgets = false;
    /// A picture without files where memory is short: each unlock gives 0, and the line stays where
    /// it is.
    bool keepsUnstored = false;
    /// The n-th call of each from now fails, when n is not negative. A line whose unlock fails is
    /// lost to whoever locks it.
    int failLockAfter = -1;
    int failUnlockAfter = -1;
    int failInsertAfter = -1;
    int allocations = 0;
    int frees = 0;
    int insertions = 0;
    int locks = 0;
    size_t mostLentAtOnce = 0;
    MemoryPeak peak;

private:
    int32_t Alloc(uint32_t newWidth, uint32_t newHeight, uint32_t newDepth);
    int32_t Insert(int32_t line, uint32_t* count);
    int32_t Lock(int32_t line, void** lines, uint32_t* count);
    int32_t Unlock(int32_t line, uint32_t count);
    void TakeBack(uint32_t line);

    RasterFunctionTable table;
    std::vector<std::string> lines;
    std::vector<bool> written;
    std::map<uint32_t, std::unique_ptr<char[]>> lent;
    std::set<uint32_t> lost;
};

} // namespace plugintest
