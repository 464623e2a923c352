// Letting go of a line of the host's picture.
#pragma once

#include <tavrix/plugin.h>

/// Unlocks the line that was locked at `line`. False when the host could not keep it.
///
/// Where memory is short the host answers 0 for a line that it could not store. Of a picture that
/// has files the line is lost then; one that has none, as a picture that was turned, keeps it where
/// it is, which locking it anew shows. A lost line stays locked: the host gives it back behind the
/// export.
inline bool UnlockHostLine(const RasterFunctionTable* rasters, TavrixImageHandle image,
                           int32_t number, const void* line)
{
    const int32_t result = rasters->RasterUnlockLines(image, number, 1);
    if (result != 0)
        return result > 0;
    void* again = nullptr;
    uint32_t count = 1;
    if (rasters->RasterLockLines(image, number, &again, &count) < 1 || count != 1 || again != line)
        return false;
    (void)rasters->RasterUnlockLines(image, number, 1);
    return true;
}
