// The plugins that reduce the colours of a picture. SubtractImage gives WrongState when the plugin
// lacks the export, NoMemory when the call's heap could not be made, else what the plugin gave; a
// negative result is a failure. It stands between LoadByIndex and Unload and runs on the worker.
#pragma once

#include "plugin/PluginModule.h"

class SubtractPlugin final : public PluginModule
{
public:
    explicit SubtractPlugin(Allocator* allocator = nullptr);

    /// `argument` is handed through to the plugin. After it the caller unlocks all lines of the
    /// picture.
    [[nodiscard]] i32 SubtractImage(Raster* image, u32 argument, const PluginCallbacks& callbacks);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixSubtractFunction subtractImage;
};
