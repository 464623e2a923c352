#include "standard-plugins/common/frames/CodePointProfile.h"

#include <math.h>
#include <string.h>

namespace
{

struct Column {
    double x;
    double y;
    double z;
};

struct Matrix {
    Column columns[3];
};

Column Times(const Matrix& matrix, const Column& c)
{
    const Column* m = matrix.columns;
    return {m[0].x * c.x + m[1].x * c.y + m[2].x * c.z, m[0].y * c.x + m[1].y * c.y + m[2].y * c.z,
            m[0].z * c.x + m[1].z * c.y + m[2].z * c.z};
}

Column Cross(const Column& a, const Column& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double Dot(const Column& a, const Column& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// By Cramer's rule; false where there is no single solution.
bool Solve(const Matrix& matrix, const Column& right, Column* solution)
{
    const Column* m = matrix.columns;
    const double volume = Dot(m[0], Cross(m[1], m[2]));
    if (!(fabs(volume) > 1e-9))
        return false;
    solution->x = Dot(right, Cross(m[1], m[2])) / volume;
    solution->y = Dot(m[0], Cross(right, m[2])) / volume;
    solution->z = Dot(m[0], Cross(m[1], right)) / volume;
    return true;
}

// The colour of luminance 1.
bool Color(const float* chromaticity, Column* color)
{
    const double x = static_cast<double>(chromaticity[0]);
    const double y = static_cast<double>(chromaticity[1]);
    if (!(y > 1e-4 && y < 2 && x > -1 && x < 2))
        return false;
    *color = {x / y, 1, (1 - x - y) / y};
    return true;
}

constexpr Column profileWhite = {0.9642, 1, 0.8249};

// Bradford: cone responses scaled from one white to the other.
bool Adapt(const Column& white, Column* color)
{
    constexpr Matrix cones = {
        {{0.8951, -0.7502, 0.0389}, {0.2664, 1.7135, -0.0685}, {-0.1614, 0.0367, 1.0296}}};
    const Column from = Times(cones, white);
    const Column to = Times(cones, profileWhite);
    if (!(from.x > 1e-6 && from.y > 1e-6 && from.z > 1e-6))
        return false;
    Column response = Times(cones, *color);
    response = {response.x * to.x / from.x, response.y * to.y / from.y, response.z * to.z / from.z};
    return Solve(cones, response, color);
}

bool FindColorants(const float* chromaticities, Matrix* colorants)
{
    Column white;
    for (int i = 0; i < 3; ++i)
        if (!Color(chromaticities + 2 * i, &colorants->columns[i]))
            return false;
    Column amounts;
    if (!Color(chromaticities + 6, &white) || !Solve(*colorants, white, &amounts) ||
        !(amounts.x > 0 && amounts.y > 0 && amounts.z > 0))
        return false;
    const double each[] = {amounts.x, amounts.y, amounts.z};
    for (int i = 0; i < 3; ++i) {
        Column& c = colorants->columns[i];
        c = {c.x * each[i], c.y * each[i], c.z * each[i]};
        if (!Adapt(white, &c))
            return false;
    }
    return true;
}

void PutWord(uint8_t* at, uint32_t value)
{
    at[0] = static_cast<uint8_t>(value >> 8);
    at[1] = static_cast<uint8_t>(value);
}

void PutLong(uint8_t* at, uint32_t value)
{
    PutWord(at, value >> 16);
    PutWord(at + 2, value);
}

// s15Fixed16Number.
void PutFixed(uint8_t* at, double value)
{
    PutLong(at, static_cast<uint32_t>(static_cast<int32_t>(lround(value * 65536))));
}

constexpr double whiteLuminance = 203;

// SMPTE ST 2084, equation 4.1.
double PerceptualLuminance(double signal)
{
    constexpr double m1 = 2610.0 / 16384;
    constexpr double m2 = 2523.0 / 32;
    constexpr double c1 = 3424.0 / 4096;
    constexpr double c2 = 2413.0 / 128;
    constexpr double c3 = 2392.0 / 128;
    const double root = pow(signal, 1 / m2);
    const double top = root > c1 ? root - c1 : 0;
    return 10000 * pow(top / (c2 - c3 * root), 1 / m1);
}

// ITU-R BT.2100, table 5: the inverse of the camera's curve, then the screen's gamma.
double HybridLuminance(double signal)
{
    constexpr double a = 0.17883277;
    constexpr double b = 0.28466892;
    constexpr double c = 0.55991073;
    const double scene = signal <= 0.5 ? signal * signal / 3 : (exp((signal - c) / a) + b) / 12;
    return 1000 * pow(scene, 1.2);
}

constexpr uint32_t curveEntries = 1024;

size_t PutTable(uint8_t* at, double (*luminance)(double signal))
{
    memcpy(at, "curv", 4);
    PutLong(at + 8, curveEntries);
    for (uint32_t i = 0; i < curveEntries; ++i) {
        const double level =
            luminance(static_cast<double>(i) / (curveEntries - 1)) / whiteLuminance;
        PutWord(at + 12 + 2 * i, static_cast<uint32_t>(lround((level < 1 ? level : 1) * 65535)));
    }
    return 12 + 2 * curveEntries;
}

// parametricCurveType: 0 is x^g, 3 that of sRGB (IEC 61966-2-1).
size_t PutFormula(uint8_t* at, uint32_t kind, const double* values, uint32_t count)
{
    memcpy(at, "para", 4);
    PutWord(at + 8, kind);
    for (uint32_t i = 0; i < count; ++i)
        PutFixed(at + 12 + 4 * i, values[i]);
    return 12 + 4 * count;
}

size_t PutCurve(uint8_t* at, uint32_t transfer)
{
    constexpr double screen[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    constexpr double powers[] = {2.2, 2.8, 1};
    switch (transfer) {
    case 1:
    case 6:
    case 13:
    case 14:
    case 15:
        return PutFormula(at, 3, screen, 5);
    case 4:
        return PutFormula(at, 0, powers, 1);
    case 5:
        return PutFormula(at, 0, powers + 1, 1);
    case 8:
        return PutFormula(at, 0, powers + 2, 1);
    case 16:
        return PutTable(at, PerceptualLuminance);
    case 18:
        return PutTable(at, HybridLuminance);
    default:
        return 0;
    }
}

constexpr uint32_t headerBytes = 128;
constexpr uint32_t tagCount = 7;
constexpr uint32_t colorBytes = 20;

void PutHeader(uint8_t* profile, uint32_t bytes)
{
    PutLong(profile, bytes);
    PutLong(profile + 8, 0x04200000); // version 4.2
    memcpy(profile + 12, "mntrRGB XYZ ", 12);
    memcpy(profile + 36, "acsp", 4);
    PutFixed(profile + 68, profileWhite.x);
    PutFixed(profile + 72, profileWhite.y);
    PutFixed(profile + 76, profileWhite.z);
}

void PutTag(uint8_t* profile, uint32_t index, const char* name, uint32_t offset, uint32_t bytes)
{
    uint8_t* entry = profile + headerBytes + 4 + 12 * index;
    memcpy(entry, name, 4);
    PutLong(entry + 4, offset);
    PutLong(entry + 8, bytes);
}

void PutColor(uint8_t* at, const Column& color)
{
    memcpy(at, "XYZ ", 4);
    PutFixed(at + 8, color.x);
    PutFixed(at + 12, color.y);
    PutFixed(at + 16, color.z);
}

} // namespace

size_t MakeCodePointProfile(const ColorCodePoints& points, uint8_t* profile)
{
    Matrix colorants;
    if (!FindColorants(points.chromaticities, &colorants))
        return 0;
    memset(profile, 0, mostCodePointProfileBytes);
    uint32_t offset = headerBytes + 4 + 12 * tagCount;
    const char* const colors[] = {"wtpt", "rXYZ", "gXYZ", "bXYZ"};
    for (uint32_t i = 0; i < 4; ++i, offset += colorBytes) {
        PutTag(profile, i, colors[i], offset, colorBytes);
        PutColor(profile + offset, i == 0 ? profileWhite : colorants.columns[i - 1]);
    }
    const auto curveBytes = static_cast<uint32_t>(PutCurve(profile + offset, points.transfer));
    if (curveBytes == 0)
        return 0;
    const char* const curves[] = {"rTRC", "gTRC", "bTRC"};
    for (uint32_t i = 0; i < 3; ++i)
        PutTag(profile, 4 + i, curves[i], offset, curveBytes);
    PutLong(profile + headerBytes, tagCount);
    PutHeader(profile, offset + curveBytes);
    return offset + curveBytes;
}
