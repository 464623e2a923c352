// In which order a class's virtual operations stand in its table. The order is part of what the
// classes promise, and nothing but the table itself tells it; read the way 64-bit Linux lays out
// pointers to members.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#if defined(__x86_64__) && defined(__linux__)
#define TAVRIX_SLOTS_CAN_BE_READ 1
#endif

/// The place in the table: 0 for the first entry. The destructor takes two entries.
template <class Operation>
size_t SlotOf(Operation operation)
{
    struct {
        uintptr_t tablePlace; // in bytes, and 1 more for "virtual"
        ptrdiff_t adjustment;
    } parts;
    static_assert(sizeof parts == sizeof operation);
    std::memcpy(&parts, &operation, sizeof parts);
    return (parts.tablePlace - 1) / sizeof(void*);
}

/// Whether the operations stand one behind the other in the order given.
template <class... Operations>
bool StandInOrder(Operations... operations)
{
    const std::vector<size_t> slots{SlotOf(operations)...};
    for (size_t i = 1; i < slots.size(); ++i)
        if (slots[i] != slots[0] + i)
            return false;
    return true;
}
