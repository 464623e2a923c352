#include "standard-plugins/brightness-contrast/ToneAdjusting.h"

#include "standard-plugins/brightness-contrast/ToneTable.h"
#include "standard-plugins/common/PictureLines.h"
#include "standard-plugins/common/ProgressThrottle.h"

namespace
{

WriteProblem Run(const ToneOrder& order)
{
    PictureLines lines;
    if (!OpenPictureLines(&lines, order.rasters, order.image))
        return lines.problem;
    uint8_t table[256];
    FillToneTable(table, order.brightness, order.contrast);
    ProgressThrottle progress;
    StartProgress(&progress, order.progress, lines.height);
    for (uint32_t y = 0; y < lines.height; ++y) {
        uint8_t* line = LockPictureLine(&lines, y);
        if (!line)
            return lines.problem;
        for (uint32_t i = 0; i < 3 * lines.width; ++i)
            line[i] = table[line[i]];
        if (!UnlockPictureLine(&lines, y))
            return lines.problem;
        if (!ReportProgress(&progress, y + 1))
            return WriteProblem::Stopped;
    }
    return WriteProblem::None;
}

} // namespace

int32_t AdjustTones(const ToneOrder& order, const BilingualText& caption)
{
    const WriteProblem problem = Run(order);
    TellProblem(problem, caption, order.message);
    return ResultOf(problem);
}
