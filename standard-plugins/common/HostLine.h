// Letting go of a line of the host's picture.
#pragma once

#include <tavrix/plugin.h>

/// Unlocks the line that was locked at `line`. False when the host could not keep it.
///
/// Where memory is short the host answers 0 for a line that it could not store. A picture without
/// files, as one that was turned, keeps the line where it is, and so does one whose disk is full
/// unless another line has come in since; it is lost otherwise. Locking it anew shows which: a line
/// that is there has the address that it had. A lost line stays locked: the host gives it back behind
/// the export.
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
