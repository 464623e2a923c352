// An allocator that runs out where a test wants it to, and counts what is not given back.
#pragma once

#include "foundation/Allocator.h"

#include <limits>

class FailingAllocator final : public Allocator
{
public:
    /// The next `count` allocations succeed, and all after them fail.
    void AllowOnly(int count) { left = count; }
    void AllowAll() { left = std::numeric_limits<int>::max(); }
    bool HasFailed() const { return failed; }
    int Live() const { return live; }

    i32 Alloc(void** out, u32 size) override
    {
        if (left == 0) {
            failed = true;
            *out = nullptr;
            return NoMemory;
        }
        --left;
        ++live;
        return inner.Alloc(out, size);
    }
    i32 Free(void* block) override
    {
        --live;
        return inner.Free(block);
    }

private:
    MallocAllocator inner;
    int left = std::numeric_limits<int>::max();
    int live = 0;
    bool failed = false;
};
