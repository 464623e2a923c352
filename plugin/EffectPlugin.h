// The plugins that change a picture in place with an effect: their exports.
#pragma once

#include "plugin/PluginModule.h"

class EffectPlugin final : public PluginModule
{
public:
    explicit EffectPlugin(Allocator* allocator = nullptr);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixProcessFunction effect;
    TavrixConfigureImageFunction configure;
};
