#include "standard-plugins/common/filtering/device/FilterDialog.h"

#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/filtering/device/FilterPane.h"

#include <string.h>

namespace
{

struct Asking {
    FilterPane pane;
    uint32_t values[mostDialogSettings];
};

void OnTouch(HWND dialog, const Asking& asking, POINT point)
{
    const uint8_t* pixel = PanePixelAt(asking.pane, dialog, point);
    uint32_t values[mostDialogSettings];
    memcpy(values, asking.values, sizeof values);
    if (pixel && filterPlugin.pick && filterPlugin.pick(values, pixel))
        ShowSettings(dialog, values);
}

INT_PTR Handle(void* self, HWND dialog, UINT message, WPARAM, LPARAM lParam)
{
    const auto* asking = static_cast<const Asking*>(self);
    switch (message) {
    case WM_PAINT:
        PaintPane(asking->pane, dialog);
        return TRUE;
    case WM_LBUTTONDOWN:
        OnTouch(dialog, *asking,
                {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))});
        return TRUE;
    default:
        return FALSE;
    }
}

void Follow(void* self, HWND dialog, const uint32_t* values)
{
    auto* asking = static_cast<Asking*>(self);
    memcpy(asking->values, values, filterPlugin.dialog.count * sizeof *values);
    FollowValues(&asking->pane, dialog, asking->values);
}

} // namespace

int32_t AskFilter(TavrixWindow owner, TavrixImageHandle image, RasterFunctionTable* rasters,
                  TavrixPutPropertyCallback put, TavrixGetPropertyCallback get)
{
    Asking asking = {};
    asking.pane.image = image;
    asking.pane.rasters = rasters;
    const DialogFollower follower = {&asking, Handle, Follow};
    const int32_t result = AskSettings(filterPlugin.dialog, owner, put, get, &follower);
    FreePane(&asking.pane);
    return result;
}
