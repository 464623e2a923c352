// A host that has the device's library and uses nothing of it: loads a plugin and asks for its
// identity, many times, and prints the milliseconds that the fastest round took. The codec is
// loaded anew in every round, as this program has none itself. Run: load-plugin FILE

#include <tavrix/plugin.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include <dlfcn.h>

int main(int count, char** arguments)
{
    if (count != 2)
        return 2;
    double best = 1e9;
    for (int i = 0; i < 20; ++i) {
        const auto start = std::chrono::steady_clock::now();
        void* library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
        if (!library)
            return 1;
        const auto ask =
            reinterpret_cast<TavrixGetPluginInfoFunction>(dlsym(library, "GetPluginInfo"));
        TavrixChar identity[1024];
        if (!ask || ask(PluginInfoIdentity, identity, 1024) < 1)
            return 1;
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count());
        dlclose(library);
    }
    std::printf("%f\n", best);
    return 0;
}
