#include "standard-plugins/common/reading/ColorConversion.h"

namespace
{

constexpr size_t mostProfileBytes = 4u << 20;
// Header and tag count.
constexpr size_t leastProfileBytes = 132;

struct LayoutFormat {
    cmsUInt32Number source;
    cmsUInt32Number target;
    cmsColorSpaceSignature space;
    /// Samples that a colour has, without alpha, and bytes of each.
    uint32_t samples;
    uint32_t sampleBytes;
};

// In the order of ColorLayout.
const LayoutFormat formats[] = {
    {TYPE_GRAY_8, TYPE_GRAY_8, cmsSigGrayData, 1, 1},
    {TYPE_GRAY_16, TYPE_GRAY_16, cmsSigGrayData, 1, 2},
    {TYPE_GRAYA_8, TYPE_GRAYA_8, cmsSigGrayData, 1, 1},
    {TYPE_GRAYA_16, TYPE_GRAYA_16, cmsSigGrayData, 1, 2},
    {TYPE_RGB_8, TYPE_RGB_8, cmsSigRgbData, 3, 1},
    {TYPE_BGR_8, TYPE_BGR_8, cmsSigRgbData, 3, 1},
    {TYPE_RGBA_8, TYPE_RGBA_8, cmsSigRgbData, 3, 1},
    {TYPE_BGRA_8, TYPE_BGRA_8, cmsSigRgbData, 3, 1},
    {TYPE_RGB_16, TYPE_RGB_16, cmsSigRgbData, 3, 2},
    {TYPE_RGBA_16, TYPE_RGBA_16, cmsSigRgbData, 3, 2},
    {TYPE_CMYK_8, TYPE_BGR_8, cmsSigCmykData, 4, 1},
    {TYPE_CMYK_8_REV, TYPE_BGR_8, cmsSigCmykData, 4, 1},
};

void SaySilence(cmsContext, cmsUInt32Number, const char*) {}

// Grey with the curve of sRGB (IEC 61966-2-1), so that equal channels stay what they are.
cmsHPROFILE CreateGrey(const ColorConversion& conversion)
{
    const LcmsLibrary& lcms = conversion.lcms;
    constexpr int curveType = 4; // (a x + b)^g from d on, c x below
    const cmsFloat64Number values[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    cmsToneCurve* curve = lcms.buildCurve(conversion.context, curveType, values);
    if (!curve)
        return nullptr;
    cmsHPROFILE profile = lcms.createGrey(conversion.context, lcms.d50(), curve);
    lcms.freeCurve(curve);
    return profile;
}

bool IsNear(uint8_t a, uint8_t b)
{
    return a <= b + 1 && b <= a + 1;
}

// Over a cube of 6 x 6 x 6 colours, or a ramp of greys.
bool ChangesNothing(const ColorConversion& conversion, cmsHPROFILE from, cmsHPROFILE to,
                    const LayoutFormat& format)
{
    if (format.space == cmsSigCmykData)
        return false;
    const LcmsLibrary& lcms = conversion.lcms;
    const cmsUInt32Number layout = format.samples == 1 ? TYPE_GRAY_8 : TYPE_RGB_8;
    cmsHTRANSFORM transform = lcms.createTransform(conversion.context, from, layout, to, layout,
                                                   INTENT_PERCEPTUAL, cmsFLAGS_NOOPTIMIZE);
    if (!transform)
        return false;
    constexpr uint32_t colors = 216;
    uint8_t before[3 * colors];
    uint8_t after[3 * colors];
    for (uint32_t i = 0; i < colors; ++i) {
        before[3 * i] = static_cast<uint8_t>(i / 36 * 51);
        before[3 * i + 1] = static_cast<uint8_t>(i / 6 % 6 * 51);
        before[3 * i + 2] = static_cast<uint8_t>(i % 6 * 51);
    }
    lcms.transform(transform, before, after, 3 * colors / format.samples);
    lcms.deleteTransform(transform);
    for (uint32_t i = 0; i < 3 * colors; ++i)
        if (!IsNear(before[i], after[i]))
            return false;
    return true;
}

// The library's shortcuts are within a step for colours of 8 bits. For 16 bits and greys they are
// up to eighteen steps off in the shadows; those go the long way, at a twentieth of the speed.
cmsUInt32Number FlagsOf(const LayoutFormat& format)
{
    if (format.samples == 4)
        return cmsFLAGS_HIGHRESPRECALC;
    const bool isExact = format.samples == 3 && format.sampleBytes == 1;
    return cmsFLAGS_COPY_ALPHA | (isExact ? 0 : cmsFLAGS_NOOPTIMIZE);
}

void MakeTransform(ColorConversion* conversion, cmsHPROFILE profile, const LayoutFormat& format)
{
    const LcmsLibrary& lcms = conversion->lcms;
    if (lcms.colorSpace(profile) != format.space)
        return;
    cmsHPROFILE target =
        format.samples == 1 ? CreateGrey(*conversion) : lcms.createSrgb(conversion->context);
    if (!target)
        return;
    if (!ChangesNothing(*conversion, profile, target, format))
        conversion->transform =
            lcms.createTransform(conversion->context, profile, format.source, target, format.target,
                                 INTENT_PERCEPTUAL, FlagsOf(format));
    (void)lcms.closeProfile(target);
}

} // namespace

bool OpenColorConversion(ColorConversion* conversion, const void* profile, size_t bytes,
                         ColorLayout layout)
{
    *conversion = {};
    if (!profile || bytes < leastProfileBytes || bytes > mostProfileBytes ||
        !OpenLcms(&conversion->lcms))
        return false;
    const LcmsLibrary& lcms = conversion->lcms;
    conversion->context = lcms.createContext(nullptr, nullptr);
    if (conversion->context) {
        lcms.setErrorHandler(conversion->context, SaySilence);
        cmsHPROFILE opened =
            lcms.openProfile(conversion->context, profile, static_cast<cmsUInt32Number>(bytes));
        if (opened) {
            MakeTransform(conversion, opened, formats[static_cast<size_t>(layout)]);
            (void)lcms.closeProfile(opened);
        }
    }
    if (conversion->transform)
        return true;
    CloseColorConversion(conversion);
    return false;
}

void ConvertColors(const ColorConversion& conversion, const void* source, void* target,
                   uint32_t count)
{
    conversion.lcms.transform(conversion.transform, source, target, count);
}

void CloseColorConversion(ColorConversion* conversion)
{
    if (conversion->transform)
        conversion->lcms.deleteTransform(conversion->transform);
    if (conversion->context)
        conversion->lcms.deleteContext(conversion->context);
    CloseLcms(&conversion->lcms);
    *conversion = {};
}
