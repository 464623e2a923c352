#include "standard-plugins/tests/support/ColorProfiles.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <cmath>

namespace plugintest
{

namespace
{

std::string Saved(cmsHPROFILE profile)
{
    cmsUInt32Number size = 0;
    EXPECT_TRUE(cmsSaveProfileToMem(profile, nullptr, &size));
    std::string bytes(size, 0);
    EXPECT_TRUE(cmsSaveProfileToMem(profile, bytes.data(), &size));
    cmsCloseProfile(profile);
    return bytes;
}

// Ink amounts to Lab by the plainest model there is: light is what no ink takes away.
cmsInt32Number InkToLab(const cmsUInt16Number in[], cmsUInt16Number out[], void*)
{
    const double black = 1 - in[3] / 65535.0;
    const double red = (1 - in[0] / 65535.0) * black;
    const double green = (1 - in[1] / 65535.0) * black;
    const double blue = (1 - in[2] / 65535.0) * black;
    const cmsCIELab lab = {100 * (0.3 * red + 0.6 * green + 0.1 * blue), 60 * (red - green),
                           60 * (green - blue)};
    cmsFloat2LabEncoded(out, &lab);
    return TRUE;
}

} // namespace

std::string WideRgbProfile(double gamma)
{
    const cmsCIExyY white = {0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};
    cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
    cmsToneCurve* curves[] = {curve, curve, curve};
    cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsFreeToneCurve(curve);
    return Saved(profile);
}

std::string SrgbProfile()
{
    return Saved(cmsCreate_sRGBProfile());
}

std::string GreyProfile(double gamma)
{
    cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
    cmsHPROFILE profile = cmsCreateGrayProfile(cmsD50_xyY(), curve);
    cmsFreeToneCurve(curve);
    return Saved(profile);
}

std::string InkProfile(uint32_t points)
{
    cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 2.4);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsPipeline* pipeline = cmsPipelineAlloc(nullptr, 4, 3);
    cmsStage* table = cmsStageAllocCLut16bit(nullptr, points, 4, 3, nullptr);
    EXPECT_TRUE(cmsStageSampleCLut16bit(table, InkToLab, nullptr, 0));
    EXPECT_TRUE(cmsPipelineInsertStage(pipeline, cmsAT_BEGIN, table));
    EXPECT_TRUE(cmsWriteTag(profile, cmsSigAToB0Tag, pipeline));
    cmsPipelineFree(pipeline);
    return Saved(profile);
}

std::string WithPadding(const std::string& profile, size_t bytes)
{
    // Behind all tags; the header's first word is the length of the whole.
    std::string padded = profile + std::string(bytes, '\x5a');
    for (size_t i = 0; i < 4; ++i)
        padded[i] = static_cast<char>(padded.size() >> (24 - 8 * i));
    return padded;
}

std::vector<uint8_t> ToSrgb(const std::string& profile, const std::vector<uint8_t>& pixels,
                            int channels)
{
    cmsHPROFILE from =
        cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size()));
    EXPECT_NE(from, nullptr);
    cmsHPROFILE to = cmsCreate_sRGBProfile();
    const cmsUInt32Number source = channels == 1   ? TYPE_GRAY_FLT
                                   : channels == 3 ? TYPE_RGB_FLT
                                                   : TYPE_CMYK_FLT;
    cmsHTRANSFORM transform =
        cmsCreateTransform(from, source, to, TYPE_RGB_FLT, INTENT_PERCEPTUAL, cmsFLAGS_NOOPTIMIZE);
    const size_t count = pixels.size() / static_cast<size_t>(channels);
    std::vector<float> in(pixels.size());
    std::transform(pixels.begin(), pixels.end(), in.begin(), [channels](uint8_t value) {
        return channels == 4 ? value / 255.0F * 100 : value / 255.0F;
    });
    std::vector<float> out(3 * count);
    cmsDoTransform(transform, in.data(), out.data(), static_cast<cmsUInt32Number>(count));
    cmsDeleteTransform(transform);
    cmsCloseProfile(from);
    cmsCloseProfile(to);
    std::vector<uint8_t> result(out.size());
    std::transform(out.begin(), out.end(), result.begin(), [](float value) {
        return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255));
    });
    return result;
}

} // namespace plugintest
