// A SUBTRACT plugin in C++: reduces a 24-bit picture to an 8-bit one with a palette of evenly
// spaced colours, 6 steps of each of red, green and blue.
#include <tavrix/text.h>

namespace
{

enum Result : int32_t { Done = 1, Failed = -1, NoMemory = -2, BadArgument = -4, Cancelled = -9 };

constexpr uint32_t steps = 6;
constexpr uint32_t stepWidth = 255 / (steps - 1);

// The one thing that is kept between calls; it is forgotten when the library is unloaded.
bool japanese = false;

const TavrixChar* TextOf(uint32_t index)
{
    switch (index) {
    case PluginInfoIdentity:
        return TAVRIX_TEXT("TX_SUBTRACT");
    case PluginInfoName:
        return japanese ? TAVRIX_TEXT("216 色") : TAVRIX_TEXT("216 colours");
    case PluginInfoVersion:
        return TAVRIX_TEXT("1.0");
    case PluginInfoCopyright:
        return TAVRIX_TEXT("Free to use");
    case PluginInfoDate:
        return TAVRIX_TEXT("2026-11-21");
    case PluginInfoDescription:
        return japanese ? TAVRIX_TEXT("均等な 216 色に減色します。")
                        : TAVRIX_TEXT("Reduces to 216 even colours.");
    default:
        return nullptr;
    }
}

// What the plugin makes, it destroys before it returns, whichever way it does.
class OwnPicture
{
public:
    explicit OwnPicture(RasterFunctionTable* table) : rasters(table)
    {
        if (rasters->RasterCreate(&handle) < 1)
            handle = nullptr;
    }
    ~OwnPicture() { rasters->RasterDestroy(&handle); }
    OwnPicture(const OwnPicture&) = delete;
    OwnPicture& operator=(const OwnPicture&) = delete;

    TavrixImageHandle Get() const { return handle; }

private:
    RasterFunctionTable* rasters;
    TavrixImageHandle handle = nullptr;
};

class OwnPalette
{
public:
    explicit OwnPalette(PaletteFunctionTable* table) : palettes(table)
    {
        if (palettes->PaletteCreate(&handle) < 1)
            handle = nullptr;
    }
    ~OwnPalette()
    {
        if (handle)
            palettes->PaletteDestroy(&handle);
    }
    OwnPalette(const OwnPalette&) = delete;
    OwnPalette& operator=(const OwnPalette&) = delete;

    TavrixPaletteHandle Get() const { return handle; }

private:
    PaletteFunctionTable* palettes;
    TavrixPaletteHandle handle = nullptr;
};

uint8_t NearestStep(uint8_t value)
{
    return static_cast<uint8_t>((value + stepWidth / 2) / stepWidth);
}

int32_t FillPalette(PaletteFunctionTable* palettes, TavrixPaletteHandle palette)
{
    if (palettes->PaletteAlloc(palette, steps * steps * steps) < 1)
        return NoMemory;
    for (uint32_t red = 0; red < steps; ++red)
        for (uint32_t green = 0; green < steps; ++green)
            for (uint32_t blue = 0; blue < steps; ++blue)
                if (palettes->PaletteAddEntry(palette, red * stepWidth, green * stepWidth,
                                              blue * stepWidth, 0) < 1)
                    return Failed;
    return Done;
}

void ReduceLine(const uint8_t* pixel, uint8_t* index, uint32_t width)
{
    for (uint32_t x = 0; x < width; ++x, pixel += 3)
        index[x] =
            static_cast<uint8_t>((NearestStep(pixel[2]) * steps + NearestStep(pixel[1])) * steps +
                                 NearestStep(pixel[0]));
}

// One line of each picture is in memory at a time.
int32_t ReduceLines(RasterFunctionTable* rasters, TavrixImageHandle from, TavrixImageHandle to,
                    const RasterInfo& info, TavrixProgressCallback progress)
{
    for (uint32_t y = 0; y < info.height; ++y) {
        const auto line = static_cast<int32_t>(y);
        void* pixels = nullptr;
        void* indexes = nullptr;
        uint32_t count = 1;
        if (rasters->RasterLockLines(from, line, &pixels, &count) < 1)
            return Failed;
        count = 1;
        const bool both = rasters->RasterLockLines(to, line, &indexes, &count) > 0;
        if (both)
            ReduceLine(static_cast<const uint8_t*>(pixels), static_cast<uint8_t*>(indexes),
                       info.width);
        bool stored = rasters->RasterUnlockLines(from, line, 1) > 0;
        if (both)
            stored = rasters->RasterUnlockLines(to, line, 1) > 0 && stored;
        if (!both || !stored)
            return Failed;
        if (progress(y + 1, info.height) < 0)
            return Cancelled;
    }
    return Done;
}

} // namespace

extern "C" {

TAVRIX_EXPORT int32_t TAVRIX_CALL GetPluginInfo(uint32_t index, TavrixChar* buffer,
                                                uint32_t capacity)
{
    if (!buffer || capacity == 0)
        return BadArgument;
    const TavrixChar* text = TextOf(index);
    if (!text)
        return Failed;
    uint32_t length = 0;
    for (; length + 1 < capacity && text[length]; ++length)
        buffer[length] = text[length];
    buffer[length] = 0;
    return Done;
}

TAVRIX_EXPORT int32_t TAVRIX_CALL SetLanguage(uint32_t language)
{
    japanese = language == 17;
    return Done;
}

// The argument has no meaning yet that a host and a plugin would share.
TAVRIX_EXPORT int32_t TAVRIX_CALL SubtractImage(TavrixImageHandle image,
                                                RasterFunctionTable* rasters,
                                                PaletteFunctionTable* palettes, uint32_t,
                                                TavrixProgressCallback progress,
                                                TavrixMessageCallback, TavrixPutPropertyCallback,
                                                TavrixGetPropertyCallback)
{
    if (!image || !rasters || !palettes || !progress)
        return BadArgument;
    RasterInfo info = {};
    info.size = sizeof(info);
    if (rasters->RasterGetInfo(image, &info) < 1)
        return Failed;
    if (info.depth != 24)
        return Failed;

    const OwnPalette palette(palettes);
    const OwnPicture reduced(rasters);
    int32_t result = FillPalette(palettes, palette.Get());
    if (result > 0)
        result = rasters->RasterAlloc(reduced.Get(), info.width, info.height, 8);
    if (result > 0)
        result = ReduceLines(rasters, image, reduced.Get(), info, progress);
    if (result > 0)
        result = rasters->RasterSetPalette(reduced.Get(), palette.Get());
    // Size, lines and palette at once; uses the new picture up, which is destroyed right after.
    if (result > 0)
        result = rasters->RasterCopy(image, reduced.Get());
    return result > 0 ? int32_t{Done} : result < 0 ? result : int32_t{Failed};
}

} // extern "C"
