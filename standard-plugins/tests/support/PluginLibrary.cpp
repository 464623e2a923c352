#include "standard-plugins/tests/support/PluginLibrary.h"

#include <dlfcn.h>
#include <fstream>

#include "platform/testing/core/TestPaths.h"

namespace plugintest
{

std::string LibraryFile(const std::string& kindAndName)
{
    return tavrix::testing::InBuild("/bin/PLUGINS/") + kindAndName + ".dll";
}

bool IsMapped(const std::string& tail)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.size() >= tail.size() &&
            line.compare(line.size() - tail.size(), tail.size(), tail) == 0)
            return true;
    return false;
}

PluginLibrary::PluginLibrary(const std::string& kindAndName)
    : handle(dlopen(LibraryFile(kindAndName).c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (!handle)
        return;
    const auto bind = [this](auto* slot, const char* name) {
        *slot = reinterpret_cast<std::remove_reference_t<decltype(*slot)>>(dlsym(handle, name));
    };
    bind(&getPluginInfo, "GetPluginInfo");
    bind(&setLanguage, "SetLanguage");
    bind(&configure, "Configure");
    bind(&getImageInfo, "GetImageInfo");
    bind(&getImage, "GetImage");
    bind(&getImageFast, "GetImageFast");
}

PluginLibrary::~PluginLibrary()
{
    if (handle)
        dlclose(handle);
}

std::u16string PluginLibrary::Text(uint32_t index) const
{
    TavrixChar buffer[1024] = {};
    if (getPluginInfo(index, buffer, 1024) < 1)
        return std::u16string(1, u'\x1');
    return buffer;
}

} // namespace plugintest
