#include "standard-plugins/webp-output/WebPLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

bool OpenWebPLibrary(WebPLibrary* library)
{
    *library = {};
    HostLibrary& host = library->host;
    if (!OpenHostLibrary(&host, "libwebp.so.7", PLUGIN_TEXT("webp.dll")))
        return false;
    if (BindHostFunction(host, "WebPConfigInitInternal", &library->initConfig) &&
        BindHostFunction(host, "WebPConfigLosslessPreset", &library->setLossless) &&
        BindHostFunction(host, "WebPValidateConfig", &library->validateConfig) &&
        BindHostFunction(host, "WebPPictureInitInternal", &library->initPicture) &&
        BindHostFunction(host, "WebPPictureAlloc", &library->allocPicture) &&
        BindHostFunction(host, "WebPPictureFree", &library->freePicture) &&
        BindHostFunction(host, "WebPEncode", &library->encode))
        return true;
    CloseWebPLibrary(library);
    return false;
}

void CloseWebPLibrary(WebPLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
