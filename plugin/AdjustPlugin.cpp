#include "plugin/AdjustPlugin.h"

#include "plugin/FunctionTables.h"

AdjustPlugin::AdjustPlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("ADJUST")), adjustImage(nullptr), configure(nullptr)
{
}

i32 AdjustPlugin::Resolve()
{
    Bind(&adjustImage, TEXT("AdjustImage"));
    Bind(&configure, TEXT("Configure"));
    return Done;
}

i32 AdjustPlugin::Unresolve()
{
    // Configure stays, as it may: it is never called on an unloaded library, and the next load
    // binds it anew.
    adjustImage = nullptr;
    return Done;
}

i32 AdjustPlugin::Process(Raster* image, const PluginCallbacks& callbacks)
{
    return CallInHeap(adjustImage, image, ToHandle(image), &rasterFunctions, &paletteFunctions,
                      callbacks.progress, callbacks.message, callbacks.put, callbacks.get);
}

i32 AdjustPlugin::Configure(HWND owner, Raster* image, const PluginCallbacks& callbacks)
{
    return CallInHeap(configure, image, owner, ToHandle(image), &rasterFunctions, &paletteFunctions,
                      callbacks.message, callbacks.put, callbacks.get);
}
