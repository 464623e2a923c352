// The plugins that print pictures. Each call gives WrongState when the plugin lacks the export,
// NoMemory when the call's heap could not be made, else what the plugin gave. Calls stand between
// LoadByIndex and Unload; Configure runs on the user-interface thread, Print on the worker.
#pragma once

#include "plugin/PluginModule.h"

class PrintPlugin final : public PluginModule
{
public:
    explicit PrintPlugin(Allocator* allocator = nullptr);

    /// `zero1` to `zero4` are reserved words, 0 from every caller. After it the caller unlocks all
    /// lines of the picture.
    [[nodiscard]] i32 Print(Raster* image, HWND owner, u32 zero1, u32 zero2, u32 zero3, u32 zero4,
                            const WCHAR* title, const PluginCallbacks& callbacks);
    /// 0 when the user cancelled. In a heap, though the plugin gets no tables.
    [[nodiscard]] i32 Configure(HWND owner, const PluginCallbacks& callbacks);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixPrintFunction print;
    TavrixConfigureFunction configure;
};
