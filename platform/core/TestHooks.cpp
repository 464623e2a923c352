#include "platform/core/TestHooks.h"

#include "platform/core/Gdi.h"
#include "platform/core/HandleTable.h"
#include "platform/core/Heaps.h"

namespace tavrix::platform
{

namespace
{
thread_local unsigned hostAllocations = 0;
} // namespace

TestHooks& Hooks()
{
    // Never destroyed: objects that outlive main still give memory back and ask here.
    static TestHooks* const hooks = new TestHooks;
    return *hooks;
}

bool IsAllocationFaulty(SIZE_T size)
{
    TestHooks& hooks = Hooks();
    if (!hooks.active.load(std::memory_order_relaxed))
        return false;
    // Called under the lock, so that a fault that counts its calls needs no lock of its own.
    const std::lock_guard<std::mutex> guard(hooks.lock);
    return hooks.allocationFault && hooks.allocationFault(size);
}

HostAllocation::HostAllocation()
{
    ++hostAllocations;
}

HostAllocation::~HostAllocation()
{
    --hostAllocations;
}

bool HostAllocation::IsUnderWay()
{
    return hostAllocations != 0;
}

Holdings CountHoldings()
{
    return {HeldBytes(), CountHeaps(), CountHandles(), CountDrawingObjects()};
}

} // namespace tavrix::platform
