#include "standard-plugins/common/subtracting/SubtractRun.h"

#include "standard-plugins/common/PictureLines.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/common/reducing/ColorReducer.h"
#include "standard-plugins/common/reducing/PaletteSurvey.h"

#include <stddef.h>
#include <stdlib.h>

namespace
{

struct Run {
    SubtractOrder order;
    PictureLines lines;
    ProgressThrottle progress;
    uint32_t done;
    PaletteSurvey* survey;
    ColorReducer reducer;
    uint8_t* rgb;
    uint8_t* indexes;
    WriteProblem problem;
};

bool Fail(Run* run, WriteProblem problem)
{
    run->problem = problem;
    return false;
}

bool StepOn(Run* run)
{
    return ReportProgress(&run->progress, ++run->done) || Fail(run, WriteProblem::Stopped);
}

void TakeRow(Run* run, const uint8_t* line)
{
    uint8_t* rgb = run->rgb;
    for (uint32_t x = 0; x < run->lines.width; ++x, line += 3, rgb += 3) {
        rgb[0] = line[2];
        rgb[1] = line[1];
        rgb[2] = line[0];
    }
}

void PutRow(const Run& run, uint8_t* line)
{
    for (uint32_t x = 0; x < run.lines.width; ++x, line += 3) {
        const uint8_t* color = run.reducer.palette.colors[run.indexes[x]];
        line[0] = color[2];
        line[1] = color[1];
        line[2] = color[0];
    }
}

bool LookAtRow(Run* run, uint32_t y)
{
    const uint8_t* line = LockPictureLine(&run->lines, y);
    if (!line)
        return Fail(run, run->lines.problem);
    TakeRow(run, line);
    if (!UnlockPictureLine(&run->lines, y))
        return Fail(run, run->lines.problem);
    SurveyRow(run->survey, run->rgb, run->lines.width);
    return StepOn(run);
}

bool ChangeRow(Run* run, uint32_t y)
{
    uint8_t* line = LockPictureLine(&run->lines, y);
    if (!line)
        return Fail(run, run->lines.problem);
    TakeRow(run, line);
    ReduceRow(&run->reducer, run->rgb, run->indexes);
    PutRow(*run, line);
    if (!UnlockPictureLine(&run->lines, y))
        return Fail(run, run->lines.problem);
    return StepOn(run);
}

bool FindPalette(Run* run, ReducedPalette* palette)
{
    if (run->order.fixed) {
        *palette = *run->order.fixed;
        return true;
    }
    run->survey = OpenPaletteSurvey();
    if (!run->survey)
        return Fail(run, WriteProblem::Memory);
    for (uint32_t y = 0; y < run->lines.height; ++y)
        if (!LookAtRow(run, y))
            return false;
    TakePalette(run->survey, run->order.most, palette);
    return true;
}

bool Reduce(Run* run)
{
    const uint32_t width = run->lines.width;
    run->rgb = static_cast<uint8_t*>(malloc(size_t{3} * width));
    run->indexes = static_cast<uint8_t*>(malloc(width));
    if (!run->rgb || !run->indexes)
        return Fail(run, WriteProblem::Memory);
    ReducedPalette palette;
    if (!FindPalette(run, &palette))
        return false;
    if (!OpenReducer(&run->reducer, palette, width, run->order.diffuses))
        return Fail(run, WriteProblem::Memory);
    for (uint32_t y = 0; y < run->lines.height; ++y)
        if (!ChangeRow(run, y))
            return false;
    return true;
}

void Close(Run* run)
{
    ClosePaletteSurvey(run->survey);
    CloseReducer(&run->reducer);
    free(run->rgb);
    free(run->indexes);
    free(run);
}

} // namespace

WriteProblem RunSubtraction(const SubtractOrder& order)
{
    PictureLines lines;
    if (!OpenPictureLines(&lines, order.rasters, order.image))
        return lines.problem;
    auto* run = static_cast<Run*>(calloc(1, sizeof(Run)));
    if (!run)
        return WriteProblem::Memory;
    run->order = order;
    run->lines = lines;
    StartProgress(&run->progress, order.progress, lines.height * (order.fixed ? 1 : 2));
    (void)Reduce(run);
    const WriteProblem problem = run->problem;
    Close(run);
    return problem;
}
