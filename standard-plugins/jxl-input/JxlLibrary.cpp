#include "standard-plugins/jxl-input/JxlLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

bool OpenJxl(JxlLibrary* library)
{
    *library = {};
    HostLibrary& host = library->host;
    if (!OpenHostLibrary(&host, "libjxl.so.0.7", PLUGIN_TEXT("jxl.dll")))
        return false;
    if (BindHostFunction(host, "JxlDecoderCreate", &library->create) &&
        BindHostFunction(host, "JxlDecoderDestroy", &library->destroy) &&
        BindHostFunction(host, "JxlDecoderSubscribeEvents", &library->subscribe) &&
        BindHostFunction(host, "JxlDecoderSetUnpremultiplyAlpha", &library->setUnpremultiply) &&
        BindHostFunction(host, "JxlDecoderSetInput", &library->setInput) &&
        BindHostFunction(host, "JxlDecoderReleaseInput", &library->releaseInput) &&
        BindHostFunction(host, "JxlDecoderProcessInput", &library->process) &&
        BindHostFunction(host, "JxlDecoderGetBasicInfo", &library->getInfo) &&
        BindHostFunction(host, "JxlDecoderSetPreferredColorProfile", &library->preferColors) &&
        BindHostFunction(host, "JxlDecoderGetICCProfileSize", &library->profileSize) &&
        BindHostFunction(host, "JxlDecoderGetColorAsICCProfile", &library->getProfile) &&
        BindHostFunction(host, "JxlDecoderSetImageOutCallback", &library->setOutput) &&
        BindHostFunction(host, "JxlDecoderFlushImage", &library->flush))
        return true;
    CloseJxl(library);
    return false;
}

void CloseJxl(JxlLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
