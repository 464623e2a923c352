// The plugins that write pictures: their exports.
#pragma once

#include "plugin/PluginModule.h"

class OutputPlugin final : public PluginModule
{
public:
    explicit OutputPlugin(Allocator* allocator = nullptr);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixImageFunction putImage;
    TavrixConfigureFunction configure;
};
