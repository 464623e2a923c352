// The plugins that change a picture in place with an effect. Each call gives WrongState when the
// plugin lacks the export, NoMemory when the call's heap could not be made, else what the plugin
// gave; a negative result is a failure. Calls stand between LoadByIndex and Unload; Configure runs
// on the user-interface thread, Process on the worker. After either the caller unlocks all lines of
// the picture.
#pragma once

#include "plugin/PluginModule.h"

class EffectPlugin final : public PluginModule
{
public:
    explicit EffectPlugin(Allocator* allocator = nullptr);

    [[nodiscard]] i32 Process(Raster* image, const PluginCallbacks& callbacks);
    /// 0 when the user cancelled.
    [[nodiscard]] i32 Configure(HWND owner, Raster* image, const PluginCallbacks& callbacks);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixProcessFunction effect;
    TavrixConfigureImageFunction configure;
};
