#include "plugin/OutputPlugin.h"

OutputPlugin::OutputPlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("OUTPUT")), putImage(nullptr), configure(nullptr)
{
}

i32 OutputPlugin::Resolve()
{
    Bind(&putImage, TEXT("PutImage"));
    Bind(&configure, TEXT("Configure"));
    return Done;
}

i32 OutputPlugin::Unresolve()
{
    // Configure stays, as it may: it is never called on an unloaded library, and the next load
    // binds it anew.
    putImage = nullptr;
    return Done;
}
