/*
 * Compiled into every plugin that has resources: makes them known for the plugin's own module while
 * it is loaded. The host takes them away with the module. C and C++, any standard.
 */
#include <tavrix/module.h>

#ifdef __cplusplus
extern "C" {
#endif
extern __attribute__((visibility("hidden"))) const unsigned char TavrixPluginResources[];
extern __attribute__((visibility("hidden"))) const unsigned char TavrixPluginResources_end[];
#ifdef __cplusplus
}
#endif

__attribute__((constructor)) static void RegisterPluginResources(void)
{
    const HINSTANCE module = TavrixThisModule();
    /* Loaded by something other than LoadLibraryW. Null would stand for the program, which keeps
     * its own resources. */
    if (!module)
        return;
    TavrixRegisterResources(module, TavrixPluginResources, TavrixPluginResources_end);
}
