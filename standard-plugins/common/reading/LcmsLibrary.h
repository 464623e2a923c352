// The functions of the library lcms2 that are used here; opened only for a picture that has a
// profile.
#pragma once

#include "standard-plugins/common/HostLibrary.h"

#include <lcms2.h>

struct LcmsLibrary {
    HostLibrary host;
    decltype(&cmsCreateContext) createContext;
    decltype(&cmsDeleteContext) deleteContext;
    decltype(&cmsSetLogErrorHandlerTHR) setErrorHandler;
    decltype(&cmsOpenProfileFromMemTHR) openProfile;
    decltype(&cmsCloseProfile) closeProfile;
    decltype(&cmsGetColorSpace) colorSpace;
    decltype(&cmsCreate_sRGBProfileTHR) createSrgb;
    decltype(&cmsBuildParametricToneCurve) buildCurve;
    decltype(&cmsFreeToneCurve) freeCurve;
    decltype(&cmsCreateGrayProfileTHR) createGrey;
    decltype(&cmsD50_xyY) d50;
    decltype(&cmsCreateTransformTHR) createTransform;
    decltype(&cmsDeleteTransform) deleteTransform;
    decltype(&cmsDoTransform) transform;
};

/// False, with nothing open, where it is not installed or lacks a function.
bool OpenLcms(LcmsLibrary* library);
/// Also right for a record that is all zero.
void CloseLcms(LcmsLibrary* library);
