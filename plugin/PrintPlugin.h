// The plugins that print pictures: their exports.
#pragma once

#include "plugin/PluginModule.h"

class PrintPlugin final : public PluginModule
{
public:
    explicit PrintPlugin(Allocator* allocator = nullptr);

private:
    i32 Resolve() override;
    i32 Unresolve() override;

    TavrixPrintFunction print;
    TavrixConfigureFunction configure;
};
