// The plugins that adjust a picture in place: their exports.
#pragma once

#include "plugin/PluginModule.h"

class AdjustPlugin final : public PluginModule
{
public:
    explicit AdjustPlugin(Allocator* allocator = nullptr);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixProcessFunction adjustImage;
    TavrixConfigureImageFunction configure;
};
