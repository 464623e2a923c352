// Exchanging left and right, in place.

#include "image/Raster.h"
#include "pixel/Rows.h"

i32 Raster::FlipHorizontal()
{
    if (!created)
        return WrongState;
    // Lines of 8 and 16 bits end before the last pixel of 3 bytes does. A pixel whose partner lies
    // behind the end stays, so that what changes places is a run in the middle.
    const u32 whole = info.stride / 3;
    const u32 left = info.width > whole ? info.width - whole : 0;
    const u32 count = info.width > 2 * u64{left} ? info.width - 2 * left : 0;
    for (u32 y = 0; y < info.height; ++y) {
        const i32 line = static_cast<i32>(y);
        u8* row = nullptr;
        const i32 status = LockLine(line, &row);
        if (status < 1)
            return status;
        ReverseRow24(row + size_t{3} * left, count);
        (void)ReleaseLine(line);
    }
    return Done;
}
