#include "kit/check/HostilePictures.h"

#include <cstdio>
#include <cstring>

namespace plugincheck
{

namespace
{

constexpr const WCHAR* FirstFolder = TEXT("\\Temp\\");
constexpr const WCHAR* SecondFolder = TEXT("\\Storage Card\\Temp\\");

void Mix(u64* sum, const void* bytes, size_t count)
{
    const u8* byte = static_cast<const u8*>(bytes);
    for (size_t i = 0; i < count; ++i)
        *sum = (*sum ^ byte[i]) * 0x100000001B3U;
}

} // namespace

const PictureShape GoodShape = {"a picture of 37 x 23 pixels", 37, 23, 24, 0};
const PictureShape LargeShape = {"a picture of 400 x 300 pixels", 400, 300, 24, 0};

const std::vector<PictureShape>& OddShapes()
{
    static const std::vector<PictureShape> shapes = {
        {"a picture that was never allocated", 0, 0, 0, 0},
        {"a picture of one pixel", 1, 1, 24, 0},
        {"a picture of one line", 61, 1, 24, 0},
        {"a picture of one column", 1, 45, 24, 0},
        {"a picture of 4001 x 3 pixels", 4001, 3, 24, 0},
        {"an 8-bit picture with a palette of 256 colours", 37, 23, 8, 256},
        {"an 8-bit picture with a palette of 2 colours", 37, 23, 8, 2},
        {"an 8-bit picture without a palette", 37, 23, 8, 0},
        {"a 16-bit picture", 37, 23, 16, 0},
        {"a 32-bit picture", 37, 23, 32, 0},
        {"a picture of no lines", 37, 0, 24, 0},
        {"a picture of no width", 0, 23, 24, 0},
    };
    return shapes;
}

bool MakePicture(Raster* raster, const PictureShape& shape)
{
    if (shape.depth == 0)
        return true;
    if (raster->Create(shape.width, shape.height, shape.depth, FirstFolder, SecondFolder) < 0)
        return false;
    ColorTable* palette = nullptr;
    if (shape.paletteEntries != 0) {
        if (raster->GetPalette(&palette) < 0 || palette->Create(shape.paletteEntries) < 0)
            return false;
        for (u32 i = 0; i < shape.paletteEntries; ++i)
            if (palette->Add(i, 255 - i, i * 7 % 256, 0) < 0)
                return false;
    }
    const u32 bytes = shape.width * shape.depth / 8;
    for (u32 y = 0; y < shape.height; ++y) {
        u8* line = nullptr;
        if (raster->LockLines(static_cast<i32>(y), &line, nullptr) < Done)
            return false;
        for (u32 i = 0; i < bytes; ++i)
            line[i] = static_cast<u8>(i * 5 + y * 11);
        (void)raster->ReleaseLines(static_cast<i32>(y), 1, 0);
    }
    (void)raster->UnlockAll();
    return true;
}

bool PictureState::operator==(const PictureState& other) const
{
    return width == other.width && height == other.height && depth == other.depth &&
           pixels == other.pixels && readable == other.readable &&
           palette.size() == other.palette.size() &&
           (palette.empty() || std::memcmp(palette.data(), other.palette.data(),
                                           palette.size() * sizeof(PaletteEntry)) == 0);
}

PictureState StateOf(Raster* raster)
{
    PictureState state;
    RasterInfo info = {};
    info.size = sizeof info;
    (void)raster->UnlockAll();
    (void)raster->GetInfo(&info);
    state.width = info.width;
    state.height = info.height;
    state.depth = info.depth;
    ColorTable* palette = nullptr;
    if (raster->GetPalette(&palette) > 0 && palette != nullptr && palette->Count() != 0) {
        state.palette.resize(palette->Count());
        (void)palette->GetEntries(state.palette.data());
    }
    state.pixels = 0xCBF29CE484222325U;
    for (u32 y = 0; y < info.height; ++y) {
        u8* line = nullptr;
        if (raster->LockLines(static_cast<i32>(y), &line, nullptr) < Done) {
            state.readable = false;
            break;
        }
        Mix(&state.pixels, line, size_t{info.width} * info.depth / 8);
        (void)raster->ReleaseLines(static_cast<i32>(y), 1, 0);
    }
    (void)raster->UnlockAll();
    return state;
}

std::string Fingerprint(const PictureState& state)
{
    char text[96];
    std::snprintf(text, sizeof text, "%ux%ux%u/%zu/%016llx%s", state.width, state.height,
                  state.depth, state.palette.size(), static_cast<unsigned long long>(state.pixels),
                  state.readable ? "" : "/unreadable");
    return text;
}

} // namespace plugincheck
