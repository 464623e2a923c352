// The plugins that resize a picture: their exports. Configure is bound
// like that of the others; nothing calls it.
#pragma once

#include "plugin/PluginModule.h"

class ScalePlugin final : public PluginModule
{
public:
    explicit ScalePlugin(Allocator* allocator = nullptr);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixScaleFunction scaleImage;
    TavrixConfigureFunction configure;
};
