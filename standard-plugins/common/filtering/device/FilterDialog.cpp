#include "standard-plugins/common/filtering/device/FilterDialog.h"

#include "standard-plugins/common/device/PluginDialog.h"
#include "standard-plugins/common/filtering/device/FilterPreview.h"

#include <string.h>

namespace
{

struct Asking {
    TavrixImageHandle image;
    RasterFunctionTable* rasters;
    FilterPreview preview;
    bool taken;
    uint32_t values[mostDialogSettings];
};

RECT PreviewPlace(HWND dialog)
{
    RECT place = {};
    const HWND control = GetDlgItem(dialog, filterPlugin.previewControl);
    if (!control)
        return place;
    GetWindowRect(control, &place);
    POINT corner = {place.left, place.top};
    ScreenToClient(dialog, &corner);
    return {corner.x, corner.y, corner.x + place.right - place.left,
            corner.y + place.bottom - place.top};
}

void OnPaint(HWND dialog, const Asking& asking)
{
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(dialog, &paint);
    DrawPreview(asking.preview, dc, PreviewPlace(dialog));
    EndPaint(dialog, &paint);
}

void OnTouch(HWND dialog, const Asking& asking, POINT point)
{
    const uint8_t* pixel = PreviewPixelAt(asking.preview, PreviewPlace(dialog), point);
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
        OnPaint(dialog, *asking);
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
    const RECT place = PreviewPlace(dialog);
    if (!asking->taken) {
        asking->taken = true;
        TakePreview(&asking->preview, {place.right - place.left, place.bottom - place.top},
                    filterPlugin.sample, asking->image, asking->rasters);
    }
    memcpy(asking->values, values, filterPlugin.dialog.count * sizeof *values);
    ChangePreview(&asking->preview, filterPlugin.work, asking->values);
    InvalidateRect(dialog, &place, FALSE);
}

} // namespace

int32_t AskFilter(TavrixWindow owner, TavrixImageHandle image, RasterFunctionTable* rasters,
                  TavrixPutPropertyCallback put, TavrixGetPropertyCallback get)
{
    Asking asking = {};
    asking.image = image;
    asking.rasters = rasters;
    const DialogFollower follower = {&asking, Handle, Follow};
    const int32_t result = AskSettings(filterPlugin.dialog, owner, put, get, &follower);
    FreePreview(&asking.preview);
    return result;
}
