#include "standard-plugins/gaussian-blur/Blur.h"

#include "standard-plugins/common/PictureLines.h"
#include "standard-plugins/common/ProgressThrottle.h"
#include "standard-plugins/gaussian-blur/GaussianRows.h"

namespace
{

bool ReadLine(PictureLines* lines, GaussianRows* rows, uint32_t y)
{
    const uint8_t* line = LockPictureLine(lines, y);
    if (!line)
        return false;
    TakeRow(rows, y, line);
    return UnlockPictureLine(lines, y);
}

bool WriteLine(PictureLines* lines, GaussianRows* rows, uint32_t y)
{
    uint8_t* line = LockPictureLine(lines, y);
    if (!line)
        return false;
    WriteRow(rows, y, line);
    return UnlockPictureLine(lines, y);
}

WriteProblem BlurLines(PictureLines* lines, GaussianRows* rows, TavrixProgressCallback callback)
{
    ProgressThrottle progress;
    StartProgress(&progress, callback, lines->height);
    uint32_t taken = 0;
    for (uint32_t y = 0; y < lines->height; ++y) {
        for (; taken <= LastRowFor(*rows, y); ++taken)
            if (!ReadLine(lines, rows, taken))
                return lines->problem;
        if (!WriteLine(lines, rows, y))
            return lines->problem;
        if (!ReportProgress(&progress, y + 1))
            return WriteProblem::Stopped;
    }
    return WriteProblem::None;
}

WriteProblem Run(const BlurOrder& order)
{
    PictureLines lines;
    if (!OpenPictureLines(&lines, order.rasters, order.image))
        return lines.problem;
    GaussianRows rows;
    const bool opened = OpenGaussianRows(&rows, lines.width, lines.height, order.radius);
    const WriteProblem problem =
        opened ? BlurLines(&lines, &rows, order.progress) : WriteProblem::Memory;
    FreeGaussianRows(&rows);
    return problem;
}

} // namespace

int32_t BlurPicture(const BlurOrder& order, const BilingualText& caption)
{
    const WriteProblem problem = Run(order);
    TellProblem(problem, caption, order.message);
    return ResultOf(problem);
}
