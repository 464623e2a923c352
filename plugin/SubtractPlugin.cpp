#include "plugin/SubtractPlugin.h"

#include "plugin/FunctionTables.h"

SubtractPlugin::SubtractPlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("SUBTRACT")), subtractImage(nullptr)
{
}

i32 SubtractPlugin::Resolve()
{
    Bind(&subtractImage, TEXT("SubtractImage"));
    return Done;
}

i32 SubtractPlugin::Unresolve()
{
    subtractImage = nullptr;
    return Done;
}

i32 SubtractPlugin::SubtractImage(Raster* image, u32 argument, const PluginCallbacks& callbacks)
{
    return CallInHeap(subtractImage, image, ToHandle(image), &rasterFunctions, &paletteFunctions,
                      argument, callbacks.progress, callbacks.message, callbacks.put,
                      callbacks.get);
}
