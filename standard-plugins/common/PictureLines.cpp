#include "standard-plugins/common/PictureLines.h"

#include "standard-plugins/common/HostLine.h"

namespace
{

bool Fail(PictureLines* lines, WriteProblem problem)
{
    lines->problem = problem;
    return false;
}

} // namespace

bool OpenPictureLines(PictureLines* lines, RasterFunctionTable* rasters, TavrixImageHandle image)
{
    *lines = {};
    if (!image || !rasters || rasters->size < sizeof(RasterFunctionTable) ||
        !rasters->RasterGetInfo || !rasters->RasterLockLines || !rasters->RasterUnlockLines)
        return Fail(lines, WriteProblem::Arguments);
    lines->rasters = rasters;
    lines->image = image;
    RasterInfo info = {};
    info.size = sizeof info;
    if (rasters->RasterGetInfo(image, &info) < 1 || info.width < 1 || info.height < 1)
        return Fail(lines, WriteProblem::Empty);
    lines->width = info.width;
    lines->height = info.height;
    return info.depth == 24 || Fail(lines, WriteProblem::TrueColor);
}

uint8_t* LockPictureLine(PictureLines* lines, uint32_t y)
{
    void* line = nullptr;
    uint32_t count = 1;
    const int32_t result =
        lines->rasters->RasterLockLines(lines->image, static_cast<int32_t>(y), &line, &count);
    lines->held = line;
    if (result >= 1 && count == 1 && line)
        return static_cast<uint8_t*>(line);
    lines->problem = WriteProblem::Line;
    return nullptr;
}

bool UnlockPictureLine(PictureLines* lines, uint32_t y)
{
    return UnlockHostLine(lines->rasters, lines->image, static_cast<int32_t>(y), lines->held) ||
           Fail(lines, WriteProblem::Line);
}
