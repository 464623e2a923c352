#include "image/Raster.h"

#include <string.h>

Raster::Raster(Allocator* given)
    : LineTable(given), created(0), primaryDir(nullptr), secondaryDir(nullptr), swapped(nullptr),
      lineRef(nullptr), locked(nullptr), textFont(nullptr), textBitmap(nullptr), textBrush(nullptr),
      textBits(nullptr), info(), records(0)
{
    info.size = sizeof(RasterInfo);
}

Raster::~Raster()
{
    (void)textContext.DeleteMemory();
    if (textBitmap != nullptr)
        ::DeleteObject(textBitmap);
    if (textFont != nullptr)
        ::DeleteObject(textFont);
    if (textBrush != nullptr)
        ::DeleteObject(textBrush);
    Reset();
}

i32 Raster::CopyFolder(const WCHAR* folder, WCHAR** out)
{
    if (folder == nullptr)
        return Done;
    const size_t bytes = (wcslen(folder) + 1) * sizeof(WCHAR);
    *out = static_cast<WCHAR*>(TakeBlock(bytes));
    if (*out == nullptr)
        return NoMemory;
    memcpy(*out, folder, bytes);
    return Done;
}

i32 Raster::Create(u32 newWidth, u32 newHeight, u32 newDepth, const WCHAR* primary,
                   const WCHAR* secondary)
{
    Reset();
    u32 newStride = 0;
    i32 status = StrideOf(newWidth, newDepth, &newStride);
    if (status < 0)
        return status;
    info.depth = newDepth;
    info.stride = newStride;
    status = CopyFolder(primary, &primaryDir);
    if (status < 0)
        return status;
    status = CopyFolder(secondary, &secondaryDir);
    if (status < 0)
        return status;
    info.width = newWidth;
    status = LineTable::Create(newWidth, 0, newDepth);
    if (status < 0)
        return status;
    created = 1;
    status = InsertLines(0, &newHeight);
    // The asked height is reported whatever came of it: the caller of a creation that failed knows
    // the raster as unusable and resets or destroys it.
    info.height = newHeight;
    return status;
}

void Raster::Reset()
{
    GiveBlock(locked);
    locked = nullptr;
    for (u32 line = 0; line < records; ++line)
        if (swapped[line])
            DeleteLineFile(line);
    GiveBlock(lineRef);
    GiveBlock(swapped);
    lineRef = nullptr;
    swapped = nullptr;
    records = 0;
    info = {};
    info.size = sizeof(RasterInfo);
    created = 0;
    GiveBlock(primaryDir);
    GiveBlock(secondaryDir);
    primaryDir = nullptr;
    secondaryDir = nullptr;
    LineTable::Clear();
}

i32 Raster::FlipVertical()
{
    if (!created)
        return WrongState;
    for (u32 i = 0; i < info.height / 2; ++i) {
        const i32 status = SwapLines(static_cast<i32>(i), static_cast<i32>(info.height - 1 - i));
        if (status < 1)
            return status;
    }
    return Done;
}

i32 Raster::GetInfo(RasterInfo* target)
{
    if (target == nullptr)
        return BadArgument;
    info.colorCount = palette != nullptr ? palette->Count() : 0;
    const size_t asked = target->size;
    memcpy(target, &info, asked < sizeof(info) ? asked : sizeof(info));
    return Done;
}

i32 Raster::GetPalette(ColorTable** out)
{
    if (out == nullptr)
        return BadArgument;
    *out = palette;
    return palette != nullptr ? Done : NoMemory;
}

i32 Raster::GetSwapDirs(SwapDirs* out)
{
    if (out == nullptr)
        return BadArgument;
    out->primary = primaryDir;
    out->secondary = secondaryDir;
    return Done;
}

i32 Raster::LoadRaw(const void* block)
{
    if (block == nullptr)
        return NoMemory;
    u8** slot = nullptr;
    if (!created || GetLineSlot(0, &slot) < 1 || *slot == nullptr)
        return WrongState;
    const u8* row = static_cast<const u8*>(block);
    for (u32 i = 0; i < info.height; ++i) {
        const i32 line = static_cast<i32>(i);
        u8* target = nullptr;
        const i32 status = LockLines(line, &target, nullptr);
        if (status < 1)
            return status;
        memcpy(target, row, info.stride);
        row += info.stride;
        (void)ReleaseLines(line, 1, 0);
    }
    return Done;
}
