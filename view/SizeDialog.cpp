#include "view/SizeDialog.h"

#include "foundation/Language.h"
#include "resources/Ids.h"
#include "view/CanvasAnchor.h"
#include "view/DialogResource.h"
#include "view/SizeFields.h"

namespace
{

/// The dialog while it is open.
struct Canvas {
    SizeRequest* request;
    u32 anchor;
};

void ShowAnchor(HWND dialog, u32 id)
{
    const CanvasAnchor* anchor = FindCanvasAnchor(id);
    SetDlgItemTextW(dialog, ControlAnchorName,
                    anchor != nullptr ? InLanguage(anchor->name, anchor->japaneseName)
                                      : InLanguage(TEXT("Unknown"), TEXT("不明")));
}

void Start(HWND dialog, LPARAM record)
{
    SetWindowLongPtrW(dialog, DWLP_USER, record);
    const auto& canvas = *reinterpret_cast<const Canvas*>(record);
    ShowSize(dialog, canvas.request->old.width, canvas.request->old.height);
    FillUnits(dialog, false);
    ShowAnchor(dialog, canvas.anchor);
}

void Take(HWND dialog, const Canvas& canvas)
{
    ReadSize(dialog, &canvas.request->width, &canvas.request->height);
    canvas.request->anchor = canvas.anchor;
    EndDialog(dialog, 1);
}

void OnCommand(HWND dialog, u32 id)
{
    auto& canvas = *reinterpret_cast<Canvas*>(GetWindowLongPtrW(dialog, DWLP_USER));
    switch (id) {
    case IDOK:
        Take(dialog, canvas);
        break;
    case IDCANCEL:
        EndDialog(dialog, 0);
        break;
    default:
        if (FindCanvasAnchor(id) != nullptr) {
            canvas.anchor = id;
            ShowAnchor(dialog, id);
        }
        break;
    }
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        Start(dialog, lParam);
        return TRUE;
    case WM_COMMAND:
        OnCommand(dialog, LOWORD(wParam));
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

i32 ShowSizeDialog(HWND owner, HINSTANCE instance, SizeRequest* request)
{
    if (request == nullptr)
        return BadArgument;
    Canvas canvas = {request, request->anchor};
    const u32 id = IsJapanese() ? DialogSizeJapanese : DialogSizeEnglish;
    const INT_PTR result =
        DialogBoxIndirectParamW(instance, FindDialogResource(instance, id), owner, Procedure,
                                reinterpret_cast<LPARAM>(&canvas));
    if (result < 0)
        return Failed;
    return result == 1 ? Done : NothingDone;
}
