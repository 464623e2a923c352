// The answer of GetImageInfo: the record of the picture that GetImage would make.
#pragma once

#include <tavrix/plugin.h>

/// Fills as many bytes of the record at `info` as its first word allows, at most the whole record.
/// PluginDone, or PluginBadArgument for null or for a size that does not hold even the first word.
int32_t FillHeaderInfo(void* info, uint32_t width, uint32_t height);
