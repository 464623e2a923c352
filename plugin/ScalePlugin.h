// The plugins that resize a picture. ScaleImage gives WrongState when the plugin lacks the export,
// NoMemory when the call's heap could not be made, else what the plugin gave; a negative result is
// a failure. It stands between LoadByIndex and Unload and runs on the worker. Configure is bound
// like that of the others; nothing calls it.
#pragma once

#include "plugin/PluginModule.h"

class ScalePlugin final : public PluginModule
{
public:
    explicit ScalePlugin(Allocator* allocator = nullptr);

    /// Resizes `image` in place to `width` pixels by `height` lines. After it the caller unlocks
    /// all lines of the picture.
    [[nodiscard]] i32 ScaleImage(Raster* image, u32 width, u32 height,
                                 const PluginCallbacks& callbacks);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixScaleFunction scaleImage;
    TavrixConfigureFunction configure;
};
