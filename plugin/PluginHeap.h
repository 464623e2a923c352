// The private heap of the one plugin call that runs. Whatever a plugin makes through the function
// tables comes from it, and dropping it gives everything back, also what the plugin forgot.
//
// Order: MakeHeap, the call, DropHeap; null at all other times. Only one call runs at a time, on
// the worker or, for a Configure that takes a picture, on the user-interface thread: hence no lock.
#pragma once

#include "foundation/Allocator.h"

/// Drops an old heap first. The call is then that of the calling thread. Done, or Failed when no
/// heap could be made.
[[nodiscard]] i32 MakeHeap();
/// Releases what the plugin left behind, then the heap. Done, or NothingDone when there was none.
i32 DropHeap();
/// The heap of the running call; null between calls, and on every thread but that of the call.
HeapAllocator* PluginHeap();
