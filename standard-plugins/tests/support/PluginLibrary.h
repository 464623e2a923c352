// A plugin library as the host uses one: loaded from its file, asked by its exports, unloaded.
#pragma once

#include <tavrix/plugin.h>

#include <string>
#include <vector>

namespace plugintest
{

/// Host path of a plugin of the build, such as LibraryFile("INPUT/PNG").
std::string LibraryFile(const std::string& kindAndName);
/// Whether a file whose path ends in `tail` is mapped into this process.
bool IsMapped(const std::string& tail);

class PluginLibrary
{
public:
    explicit PluginLibrary(const std::string& kindAndName);
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    bool IsLoaded() const { return handle != nullptr; }
    /// The text of an index; a text of one character 1 where the plugin refuses it.
    std::u16string Text(uint32_t index) const;

    TavrixGetPluginInfoFunction getPluginInfo = nullptr;
    TavrixSetLanguageFunction setLanguage = nullptr;
    TavrixConfigureFunction configure = nullptr;
    TavrixGetImageInfoFunction getImageInfo = nullptr;
    TavrixImageFunction getImage = nullptr;
    TavrixImageFunction getImageFast = nullptr;

private:
    void* handle;
};

} // namespace plugintest
