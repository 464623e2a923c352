#include "platform/core/WindowTable.h"

#include <mutex>
#include <vector>

namespace tavrix::platform
{
namespace
{

constexpr uintptr_t IndexBits = 14;
constexpr uintptr_t IndexMask = (uintptr_t{1} << IndexBits) - 1;
// Keeps handles clear of the small numbers that the interface uses as marks (HWND_BOTTOM).
constexpr int HandleShift = 2;
constexpr uintptr_t LastGeneration = 0xFFFF;

struct Entry {
    void* record = nullptr;
    const WNDPROC* procedure = nullptr;
    HWND parent = nullptr;
    uintptr_t generation = 1;
};

struct Table {
    std::mutex lock;
    std::vector<Entry> entries;
    std::vector<size_t> free;
};

// Never destroyed: threads may still ask while the process ends.
Table& Windows()
{
    static Table& table = *new Table;
    return table;
}

HWND MakeHandle(size_t index, uintptr_t generation)
{
    return reinterpret_cast<HWND>(((generation << IndexBits) | index) << HandleShift);
}

// The lock is held.
Entry* FindEntry(Table& table, HWND window)
{
    const uintptr_t value = reinterpret_cast<uintptr_t>(window) >> HandleShift;
    const size_t index = value & IndexMask;
    if (index >= table.entries.size())
        return nullptr;
    Entry& entry = table.entries[index];
    if (entry.record == nullptr || MakeHandle(index, entry.generation) != window)
        return nullptr;
    return &entry;
}

} // namespace

HWND AddWindowHandle(void* record, const WNDPROC* procedure, HWND parent)
{
    Table& table = Windows();
    std::lock_guard guard(table.lock);
    size_t index = table.entries.size();
    if (!table.free.empty()) {
        index = table.free.back();
        table.free.pop_back();
    } else {
        if (index > IndexMask)
            return nullptr;
        table.entries.emplace_back();
    }
    Entry& entry = table.entries[index];
    entry.record = record;
    entry.procedure = procedure;
    entry.parent = parent;
    return MakeHandle(index, entry.generation);
}

void RemoveWindowHandle(HWND window)
{
    Table& table = Windows();
    std::lock_guard guard(table.lock);
    Entry* entry = FindEntry(table, window);
    if (entry == nullptr)
        return;
    entry->record = nullptr;
    entry->generation = entry->generation == LastGeneration ? 1 : entry->generation + 1;
    table.free.push_back(static_cast<size_t>(entry - table.entries.data()));
}

void* WindowRecord(HWND window)
{
    Table& table = Windows();
    std::lock_guard guard(table.lock);
    const Entry* entry = FindEntry(table, window);
    return entry != nullptr ? entry->record : nullptr;
}

WNDPROC WindowProcedure(HWND window)
{
    Table& table = Windows();
    std::lock_guard guard(table.lock);
    const Entry* entry = FindEntry(table, window);
    return entry != nullptr ? *entry->procedure : nullptr;
}

bool IsSameOrBelow(HWND window, HWND ancestor)
{
    Table& table = Windows();
    std::lock_guard guard(table.lock);
    while (window != nullptr && window != ancestor) {
        const Entry* entry = FindEntry(table, window);
        window = entry != nullptr ? entry->parent : nullptr;
    }
    return window != nullptr;
}

} // namespace tavrix::platform

extern "C" {

BOOL WINAPI IsWindow(HWND window)
{
    return tavrix::platform::WindowRecord(window) != nullptr;
}

} // extern "C"
