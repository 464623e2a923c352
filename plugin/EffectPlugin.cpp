#include "plugin/EffectPlugin.h"

EffectPlugin::EffectPlugin(Allocator* allocator)
    : PluginModule(allocator, TEXT("EFFECT")), effect(nullptr), configure(nullptr)
{
}

i32 EffectPlugin::Resolve()
{
    Bind(&effect, TEXT("Effect"));
    Bind(&configure, TEXT("Configure"));
    return Done;
}

i32 EffectPlugin::Unresolve()
{
    // Configure stays, as it may: it is never called on an unloaded library, and the next load
    // binds it anew.
    effect = nullptr;
    return Done;
}
