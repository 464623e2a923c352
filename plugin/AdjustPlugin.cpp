#include "plugin/AdjustPlugin.h"

AdjustPlugin::AdjustPlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("ADJUST")), adjustImage(nullptr), configure(nullptr)
{
}

i32 AdjustPlugin::Resolve()
{
    Bind(&adjustImage, TEXT("AdjustImage"));
    Bind(&configure, TEXT("Configure"));
    return Done;
}

i32 AdjustPlugin::Unresolve()
{
    // Configure stays, as it may: it is never called on an unloaded library, and the next load
    // binds it anew.
    adjustImage = nullptr;
    return Done;
}
