// The sixteen functions on pictures of the plugin contract.

#include "plugin/FunctionTables.h"

#include "image/Raster.h"
#include "plugin/PluginObjects.h"

namespace
{

constexpr const WCHAR* FirstLineFolder = TEXT("\\Temp\\");
constexpr const WCHAR* SecondLineFolder = TEXT("\\Storage Card\\Temp\\");

RasterInfo InfoOf(Raster* raster)
{
    RasterInfo info = {};
    info.size = sizeof(info);
    (void)raster->GetInfo(&info);
    return info;
}

i32 TAVRIX_CALL RasterCreate(TavrixImageHandle* out)
{
    if (out == nullptr)
        return Failed;
    *out = nullptr;
    Raster* raster = nullptr;
    const i32 result = MakePluginObject(&raster);
    *out = ToHandle(raster);
    return result;
}

i32 TAVRIX_CALL RasterDestroy(TavrixImageHandle* image)
{
    if (image == nullptr)
        return Failed;
    if (*image == nullptr)
        return Done;
    // The picture that the export was given is the host's own and stays.
    const i32 result = DestroyPluginObject(*image);
    if (result > 0)
        *image = nullptr;
    return result;
}

i32 TAVRIX_CALL RasterAlloc(TavrixImageHandle image, u32 width, u32 height, u32 depth)
{
    Raster* raster = FindPluginImage(image);
    if (raster == nullptr)
        return Failed;
    if (width > LongestPluginSide || height > LongestPluginSide) {
        raster->Reset();
        return Failed;
    }
    return raster->Create(width, height, depth, FirstLineFolder, SecondLineFolder);
}

i32 TAVRIX_CALL RasterFree(TavrixImageHandle image)
{
    Raster* raster = FindPluginImage(image);
    if (raster == nullptr)
        return Failed;
    raster->Reset();
    return Done;
}

i32 TAVRIX_CALL RasterCopy(TavrixImageHandle target, TavrixImageHandle source)
{
    Raster* to = FindPluginImage(target);
    Raster* from = FindPluginImage(source);
    if (to == nullptr || from == nullptr)
        return Failed;
    // Taking lines over empties the target first, and with it a source that is the same picture.
    return to == from ? Done : to->TakeFrom(from);
}

i32 TAVRIX_CALL RasterInsertLines(TavrixImageHandle image, i32 line, u32* count)
{
    Raster* raster = FindPluginImage(image);
    if (raster == nullptr)
        return Failed;
    const RasterInfo info = InfoOf(raster);
    const u32 wanted = count != nullptr ? *count : 1;
    const bool created = info.depth != 0;
    if (created && (info.height > LongestPluginSide || wanted > LongestPluginSide - info.height))
        return Failed;
    return raster->InsertLines(line, count);
}

i32 TAVRIX_CALL RasterDeleteLines(TavrixImageHandle image, i32 line, u32* count)
{
    Raster* raster = FindPluginImage(image);
    return raster == nullptr ? Failed : raster->RemoveLines(line, count);
}

i32 TAVRIX_CALL RasterSwapLines(TavrixImageHandle image, i32 a, i32 b)
{
    Raster* raster = FindPluginImage(image);
    return raster == nullptr ? Failed : raster->SwapLines(a, b);
}

i32 TAVRIX_CALL RasterGetInfo(TavrixImageHandle image, RasterInfo* info)
{
    Raster* raster = FindPluginImage(image);
    return raster == nullptr ? Failed : raster->GetInfo(info);
}

i32 TAVRIX_CALL RasterLockLines(TavrixImageHandle image, i32 line, void** lines, u32* count)
{
    Raster* raster = FindPluginImage(image);
    if (raster == nullptr)
        return Failed;
    if (lines == nullptr)
        return BadArgument;
    return raster->LockLines(line, reinterpret_cast<u8**>(lines), count);
}

i32 TAVRIX_CALL RasterUnlockLines(TavrixImageHandle image, i32 line, u32 count)
{
    Raster* raster = FindPluginImage(image);
    // Never forced out: only short memory sends a plugin's lines to their files.
    return raster == nullptr ? Failed : raster->ReleaseLines(line, count, 0);
}

i32 TAVRIX_CALL RasterGetPalette(TavrixImageHandle image, TavrixPaletteHandle palette)
{
    Raster* raster = FindPluginImage(image);
    ColorTable* target = FindPluginPalette(palette);
    if (raster == nullptr || (palette != nullptr && target == nullptr))
        return Failed;
    ColorTable* own = nullptr;
    const i32 result = raster->GetPalette(&own);
    if (result < 0)
        return result;
    if (own == nullptr)
        return NoMemory;
    return target == nullptr ? static_cast<i32>(own->Count()) : target->CopyFrom(own);
}

i32 TAVRIX_CALL RasterSetPalette(TavrixImageHandle image, TavrixPaletteHandle palette)
{
    Raster* raster = FindPluginImage(image);
    const ColorTable* source = FindPluginPalette(palette);
    if (raster == nullptr || source == nullptr)
        return Failed;
    ColorTable* own = nullptr;
    const i32 result = raster->GetPalette(&own);
    if (result < 0)
        return result;
    return own == nullptr ? NoMemory : own->CopyFrom(source);
}

i32 TAVRIX_CALL RasterStretch(TavrixImageHandle source, TavrixImageHandle target, i32 sourceLeft,
                              i32 sourceTop, i32 sourceRight, i32 sourceBottom, i32 targetLeft,
                              i32 targetTop, i32 targetRight, i32 targetBottom)
{
    Raster* from = FindPluginImage(source);
    Raster* to = FindPluginImage(target);
    if (from == nullptr || to == nullptr)
        return Failed;
    return from->StretchRect(to, sourceLeft, sourceTop, sourceRight, sourceBottom, targetLeft,
                             targetTop, targetRight, targetBottom);
}

i32 TAVRIX_CALL RasterGetPixel(TavrixImageHandle image, i32 x, i32 y, u32* value)
{
    Raster* raster = FindPluginImage(image);
    return raster == nullptr ? Failed : raster->GetPixel(x, y, value);
}

i32 TAVRIX_CALL RasterSetPixel(TavrixImageHandle image, i32 x, i32 y, u32 value)
{
    Raster* raster = FindPluginImage(image);
    return raster == nullptr ? Failed : raster->SetPixel(x, y, value);
}

} // namespace

void WriteRasterFunctions(RasterFunctionTable* table)
{
    table->size = sizeof(*table);
    table->RasterCreate = RasterCreate;
    table->RasterDestroy = RasterDestroy;
    table->RasterAlloc = RasterAlloc;
    table->RasterFree = RasterFree;
    table->RasterCopy = RasterCopy;
    table->RasterInsertLines = RasterInsertLines;
    table->RasterDeleteLines = RasterDeleteLines;
    table->RasterSwapLines = RasterSwapLines;
    table->RasterGetInfo = RasterGetInfo;
    table->RasterLockLines = RasterLockLines;
    table->RasterUnlockLines = RasterUnlockLines;
    table->RasterGetPalette = RasterGetPalette;
    table->RasterSetPalette = RasterSetPalette;
    table->RasterStretch = RasterStretch;
    table->RasterGetPixel = RasterGetPixel;
    table->RasterSetPixel = RasterSetPixel;
}
