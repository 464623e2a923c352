#include "standard-plugins/tests/support/Decoding.h"

namespace plugintest
{

Host& CurrentHost()
{
    static Host host;
    return host;
}

int32_t Decode(const PluginLibrary& plugin, ByteStream& stream, Canvas& canvas)
{
    Host& host = CurrentHost();
    host.progress.clear();
    host.messages.clear();
    host.messageFlags.clear();
    PaletteFunctionTable palettes = {};
    palettes.size = sizeof palettes;
    const int32_t result = plugin.getImage(
        nullptr, &stream.record, canvas.Handle(), canvas.Table(), &palettes,
        [](uint32_t done, uint32_t total) -> int32_t {
            Host& told = CurrentHost();
            told.progress.emplace_back(done, total);
            const auto calls = static_cast<int>(told.progress.size());
            return told.refuseFrom >= 0 && calls > told.refuseFrom ? -1 : 1;
        },
        [](const TavrixChar* text, const TavrixChar*, uint32_t flags) -> int32_t {
            CurrentHost().messages.emplace_back(text);
            CurrentHost().messageFlags.push_back(flags);
            return 0;
        },
        [](Variant*) -> int32_t { return -1; },
        [](Variant* item) -> int32_t {
            const auto found = CurrentHost().settings.find(item->name);
            if (found == CurrentHost().settings.end())
                return -10;
            item->value = found->second;
            return 1;
        });
    canvas.UnlockAll();
    return result;
}

} // namespace plugintest
