// A handle is 4 * (generation << 16 | slot), which fits into 31 bits: a positive number on every
// host, never null and never INVALID_HANDLE_VALUE. Freed slots wait in a queue before they are used
// again, and each use takes the next generation, so that a stale handle is told from a live one for
// some millions of handles.

#include "platform/core/HandleTable.h"

#include "platform/core/ErrorCodes.h"

#include <deque>
#include <mutex>
#include <new>
#include <vector>

namespace tavrix::platform
{

namespace
{

constexpr uintptr_t SlotBits = 16;
constexpr uintptr_t MaximumSlots = uintptr_t{1} << SlotBits;
constexpr uintptr_t Generations = uintptr_t{1} << 13;
constexpr DWORD NotResumed = 0xFFFFFFFF;
constexpr size_t RestingSlots = 1024; // freed slots that wait before one is used again

struct Slot {
    std::shared_ptr<KernelObject> object;
    uintptr_t generation = 0;
};

struct Table {
    std::mutex lock;
    std::vector<Slot> slots{1}; // slot 0 stays empty: no handle is null
    std::deque<uintptr_t> resting;
};

/// Never destroyed: objects with static life close their handles after main.
Table& TheTable()
{
    static Table& table = *new Table;
    return table;
}

HANDLE HandleOf(uintptr_t slot, uintptr_t generation)
{
    return reinterpret_cast<HANDLE>((generation << SlotBits | slot) << 2);
}

/// The slot that a handle names; null when it names none that is in use. The lock is held.
Slot* SlotOf(Table& table, HANDLE handle, uintptr_t* index)
{
    const uintptr_t number = reinterpret_cast<uintptr_t>(handle);
    if ((number & 3) != 0)
        return nullptr;
    *index = (number >> 2) & (MaximumSlots - 1);
    if (*index == 0 || *index >= table.slots.size())
        return nullptr;
    Slot& slot = table.slots[*index];
    return slot.object != nullptr && handle == HandleOf(*index, slot.generation) ? &slot : nullptr;
}

} // namespace

DWORD KernelObject::Wait(DWORD)
{
    SetLastError(ERROR_INVALID_HANDLE);
    return WAIT_FAILED;
}

DWORD KernelObject::Resume()
{
    SetLastError(ERROR_INVALID_HANDLE);
    return NotResumed;
}

HANDLE AddHandle(std::shared_ptr<KernelObject> object)
{
    if (object == nullptr)
        return nullptr;
    try {
        Table& table = TheTable();
        const std::lock_guard guard(table.lock);
        uintptr_t index = table.slots.size();
        if (table.resting.size() > RestingSlots || index == MaximumSlots) {
            if (table.resting.empty())
                return nullptr;
            index = table.resting.front();
            table.resting.pop_front();
        } else {
            table.slots.emplace_back();
        }
        Slot& slot = table.slots[index];
        slot.object = std::move(object);
        return HandleOf(index, slot.generation);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

std::shared_ptr<KernelObject> FindObject(HANDLE handle)
{
    Table& table = TheTable();
    const std::lock_guard guard(table.lock);
    uintptr_t index = 0;
    const Slot* slot = SlotOf(table, handle, &index);
    return slot != nullptr ? slot->object : nullptr;
}

std::shared_ptr<KernelObject> RemoveHandle(HANDLE handle)
{
    Table& table = TheTable();
    const std::lock_guard guard(table.lock);
    uintptr_t index = 0;
    Slot* slot = SlotOf(table, handle, &index);
    if (slot == nullptr)
        return nullptr;
    table.resting.push_back(index);
    slot->generation = (slot->generation + 1) % Generations;
    return std::move(slot->object);
}

size_t CountHandles()
{
    Table& table = TheTable();
    const std::lock_guard guard(table.lock);
    return table.slots.size() - 1 - table.resting.size();
}

} // namespace tavrix::platform

BOOL WINAPI CloseHandle(HANDLE handle)
{
    using namespace tavrix::platform;
    // What the object holds is released here, after the table's lock has been given up.
    return RemoveHandle(handle) != nullptr ? TRUE : FailWith(ERROR_INVALID_HANDLE);
}
