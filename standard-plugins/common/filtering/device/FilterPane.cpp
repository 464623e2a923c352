#include "standard-plugins/common/filtering/device/FilterPane.h"

namespace
{

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

} // namespace

void FollowValues(FilterPane* pane, HWND dialog, const uint32_t* values)
{
    const RECT place = PreviewPlace(dialog);
    if (!pane->taken) {
        pane->taken = true;
        TakePreview(&pane->preview, {place.right - place.left, place.bottom - place.top},
                    filterPlugin.sample, pane->image, pane->rasters);
    }
    ChangePreview(&pane->preview, filterPlugin.work, values);
    InvalidateRect(dialog, &place, FALSE);
}

void PaintPane(const FilterPane& pane, HWND dialog)
{
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(dialog, &paint);
    DrawPreview(pane.preview, dc, PreviewPlace(dialog));
    EndPaint(dialog, &paint);
}

const uint8_t* PanePixelAt(const FilterPane& pane, HWND dialog, POINT point)
{
    return PreviewPixelAt(pane.preview, PreviewPlace(dialog), point);
}

void FreePane(FilterPane* pane)
{
    FreePreview(&pane->preview);
}
