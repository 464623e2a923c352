#include "standard-plugins/jxl-output/JxlLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

bool OpenJxlLibrary(JxlLibrary* library)
{
    *library = {};
    HostLibrary& host = library->host;
    if (!OpenLastingHostLibrary(&host, "libjxl.so.0.7", PLUGIN_TEXT("jxl.dll")))
        return false;
    if (BindHostFunction(host, "JxlEncoderCreate", &library->create) &&
        BindHostFunction(host, "JxlEncoderDestroy", &library->destroy) &&
        BindHostFunction(host, "JxlEncoderSetParallelRunner", &library->setRunner) &&
        BindHostFunction(host, "JxlEncoderInitBasicInfo", &library->initInfo) &&
        BindHostFunction(host, "JxlEncoderSetBasicInfo", &library->setInfo) &&
        BindHostFunction(host, "JxlColorEncodingSetToSRGB", &library->makeSrgb) &&
        BindHostFunction(host, "JxlEncoderSetColorEncoding", &library->setColors) &&
        BindHostFunction(host, "JxlEncoderFrameSettingsCreate", &library->createSettings) &&
        BindHostFunction(host, "JxlEncoderFrameSettingsSetOption", &library->setOption) &&
        BindHostFunction(host, "JxlEncoderSetFrameLossless", &library->setLossless) &&
        BindHostFunction(host, "JxlEncoderSetFrameDistance", &library->setDistance) &&
        BindHostFunction(host, "JxlEncoderAddImageFrame", &library->addFrame) &&
        BindHostFunction(host, "JxlEncoderCloseInput", &library->closeInput) &&
        BindHostFunction(host, "JxlEncoderProcessOutput", &library->processOutput))
        return true;
    CloseJxlLibrary(library);
    return false;
}

void CloseJxlLibrary(JxlLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
