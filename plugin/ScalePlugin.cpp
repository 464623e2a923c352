#include "plugin/ScalePlugin.h"

#include "plugin/FunctionTables.h"

ScalePlugin::ScalePlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("SCALE")), scaleImage(nullptr), configure(nullptr)
{
}

i32 ScalePlugin::Resolve()
{
    Bind(&scaleImage, TEXT("ScaleImage"));
    Bind(&configure, TEXT("Configure"));
    return Done;
}

i32 ScalePlugin::Unresolve()
{
    // Configure stays, as it may: it is never called on an unloaded library, and the next load
    // binds it anew.
    scaleImage = nullptr;
    return Done;
}

i32 ScalePlugin::ScaleImage(Raster* image, u32 width, u32 height, const PluginCallbacks& callbacks)
{
    return CallInHeap(scaleImage, image, ToHandle(image), &rasterFunctions, &paletteFunctions,
                      width, height, callbacks.progress, callbacks.message, callbacks.put,
                      callbacks.get);
}
