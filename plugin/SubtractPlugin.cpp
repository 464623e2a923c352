#include "plugin/SubtractPlugin.h"

SubtractPlugin::SubtractPlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("SUBTRACT")), subtractImage(nullptr)
{
}

i32 SubtractPlugin::Resolve()
{
    Bind(&subtractImage, TEXT("SubtractImage"));
    return Done;
}

i32 SubtractPlugin::Unresolve()
{
    subtractImage = nullptr;
    return Done;
}
