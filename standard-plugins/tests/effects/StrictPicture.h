// The strict picture with the samples of a test, which answers what it is.
#pragma once

#include "standard-plugins/tests/effects/Effects.h"
#include "standard-plugins/tests/support/Canvas.h"

namespace effecttest
{

/// 24 bits deep, whatever depth it tells.
inline std::unique_ptr<Canvas> StrictPicture(u32 width, u32 height, const Samples& samples,
                                             u32 depth = 24)
{
    auto canvas = std::make_unique<Canvas>();
    RasterFunctionTable* table = canvas->Table();
    table->RasterGetInfo = [](TavrixImageHandle image, RasterInfo* info) -> int32_t {
        const auto* self = reinterpret_cast<const Canvas*>(image);
        info->width = self->width;
        info->height = self->height;
        info->depth = self->depth;
        return 1;
    };
    EXPECT_EQ(table->RasterAlloc(canvas->Handle(), width, height, 24), 1);
    for (u32 y = 0; y < height; ++y) {
        void* line = nullptr;
        u32 one = 1;
        EXPECT_EQ(table->RasterLockLines(canvas->Handle(), static_cast<i32>(y), &line, &one), 1);
        for (u32 i = 0; line && i < 3 * width; ++i)
            static_cast<u8*>(line)[i] = samples(i / 3, y, 2 - static_cast<int>(i % 3));
        canvas->UnlockAll();
    }
    canvas->depth = depth;
    canvas->locks = 0;
    return canvas;
}

} // namespace effecttest
