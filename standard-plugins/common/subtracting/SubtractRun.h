// Reduces the colours of the host's picture in place. It keeps its 24 bits a pixel, since only such
// pictures are shown; other depths are refused.
//
// For a palette of its own the picture is read once before it is changed; both passes count for the
// progress. A line is locked, changed and let go at once. After a failure or a refusal in the
// second pass the lines above are changed, those below are not; before it the picture is as it was.
#pragma once

#include "standard-plugins/common/reducing/ReducedPalette.h"
#include "standard-plugins/common/WriteProblem.h"

struct SubtractOrder {
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    TavrixProgressCallback progress;
    bool diffuses;
    /// Colours of a palette made for the picture, 2 to mostReducedColors; of no meaning with
    /// `fixed`.
    uint32_t most;
    /// A palette that is there already, or null.
    const ReducedPalette* fixed;
};

/// Worker thread of the export.
WriteProblem RunSubtraction(const SubtractOrder& order);
