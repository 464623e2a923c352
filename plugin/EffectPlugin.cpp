#include "plugin/EffectPlugin.h"

#include "plugin/FunctionTables.h"

EffectPlugin::EffectPlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("EFFECT")), effect(nullptr), configure(nullptr)
{
}

i32 EffectPlugin::Resolve()
{
    Bind(&effect, TEXT("Effect"));
    Bind(&configure, TEXT("Configure"));
    return Done;
}

i32 EffectPlugin::Unresolve()
{
    // Configure stays, as it may: it is never called on an unloaded library, and the next load
    // binds it anew.
    effect = nullptr;
    return Done;
}

i32 EffectPlugin::Process(Raster* image, const PluginCallbacks& callbacks)
{
    return CallInHeap(effect, image, ToHandle(image), &rasterFunctions, &paletteFunctions,
                      callbacks.progress, callbacks.message, callbacks.put, callbacks.get);
}

i32 EffectPlugin::Configure(HWND owner, Raster* image, const PluginCallbacks& callbacks)
{
    return CallInHeap(configure, image, owner, ToHandle(image), &rasterFunctions, &paletteFunctions,
                      callbacks.message, callbacks.put, callbacks.get);
}
