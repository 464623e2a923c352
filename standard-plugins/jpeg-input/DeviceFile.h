// A file of the device as the stream that a decode reads: for GetImageFast, which gets a path.
// Forward only; the other functions of the stream refuse. Plain data.
#pragma once

#include <tavrix/plugin.h>

struct DeviceFile {
    PluginStreamRecord stream;
    void* file;
};

/// False when the file cannot be opened. `file` must stay where it is until CloseDeviceFile.
bool OpenDeviceFile(DeviceFile* file, const TavrixChar* path);
void CloseDeviceFile(DeviceFile* file);
