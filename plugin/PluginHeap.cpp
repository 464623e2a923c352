#include "plugin/PluginHeap.h"

#include "plugin/PluginObjects.h"

#include <new>

namespace
{

HeapAllocator* callHeap = nullptr;

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
    return Done;
}

i32 DropHeap()
{
    if (callHeap == nullptr)
        return NothingDone;
    // Dropping the heap would free the memory of a forgotten picture but leave its line files.
    DestroyPluginObjects();
    delete callHeap;
    callHeap = nullptr;
    return Done;
}

HeapAllocator* PluginHeap()
{
    return callHeap;
}
