// A SCALE plugin in C++: resizes by the host's own nearest-neighbour stretch, line by line, so that
// the bar moves. A new picture is made beside the old one and takes its place once it is whole:
// when memory fails or the user gives up, the old one stands as it was.
#include <tavrix/text.h>

namespace
{

enum Result : int32_t { Done = 1, Failed = -1, BadArgument = -4, Cancelled = -9 };

// The one thing that is kept between calls; it is forgotten when the library is unloaded.
bool japanese = false;

const TavrixChar* TextOf(uint32_t index)
{
    switch (index) {
    case PluginInfoIdentity:
        return TAVRIX_TEXT("TX_SCALE");
    case PluginInfoName:
        return japanese ? TAVRIX_TEXT("最近傍法") : TAVRIX_TEXT("Nearest");
    case PluginInfoVersion:
        return TAVRIX_TEXT("1.0");
    case PluginInfoCopyright:
        return TAVRIX_TEXT("Free to use");
    case PluginInfoDate:
        return TAVRIX_TEXT("2026-11-21");
    case PluginInfoDescription:
        return japanese ? TAVRIX_TEXT("最も近い画素で大きさを変えます。")
                        : TAVRIX_TEXT("Resizes by the nearest pixel.");
    default:
        return nullptr;
    }
}

// A picture of the plugin's own, which must not outlive the call.
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

TAVRIX_EXPORT int32_t TAVRIX_CALL ScaleImage(TavrixImageHandle image, RasterFunctionTable* rasters,
                                             PaletteFunctionTable*, uint32_t width, uint32_t height,
                                             TavrixProgressCallback progress, TavrixMessageCallback,
                                             TavrixPutPropertyCallback, TavrixGetPropertyCallback)
{
    if (!image || !rasters || !progress || width == 0 || height == 0)
        return BadArgument;
    RasterInfo old = {};
    old.size = sizeof(old);
    if (rasters->RasterGetInfo(image, &old) < 1)
        return Failed;
    // The stretch takes 24 bits alone.
    if (old.depth != 24 || old.width == 0 || old.height == 0)
        return Failed;

    const OwnPicture scaled(rasters);
    const int32_t made = rasters->RasterAlloc(scaled.Get(), width, height, 24);
    if (made < 1)
        return made < 0 ? made : int32_t{Failed};
    const int32_t right = static_cast<int32_t>(old.width) - 1;
    const int32_t scaledRight = static_cast<int32_t>(width) - 1;
    for (uint32_t y = 0; y < height; ++y) {
        // The line whose middle lies under the middle of line y. Edges are inclusive.
        const auto from = static_cast<int32_t>((2 * uint64_t{y} + 1) * old.height / 2 / height);
        const auto to = static_cast<int32_t>(y);
        const int32_t drawn = rasters->RasterStretch(image, scaled.Get(), 0, from, right, from, 0,
                                                     to, scaledRight, to);
        if (drawn < 1)
            return Failed;
        if (progress(y + 1, height) < 0)
            return Cancelled;
    }
    // Uses the new picture up; it is destroyed right after.
    return rasters->RasterCopy(image, scaled.Get());
}

} // extern "C"
