#include "plugin/InputPlugin.h"

#include "plugin/FunctionTables.h"
#include "plugin/PluginHeap.h"
#include "plugin/ScopedStreamRecord.h"

InputPlugin::InputPlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("INPUT")), getImageInfo(nullptr), getImage(nullptr),
      getImageFast(nullptr), configure(nullptr)
{
}

i32 InputPlugin::Resolve()
{
    Bind(&getPluginInfo, TEXT("GetPluginInfo"));
    Bind(&getImageInfo, TEXT("GetImageInfo"));
    Bind(&getImage, TEXT("GetImage"));
    Bind(&getImageFast, TEXT("GetImageFast"));
    Bind(&configure, TEXT("Configure"));
    return Done;
}

i32 InputPlugin::Unresolve()
{
    getImageInfo = nullptr;
    getImage = nullptr;
    getImageFast = nullptr;
    configure = nullptr;
    return Done;
}

i32 InputPlugin::GetImageInfo(const WCHAR* path, Stream* stream, void* info)
{
    if (getImageInfo == nullptr)
        return WrongState;
    ScopedStreamRecord record(stream);
    return CallPlugin(getImageInfo, record.PathOrNull(path), record.Get(), info);
}

i32 InputPlugin::GetImage(const WCHAR* path, Stream* stream, Raster* image,
                          const PluginCallbacks& callbacks)
{
    return CallWithImage(getImage, path, stream, image, callbacks);
}

i32 InputPlugin::GetImageFast(const WCHAR* path, Stream* stream, Raster* image,
                              const PluginCallbacks& callbacks)
{
    if (getImageFast == nullptr)
        return GetImage(path, stream, image, callbacks);
    // Meant as it stands: only the full decode ever sees a stream, and a quick one that counts on a
    // path would fail if this were evened out.
    if (stream != nullptr)
        return CallWithImage(getImage, nullptr, stream, image, callbacks);
    return CallWithImage(getImageFast, path, nullptr, image, callbacks);
}

i32 InputPlugin::Configure(HWND owner, const PluginCallbacks& callbacks)
{
    if (configure == nullptr)
        return WrongState;
    return CallPlugin(configure, owner, callbacks.message, callbacks.put, callbacks.get);
}

i32 InputPlugin::CallWithImage(TavrixImageFunction function, const WCHAR* path, Stream* stream,
                               Raster* image, const PluginCallbacks& callbacks)
{
    if (function == nullptr)
        return WrongState;
    if (BeginCall() < 0)
        return NoMemory;
    i32 result;
    {
        ScopedStreamRecord record(stream);
        result = CallPlugin(function, record.PathOrNull(path), record.Get(), ToHandle(image),
                            &rasterFunctions, &paletteFunctions, callbacks.progress,
                            callbacks.message, callbacks.put, callbacks.get);
    }
    (void)DropHeap();
    return result;
}
