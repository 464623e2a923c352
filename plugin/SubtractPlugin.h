// The plugins that reduce the colours of a picture: their exports.
#pragma once

#include "plugin/PluginModule.h"

class SubtractPlugin final : public PluginModule
{
public:
    explicit SubtractPlugin(Allocator* allocator = nullptr);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixSubtractFunction subtractImage;
};
