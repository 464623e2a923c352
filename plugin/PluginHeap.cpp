#include "plugin/PluginHeap.h"

#include "plugin/PluginObjects.h"

#include <atomic>
#include <new>

namespace
{

HeapAllocator* callHeap = nullptr;
std::atomic<DWORD> callThread{0}; // also read by threads that have no business here

} // namespace

i32 MakeHeap()
{
    (void)DropHeap();
    // Starts on the process heap, which it does not own, since only SetHeap tells whether a heap
    // of its own could be made.
    HeapAllocator* made = new (std::nothrow) HeapAllocator(GetProcessHeap());
    if (made == nullptr)
        return Failed;
    if (made->SetHeap(nullptr) < 0) {
        delete made;
        return Failed;
    }
    callHeap = made;
    callThread = GetCurrentThreadId();
    return Done;
}

i32 DropHeap()
{
    if (callHeap == nullptr)
        return NothingDone;
    callThread = GetCurrentThreadId();
    // Dropping the heap would free the memory of a forgotten picture but leave its line files.
    DestroyPluginObjects();
    callThread = 0;
    delete callHeap;
    callHeap = nullptr;
    return Done;
}

HeapAllocator* PluginHeap()
{
    return callThread == GetCurrentThreadId() ? callHeap : nullptr;
}
