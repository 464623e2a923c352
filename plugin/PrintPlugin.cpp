#include "plugin/PrintPlugin.h"

PrintPlugin::PrintPlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("PRINT")), print(nullptr), configure(nullptr)
{
}

i32 PrintPlugin::Resolve()
{
    Bind(&print, TEXT("Print"));
    Bind(&configure, TEXT("Configure"));
    return Done;
}

i32 PrintPlugin::Unresolve()
{
    print = nullptr;
    configure = nullptr;
    return Done;
}
