#include "standard-plugins/common/scaling/ScalePicture.h"

#include "standard-plugins/common/PictureLines.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/common/scaling/AreaReducer.h"
#include "standard-plugins/common/scaling/LineReducer.h"

#include <string.h>

namespace
{

constexpr uint32_t longestSide = 65535;
// Beyond this the lines that zimg would hold are reduced one by one.
constexpr uint64_t mostHeld = uint64_t{16} << 20;
// Half for what was read, half for what was written.
constexpr uint32_t progressSteps = 1000;

struct Scaling {
    ZimgLibrary zimg;
    PictureLines source;
    PictureLines target;
    ScaleKernel kernel;
    ProgressThrottle progress;
    uint64_t pixelsRead;
    uint64_t pixelsWritten;
    WriteProblem problem;
};

uint64_t PixelsOf(const PictureLines& lines)
{
    return uint64_t{lines.width} * lines.height;
}

// Columns that are gone through in strips may be read more than once.
bool Report(Scaling* scaling)
{
    const uint64_t all = PixelsOf(scaling->source);
    const uint64_t read = scaling->pixelsRead < all ? scaling->pixelsRead : all;
    const uint64_t half = progressSteps / 2;
    const uint64_t done =
        read * half / all + scaling->pixelsWritten * half / PixelsOf(scaling->target);
    if (ReportProgress(&scaling->progress, static_cast<uint32_t>(done)))
        return true;
    scaling->problem = WriteProblem::Stopped;
    return false;
}

bool LoseLine(Scaling* scaling)
{
    scaling->problem = WriteProblem::Line;
    return false;
}

bool GiveLine(void* user, uint32_t y, uint32_t left, uint32_t right, float* const planes[3])
{
    auto* scaling = static_cast<Scaling*>(user);
    const uint8_t* line = LockPictureLine(&scaling->source, y);
    if (!line)
        return LoseLine(scaling);
    for (uint32_t x = left; x < right; ++x)
        for (uint32_t plane = 0; plane < 3; ++plane)
            planes[plane][x] = line[size_t{3} * x + plane];
    scaling->pixelsRead += right - left;
    return UnlockPictureLine(&scaling->source, y) ? Report(scaling) : LoseLine(scaling);
}

uint8_t Rounded(float value)
{
    if (value <= 0)
        return 0;
    return value >= 255 ? 255 : static_cast<uint8_t>(static_cast<int32_t>(value + 0.5F));
}

bool TakeLine(void* user, uint32_t y, uint32_t left, uint32_t right, float* const planes[3])
{
    auto* scaling = static_cast<Scaling*>(user);
    uint8_t* line = LockPictureLine(&scaling->target, y);
    if (!line)
        return LoseLine(scaling);
    for (uint32_t x = left; x < right; ++x)
        for (uint32_t plane = 0; plane < 3; ++plane)
            line[size_t{3} * x + plane] = Rounded(planes[plane][x]);
    scaling->pixelsWritten += right - left;
    return UnlockPictureLine(&scaling->target, y) ? Report(scaling) : LoseLine(scaling);
}

WriteProblem ProblemOf(PassResult result, const Scaling& scaling)
{
    switch (result) {
    case PassResult::Done:
        return WriteProblem::None;
    case PassResult::NoMemory:
        return WriteProblem::Memory;
    case PassResult::Ended:
        return scaling.problem;
    default:
        return WriteProblem::Scaling;
    }
}

// What was read goes to the reducer, which hands its own lines on.
struct Reducing {
    Scaling* scaling;
    LineReducer reducer;
};

bool GiveLineToReduce(void* user, uint32_t y, uint32_t left, uint32_t right, float* const planes[3])
{
    return GiveLine(static_cast<Reducing*>(user)->scaling, y, left, right, planes);
}

bool TakeLineToReduce(void* user, uint32_t y, uint32_t left, uint32_t right, float* const planes[3])
{
    return ReduceLine(&static_cast<Reducing*>(user)->reducer, y, left, right, planes);
}

// zimg changes the width alone.
WriteProblem RunReduced(Scaling* scaling, ZimgPass* pass, ZimgSize from, ZimgSize to)
{
    ClosePass(pass);
    const PassResult opened =
        OpenPass(pass, &scaling->zimg, from, {to.width, from.height}, scaling->kernel);
    if (opened != PassResult::Done)
        return ProblemOf(opened, *scaling);
    Reducing reducing = {scaling, {}};
    WriteProblem problem = WriteProblem::Memory;
    if (OpenReducer(&reducing.reducer, scaling->kernel, from.height, to, TakeLine, scaling))
        problem = ProblemOf(RunPass(pass, GiveLineToReduce, TakeLineToReduce, &reducing), *scaling);
    CloseReducer(&reducing.reducer);
    return problem;
}

bool TakeAreaLine(void* user, uint32_t y, const uint8_t* line)
{
    auto* scaling = static_cast<Scaling*>(user);
    uint8_t* target = LockPictureLine(&scaling->target, y);
    if (!target)
        return LoseLine(scaling);
    memcpy(target, line, size_t{3} * scaling->target.width);
    scaling->pixelsWritten += scaling->target.width;
    return UnlockPictureLine(&scaling->target, y) ? Report(scaling) : LoseLine(scaling);
}

// The lines that a line of the source completes are written while it is locked.
bool ReduceAreas(Scaling* scaling, AreaReducer* reducer)
{
    for (uint32_t y = 0; y < scaling->source.height; ++y) {
        const uint8_t* line = LockPictureLine(&scaling->source, y);
        if (!line)
            return LoseLine(scaling);
        scaling->pixelsRead += scaling->source.width;
        const bool goesOn = ReduceAreaLine(reducer, y, line);
        if (!UnlockPictureLine(&scaling->source, y))
            return LoseLine(scaling);
        if (!goesOn || !Report(scaling))
            return false;
    }
    return true;
}

WriteProblem RunAreas(Scaling* scaling)
{
    const AreaSides sides = {scaling->source.width, scaling->source.height, scaling->target.width,
                             scaling->target.height};
    AreaReducer reducer;
    WriteProblem problem = WriteProblem::Memory;
    if (OpenAreaReducer(&reducer, sides, TakeAreaLine, scaling))
        problem = ReduceAreas(scaling, &reducer) ? WriteProblem::None : scaling->problem;
    CloseAreaReducer(&reducer);
    return problem;
}

WriteProblem RunPasses(Scaling* scaling)
{
    const ZimgSize from = {scaling->source.width, scaling->source.height};
    const ZimgSize to = {scaling->target.width, scaling->target.height};
    ZimgPass pass;
    WriteProblem problem =
        ProblemOf(OpenPass(&pass, &scaling->zimg, from, to, scaling->kernel), *scaling);
    if (problem == WriteProblem::None)
        problem = to.height < from.height && BytesOf(pass) > mostHeld
                      ? RunReduced(scaling, &pass, from, to)
                      : ProblemOf(RunPass(&pass, GiveLine, TakeLine, scaling), *scaling);
    ClosePass(&pass);
    return problem;
}

WriteProblem Build(Scaling* scaling, TavrixImageHandle result, const ScaleOrder& order)
{
    if (order.rasters->RasterAlloc(result, order.width, order.height, 24) < 1)
        return WriteProblem::Memory;
    if (!OpenPictureLines(&scaling->target, order.rasters, result))
        return scaling->target.problem;
    StartProgress(&scaling->progress, scaling->progress.callback, progressSteps);
    const WriteProblem problem =
        scaling->kernel == ScaleKernel::Area ? RunAreas(scaling) : RunPasses(scaling);
    if (problem != WriteProblem::None)
        return problem;
    return order.rasters->RasterCopy(order.image, result) >= 1 ? WriteProblem::None
                                                               : WriteProblem::Line;
}

bool CanMakePictures(const RasterFunctionTable& rasters)
{
    return rasters.RasterCreate && rasters.RasterDestroy && rasters.RasterAlloc &&
           rasters.RasterCopy;
}

bool IsSize(const ScaleOrder& order)
{
    return order.width >= 1 && order.width <= longestSide && order.height >= 1 &&
           order.height <= longestSide && uint64_t{order.width} * order.height <= mostScaledPixels;
}

WriteProblem Run(const ScaleOrder& order)
{
    Scaling scaling = {};
    scaling.kernel = order.kernel;
    scaling.progress.callback = order.progress;
    if (!OpenPictureLines(&scaling.source, order.rasters, order.image))
        return scaling.source.problem;
    if (!CanMakePictures(*order.rasters))
        return WriteProblem::Arguments;
    if (!IsSize(order))
        return WriteProblem::NewSize;
    // Every kernel leaves a picture of the same size as it is.
    if (order.width == scaling.source.width && order.height == scaling.source.height)
        return WriteProblem::None;
    if (order.kernel != ScaleKernel::Area && !OpenZimg(&scaling.zimg))
        return WriteProblem::Missing;
    TavrixImageHandle result = nullptr;
    WriteProblem problem = WriteProblem::Memory;
    if (order.rasters->RasterCreate(&result) >= 1 && result) {
        problem = Build(&scaling, result, order);
        (void)order.rasters->RasterDestroy(&result);
    }
    CloseZimg(&scaling.zimg);
    return problem;
}

} // namespace

int32_t ScalePicture(const ScaleOrder& order, const BilingualText& caption)
{
    const WriteProblem problem = Run(order);
    TellProblem(problem, caption, order.message);
    return ResultOf(problem);
}
