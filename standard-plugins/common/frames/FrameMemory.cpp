#include "standard-plugins/common/frames/FrameMemory.h"

#include "standard-plugins/common/PluginResult.h"

#include <stdlib.h>

namespace
{

constexpr uint32_t stopIcon = 16;

// Some of the libraries end the process where they get no memory, so it is tried before they do.
bool CanBeHad(uint64_t bytes)
{
    if (bytes > SIZE_MAX)
        return false;
    void* volatile block = malloc(static_cast<size_t>(bytes));
    const bool had = block != nullptr;
    free(block);
    return had;
}

} // namespace

uint64_t FrameMemoryLimit(const FrameMemory& memory, TavrixGetPropertyCallback get)
{
    return uint64_t{ReadSetting(memory.setting, get)} << 20;
}

int32_t AllowFrame(const FrameMemory& memory, uint64_t bytes, TavrixGetPropertyCallback get,
                   TavrixMessageCallback message)
{
    if (bytes > FrameMemoryLimit(memory, get)) {
        TellFrameTooLarge(memory, message);
        return PluginNoMemory;
    }
    return CanBeHad(bytes) ? PluginDone : PluginNoMemory;
}

void TellFrameTooLarge(const FrameMemory& memory, TavrixMessageCallback message)
{
    if (message)
        (void)message(InLanguage(memory.tooLarge), InLanguage(memory.caption), stopIcon);
}
