#include "plugin/PrintPlugin.h"

#include "plugin/FunctionTables.h"

PrintPlugin::PrintPlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("PRINT")), print(nullptr), configure(nullptr)
{
}

i32 PrintPlugin::Resolve()
{
    Bind(&print, TEXT("Print"));
    Bind(&configure, TEXT("Configure"));
    return Done;
}

i32 PrintPlugin::Unresolve()
{
    print = nullptr;
    configure = nullptr;
    return Done;
}

i32 PrintPlugin::Print(Raster* image, HWND owner, u32 zero1, u32 zero2, u32 zero3, u32 zero4,
                       const WCHAR* title, const PluginCallbacks& callbacks)
{
    return CallInHeap(print, image, ToHandle(image), &rasterFunctions, &paletteFunctions, owner,
                      zero1, zero2, zero3, zero4, title, callbacks.progress, callbacks.message,
                      callbacks.put, callbacks.get);
}

i32 PrintPlugin::Configure(HWND owner, const PluginCallbacks& callbacks)
{
    return CallInHeap(configure, nullptr, owner, callbacks.message, callbacks.put, callbacks.get);
}
