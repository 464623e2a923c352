// The kinds that work on a picture: good ones, odd ones, and sizes and arguments of all sorts.

#include "kit/check/Check.h"
#include "kit/check/Text.h"
#include "kit/check/Workbench.h"

namespace plugincheck
{

void CheckWorks(CheckContext& context)
{
    Workbench bench(context);
    const std::string work = WorkExport(context.plugin.kind);
    for (const PictureShape& shape : {GoodShape, LargeShape}) {
        Raster picture;
        if (!MakePicture(&picture, shape))
            return;
        const i32 result =
            bench.Work(&picture, nullptr, {}, std::string("worked on ") + shape.words);
        if (result < 0) {
            context.Violation(work + " fails (result " + std::to_string(result) + ") on " +
                              shape.words + " and 24 bits a pixel, with which nothing is wrong.");
            return;
        }
    }
}

void CheckPictures(CheckContext& context)
{
    Workbench bench(context);
    for (const PictureShape& shape : OddShapes()) {
        Raster picture;
        if (MakePicture(&picture, shape))
            (void)bench.Work(&picture, nullptr, {}, std::string("worked on ") + shape.words);
    }
}

void CheckScaledSize(CheckContext& context)
{
    struct Size {
        u32 width;
        u32 height;
    };
    Workbench bench(context);
    for (const Size size : {Size{74, 46}, Size{1, 1}, Size{18, 100}, Size{65535, 1}, Size{1, 4000},
                            Size{37, 23}, Size{0, 0}, Size{0, 5}, Size{5, 0}}) {
        Raster picture;
        if (!MakePicture(&picture, GoodShape))
            return;
        const std::string words =
            std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels";
        const i32 result =
            bench.Resize(&picture, size.width, size.height, {}, "scaled a picture to " + words);
        const PictureState state = StateOf(&picture);
        if (result >= 0 && (state.width != size.width || state.height != size.height)) {
            context.Violation("ScaleImage reports success and leaves a picture of " +
                              std::to_string(state.width) + " x " + std::to_string(state.height) +
                              " where " + words + " were asked for.");
            return;
        }
    }
}

void CheckArguments(CheckContext& context)
{
    Workbench bench(context);
    for (const u32 argument : {0U, 1U, 2U, 16U, 256U, 257U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        Raster picture;
        if (MakePicture(&picture, GoodShape))
            (void)bench.Reduce(&picture, argument, {},
                               "reduced a picture with the argument " + Hex(argument));
    }
}

} // namespace plugincheck
