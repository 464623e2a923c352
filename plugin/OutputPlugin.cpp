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

i32 OutputPlugin::PutImage(const WCHAR* path, Stream* stream, Raster* image,
                           const PluginCallbacks& callbacks)
{
    return CallWithStream(putImage, path, stream, image, callbacks);
}

i32 OutputPlugin::Configure(HWND owner, const PluginCallbacks& callbacks)
{
    if (configure == nullptr)
        return WrongState;
    return CallPlugin(configure, owner, callbacks.message, callbacks.put, callbacks.get);
}
