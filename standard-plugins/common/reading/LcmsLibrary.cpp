#include "standard-plugins/common/reading/LcmsLibrary.h"

#include "standard-plugins/common/PluginInfo.h"

bool OpenLcms(LcmsLibrary* library)
{
    *library = {};
    HostLibrary& host = library->host;
    if (!OpenHostLibrary(&host, "liblcms2.so.2", PLUGIN_TEXT("lcms2.dll")))
        return false;
    if (BindHostFunction(host, "cmsCreateContext", &library->createContext) &&
        BindHostFunction(host, "cmsDeleteContext", &library->deleteContext) &&
        BindHostFunction(host, "cmsSetLogErrorHandlerTHR", &library->setErrorHandler) &&
        BindHostFunction(host, "cmsOpenProfileFromMemTHR", &library->openProfile) &&
        BindHostFunction(host, "cmsCloseProfile", &library->closeProfile) &&
        BindHostFunction(host, "cmsGetColorSpace", &library->colorSpace) &&
        BindHostFunction(host, "cmsCreate_sRGBProfileTHR", &library->createSrgb) &&
        BindHostFunction(host, "cmsBuildParametricToneCurve", &library->buildCurve) &&
        BindHostFunction(host, "cmsFreeToneCurve", &library->freeCurve) &&
        BindHostFunction(host, "cmsCreateGrayProfileTHR", &library->createGrey) &&
        BindHostFunction(host, "cmsD50_xyY", &library->d50) &&
        BindHostFunction(host, "cmsCreateTransformTHR", &library->createTransform) &&
        BindHostFunction(host, "cmsDeleteTransform", &library->deleteTransform) &&
        BindHostFunction(host, "cmsDoTransform", &library->transform))
        return true;
    CloseLcms(library);
    return false;
}

void CloseLcms(LcmsLibrary* library)
{
    CloseHostLibrary(&library->host);
    *library = {};
}
