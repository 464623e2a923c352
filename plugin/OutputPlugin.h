// The plugins that write pictures. Each call gives WrongState when the plugin lacks the export,
// NoMemory when the call's heap could not be made, else what the plugin gave; a negative result is
// a failure. Calls stand between LoadByIndex and Unload; Configure runs on the user-interface
// thread, PutImage on the worker.
#pragma once

#include "plugin/PluginModule.h"

class OutputPlugin final : public PluginModule
{
public:
    explicit OutputPlugin(Allocator* allocator = nullptr);

    /// Writes `image` to the stream, or without one to the file at `path`, a path of the device.
    /// After it the caller unlocks all lines of the picture.
    [[nodiscard]] i32 PutImage(const WCHAR* path, Stream* stream, Raster* image,
                               const PluginCallbacks& callbacks);
    /// 0 when the user cancelled. No heap, no tables.
    [[nodiscard]] i32 Configure(HWND owner, const PluginCallbacks& callbacks);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixImageFunction putImage;
    TavrixConfigureFunction configure;
};
