#include "standard-plugins/common/filtering/FilterRun.h"

#include "standard-plugins/common/filtering/FilterWindow.h"
#include "standard-plugins/common/PictureLines.h"
#include "standard-plugins/common/ProgressThrottle.h"

#include <stdlib.h>
#include <string.h>

namespace
{

// Where a run's rows come from and go to. A row is used between its Lock and its Unlock.
struct RowPlace {
    void* self;
    const uint8_t* (*lockSource)(void* self, uint32_t y);
    uint8_t* (*lockTarget)(void* self, uint32_t y);
    WriteProblem (*unlock)(void* self, uint32_t y);
};

struct Run {
    const FilterWork* work;
    FilterContext context;
    uint32_t reach;
    FilterWindow window;
    RowPlace place;
    ProgressThrottle progress;
    uint32_t done;
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

bool Unlock(Run* run, uint32_t y)
{
    const WriteProblem problem = run->place.unlock(run->place.self, y);
    return problem == WriteProblem::None || Fail(run, problem);
}

bool LookAtRow(Run* run, uint32_t y)
{
    const uint8_t* row = run->place.lockSource(run->place.self, y);
    if (!row)
        return Fail(run, WriteProblem::Line);
    run->work->look(&run->context, row);
    return Unlock(run, y);
}

bool NeedsLook(const FilterWork& work, const uint32_t* values)
{
    return work.look && (!work.needsLook || work.needsLook(values));
}

bool LookAtAll(Run* run)
{
    for (uint32_t y = 0; y < run->context.height; ++y)
        if (!LookAtRow(run, y) || !StepOn(run))
            return false;
    return true;
}

bool TakeRow(Run* run, uint32_t y)
{
    const uint8_t* row = run->place.lockSource(run->place.self, y);
    if (!row)
        return Fail(run, WriteProblem::Line);
    if (run->work->take)
        run->work->take(&run->context, y, row);
    else
        TakeFilterRow(&run->window, y, row);
    return Unlock(run, y);
}

bool ChangeRow(Run* run, uint32_t y)
{
    uint8_t* target = run->place.lockTarget(run->place.self, y);
    if (!target)
        return Fail(run, WriteProblem::Line);
    const uint8_t* const itself[] = {target};
    if (run->window.ring)
        run->work->change(&run->context, RowsAround(&run->window, y), target);
    else
        run->work->change(&run->context,
                          {run->work->take ? nullptr : itself, run->reach, run->context.width, y},
                          target);
    return Unlock(run, y);
}

bool ChangeAll(Run* run)
{
    uint32_t taken = 0;
    for (uint32_t y = 0; y < run->context.height; ++y) {
        if (run->reach > 0)
            for (; taken <= LastRowInReach(run->reach, run->context.height, y); ++taken)
                if (!TakeRow(run, taken))
                    return false;
        if (!ChangeRow(run, y) || !StepOn(run))
            return false;
    }
    return true;
}

bool OpenRun(Run* run)
{
    const FilterWork& work = *run->work;
    run->reach = work.reach ? work.reach(run->context.values) : 0;
    if (run->reach > 0 && !work.take &&
        !OpenFilterWindow(&run->window, run->reach, run->context.width, run->context.height))
        return Fail(run, WriteProblem::Memory);
    return !work.open || work.open(&run->context) || Fail(run, WriteProblem::Memory);
}

WriteProblem GoOver(Run* run)
{
    const FilterWork& work = *run->work;
    run->context.state = calloc(1, work.stateBytes ? work.stateBytes : 1);
    if (!run->context.state)
        return WriteProblem::Memory;
    if (OpenRun(run) && (!NeedsLook(work, run->context.values) || LookAtAll(run))) {
        if (work.settle)
            work.settle(&run->context);
        (void)ChangeAll(run);
    }
    if (work.close)
        work.close(&run->context);
    CloseFilterWindow(&run->window);
    free(run->context.state);
    return run->problem;
}

const uint8_t* LockHostSource(void* self, uint32_t y)
{
    return LockPictureLine(static_cast<PictureLines*>(self), y);
}

uint8_t* LockHostTarget(void* self, uint32_t y)
{
    return LockPictureLine(static_cast<PictureLines*>(self), y);
}

WriteProblem UnlockHost(void* self, uint32_t y)
{
    return UnlockPictureLine(static_cast<PictureLines*>(self), y) ? WriteProblem::None
                                                                  : WriteProblem::Line;
}

struct MemoryPicture {
    const uint8_t* source;
    uint8_t* target;
    size_t rowBytes;
    bool inPlace;
};

const uint8_t* LockMemorySource(void* self, uint32_t y)
{
    const auto* picture = static_cast<MemoryPicture*>(self);
    return picture->source + picture->rowBytes * y;
}

uint8_t* LockMemoryTarget(void* self, uint32_t y)
{
    const auto* picture = static_cast<MemoryPicture*>(self);
    uint8_t* target = picture->target + picture->rowBytes * y;
    if (picture->inPlace)
        memcpy(target, picture->source + picture->rowBytes * y, picture->rowBytes);
    return target;
}

WriteProblem UnlockMemory(void*, uint32_t)
{
    return WriteProblem::None;
}

} // namespace

WriteProblem RunFilter(const FilterWork& work, const FilterOrder& order)
{
    PictureLines lines;
    if (!OpenPictureLines(&lines, order.rasters, order.image))
        return lines.problem;
    Run run = {};
    run.work = &work;
    run.context = {order.values, lines.width, lines.height, nullptr};
    run.place = {&lines, LockHostSource, LockHostTarget, UnlockHost};
    StartProgress(&run.progress, order.progress,
                  lines.height * (NeedsLook(work, order.values) ? 2 : 1));
    return GoOver(&run);
}

bool RunFilterInMemory(const FilterWork& work, const uint32_t* values, const uint8_t* source,
                       uint32_t width, uint32_t height, uint8_t* target)
{
    MemoryPicture picture = {source, target, size_t{3} * width,
                             !work.reach || work.reach(values) == 0};
    Run run = {};
    run.work = &work;
    run.context = {values, width, height, nullptr};
    run.place = {&picture, LockMemorySource, LockMemoryTarget, UnlockMemory};
    StartProgress(&run.progress, nullptr, height * (NeedsLook(work, values) ? 2 : 1));
    return GoOver(&run) == WriteProblem::None;
}
