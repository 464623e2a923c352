// How much memory a library may take for the frame that it decodes, by a setting that the user can
// raise. The libraries have no such limit of their own, so what a picture takes is computed from
// its header, by the most that its form can need, before anything is decoded.
#pragma once

#include "standard-plugins/common/PluginInfo.h"
#include "standard-plugins/common/PluginSettings.h"

/// Constant data of a plugin.
struct FrameMemory {
    /// Megabytes.
    PluginSetting setting;
    /// Names the setting.
    BilingualText tooLarge;
    BilingualText caption;
};

/// A setting of megabytes, 1024 without a stored value.
#define FRAME_MEMORY_SETTING(key)                                                                  \
    {                                                                                              \
        PLUGIN_TEXT(key), 1, 65536, 1024                                                           \
    }

uint64_t FrameMemoryLimit(const FrameMemory& memory, TavrixGetPropertyCallback get);
/// PluginDone when `bytes` are within the limit and can be had. Else PluginNoMemory; the user is
/// told of the setting when the limit was the reason.
int32_t AllowFrame(const FrameMemory& memory, uint64_t bytes, TavrixGetPropertyCallback get,
                   TavrixMessageCallback message);
/// `message` may be null.
void TellFrameTooLarge(const FrameMemory& memory, TavrixMessageCallback message);
