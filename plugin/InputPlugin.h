// The plugins that read pictures. Each call gives WrongState when the plugin lacks the export,
// NoMemory when the call's heap could not be made, else what the plugin gave; a negative result is
// a failure. Calls stand between LoadByIndex and Unload; Configure runs on the user-interface
// thread, the others on the worker.
//
// With a stream the path is not given to the plugin. After GetImage the caller unlocks all lines of
// the picture, since a plugin may have left some locked.
#pragma once

#include "foundation/Stream.h"
#include "plugin/PluginModule.h"

class Raster;

class InputPlugin final : public PluginModule
{
public:
    explicit InputPlugin(Allocator* allocator = nullptr);

    /// No heap, no tables. `info` is the plugin's; RasterInfo by custom.
    [[nodiscard]] i32 GetImageInfo(const WCHAR* path, Stream* stream, void* info);
    [[nodiscard]] i32 GetImage(const WCHAR* path, Stream* stream, Raster* image,
                               const PluginCallbacks& callbacks);
    /// A quick decode where the plugin has one, else GetImage. With a stream always GetImage.
    [[nodiscard]] i32 GetImageFast(const WCHAR* path, Stream* stream, Raster* image,
                                   const PluginCallbacks& callbacks);
    /// 0 when the user cancelled. No heap, no tables.
    [[nodiscard]] i32 Configure(HWND owner, const PluginCallbacks& callbacks);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixGetImageInfoFunction getImageInfo;
    TavrixImageFunction getImage;
    TavrixImageFunction getImageFast;
    TavrixConfigureFunction configure;
};
