// The functions of the library libjxl that are used here.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <jxl/encode.h>

struct JxlLibrary {
    HostLibrary host;
    decltype(&JxlEncoderCreate) create;
    decltype(&JxlEncoderDestroy) destroy;
    decltype(&JxlEncoderSetParallelRunner) setRunner;
    decltype(&JxlEncoderInitBasicInfo) initInfo;
    decltype(&JxlEncoderSetBasicInfo) setInfo;
    decltype(&JxlColorEncodingSetToSRGB) makeSrgb;
    decltype(&JxlEncoderSetColorEncoding) setColors;
    decltype(&JxlEncoderFrameSettingsCreate) createSettings;
    decltype(&JxlEncoderFrameSettingsSetOption) setOption;
    decltype(&JxlEncoderSetFrameLossless) setLossless;
    decltype(&JxlEncoderSetFrameDistance) setDistance;
    decltype(&JxlEncoderAddImageFrame) addFrame;
    decltype(&JxlEncoderCloseInput) closeInput;
    decltype(&JxlEncoderProcessOutput) processOutput;
};

/// False, with nothing open, where it is not installed or lacks a function.
bool OpenJxlLibrary(JxlLibrary* library);
/// Also right for a record that is all zero.
void CloseJxlLibrary(JxlLibrary* library);
