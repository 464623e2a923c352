#include "plugin/InputPlugin.h"

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
    return CallWithStream(getImage, path, stream, image, callbacks);
}

i32 InputPlugin::GetImageFast(const WCHAR* path, Stream* stream, Raster* image,
                              const PluginCallbacks& callbacks)
{
    if (getImageFast == nullptr)
        return GetImage(path, stream, image, callbacks);
    // Meant as it stands: only the full decode ever sees a stream, and a quick one that counts on a
    // path would fail if this were evened out.
    if (stream != nullptr)
        return CallWithStream(getImage, nullptr, stream, image, callbacks);
    return CallWithStream(getImageFast, path, nullptr, image, callbacks);
}

i32 InputPlugin::Configure(HWND owner, const PluginCallbacks& callbacks)
{
    if (configure == nullptr)
        return WrongState;
    return CallPlugin(configure, owner, callbacks.message, callbacks.put, callbacks.get);
}
