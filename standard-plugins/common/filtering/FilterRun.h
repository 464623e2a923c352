// A filter's way over a picture of the host, or over a small one in memory.
//
// The picture is changed in place, a line at a time: after a failure or a refusal the lines above
// are changed, those below are not. A filter with a first pass looks at all lines before it changes
// any; both passes count for the progress. Held beside the picture are the rows that the filter
// reaches over, and its state.
#pragma once

#include "standard-plugins/common/filtering/Filter.h"
#include "standard-plugins/common/WriteProblem.h"

struct FilterOrder {
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    TavrixProgressCallback progress;
    const uint32_t* values;
};

/// Worker thread of the processing export.
WriteProblem RunFilter(const FilterWork& work, const FilterOrder& order);
/// From `source` to `target`, both `height` rows of 3 * width bytes without a gap; they may not be
/// the same. False without memory.
bool RunFilterInMemory(const FilterWork& work, const uint32_t* values, const uint8_t* source,
                       uint32_t width, uint32_t height, uint8_t* target);
