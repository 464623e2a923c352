// PRINT: without a window to own its dialogs, stopped at once, on pictures of all sorts. What it
// answers is of no account, since the host does not look at it.

#include "kit/check/Check.h"
#include "kit/check/Workbench.h"

namespace plugincheck
{

void CheckPrints(CheckContext& context)
{
    Workbench bench(context);
    std::vector<PictureShape> shapes = OddShapes();
    shapes.push_back(GoodShape);
    Conditions stop;
    stop.refuseProgressFrom = 1;
    for (const PictureShape& shape : shapes) {
        Raster picture;
        if (MakePicture(&picture, shape))
            (void)bench.Work(&picture, nullptr, stop,
                             std::string("printed ") + shape.words +
                                 " without an owner, stopped at its first report");
    }
}

} // namespace plugincheck
