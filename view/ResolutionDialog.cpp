#include "view/ResolutionDialog.h"

#include "foundation/Language.h"
#include "foundation/Numbers.h"
#include "resources/Ids.h"
#include "view/DialogResource.h"
#include "view/ResizeCalculator.h"
#include "view/SizeFields.h"

namespace
{

constexpr u32 NumberCapacity = 64; // characters; a longer number is past all limits before

/// The dialog while it is open.
struct Resolution {
    ResolutionRequest* request;
    ResizeCalculator calculator;
};

/// A direction with its controls.
struct Side {
    const ResizeSide& side;
    const ResizeSide& other;
    i32 field;
    i32 otherField;
    i32 list;
};

constexpr Side WidthControls = {ResizeWidth, ResizeHeight, ControlWidth, ControlHeight,
                                ControlWidthUnit};
constexpr Side HeightControls = {ResizeHeight, ResizeWidth, ControlHeight, ControlWidth,
                                 ControlHeightUnit};

void Show(ResizeCalculator& calculator, const ResizeSide& side, i32 field)
{
    calculator.widthLive = 0;
    calculator.heightLive = 0;
    SetDlgItemInt(calculator.dialog, field, SizeToShow(calculator, side), FALSE);
    calculator.widthLive = 1;
    calculator.heightLive = 1;
}

void OnTextChange(ResizeCalculator& calculator, const Side& changed)
{
    if (calculator.*changed.side.live == 0)
        return;
    calculator.*changed.side.live = 0;
    WCHAR text[NumberCapacity] = {};
    f64 value = 0;
    GetDlgItemTextW(calculator.dialog, changed.field, text, NumberCapacity);
    (void)ParseReal(text, &value);
    TypeSize(calculator, changed.side, value);
    Show(calculator, changed.side, changed.field);
    if (calculator.keepAspect != 0) {
        KeepAspect(calculator, changed.side);
        Show(calculator, changed.other, changed.otherField);
    }
    calculator.*changed.side.live = 1;
}

void OnUnitChange(ResizeCalculator& calculator, const Side& changed)
{
    const LRESULT row = SendDlgItemMessageW(calculator.dialog, changed.list, CB_GETCURSEL, 0, 0);
    calculator.*changed.side.unit = row == 1 ? ResizeCalculator::Percent : ResizeCalculator::Pixels;
    Show(calculator, changed.side, changed.field);
}

void OnKeepAspect(ResizeCalculator& calculator)
{
    // Meant: exactly these two. A box that is ticked without the keyboard on it counts as cleared.
    const LRESULT state =
        SendDlgItemMessageW(calculator.dialog, ControlKeepAspect, BM_GETSTATE, 0, 0);
    if (state != (BST_CHECKED | BST_FOCUS)) {
        calculator.keepAspect = 0;
    } else if (calculator.keepAspect == 0) {
        calculator.keepAspect = 1;
        // Meant: these are pixels, whatever unit a field has, and they count as typed. The second
        // stands where it differs from what the first has made of its field.
        ShowSize(calculator.dialog, calculator.baseWidth, calculator.baseHeight);
    }
}

void FillPlugins(HWND dialog, const ResolutionRequest& request)
{
    const HWND list = GetDlgItem(dialog, ControlScalePlugin);
    for (u32 i = 0; i < PluginMenuLimit; ++i) {
        Variant item = {};
        item.type = VariantUnsigned;
        if (request.names->GetAt(i, &item) < Done || item.type != VariantUnsigned)
            break;
        // Each before the last one, so that they come out in the reverse order. That is meant.
        SendMessageW(list, CB_INSERTSTRING, 0, reinterpret_cast<LPARAM>(item.name));
        SendMessageW(list, CB_SETITEMDATA, 0, static_cast<LPARAM>(item.value));
    }
    const LRESULT count = SendMessageW(list, CB_GETCOUNT, 0, 0);
    for (LRESULT row = 0; row < count; ++row) {
        const LRESULT index = SendMessageW(list, CB_GETITEMDATA, static_cast<WPARAM>(row), 0);
        if (static_cast<i32>(index) == request.preselected)
            SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(row), 0);
    }
}

void Start(HWND dialog, Resolution& resolution)
{
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&resolution));
    ResizeCalculator& calculator = resolution.calculator;
    calculator.dialog = dialog;
    calculator.baseWidth = resolution.request->info->width;
    calculator.baseHeight = resolution.request->info->height;
    FillUnits(dialog, true);
    FillPlugins(dialog, *resolution.request);
    SendDlgItemMessageW(dialog, ControlKeepAspect, BM_SETCHECK, BST_CHECKED, 0);
    Show(calculator, ResizeWidth, ControlWidth);
    Show(calculator, ResizeHeight, ControlHeight);
}

/// The index of the plugin that is chosen; -1 for none.
i32 ChosenPlugin(HWND dialog)
{
    const HWND list = GetDlgItem(dialog, ControlScalePlugin);
    const LRESULT row = SendMessageW(list, CB_GETCURSEL, 0, 0);
    if (row < 0)
        return -1;
    return static_cast<i32>(SendMessageW(list, CB_GETITEMDATA, static_cast<WPARAM>(row), 0));
}

void Take(const Resolution& resolution)
{
    const ResizeCalculator& calculator = resolution.calculator;
    resolution.request->info->width = WantedSize(calculator, ResizeWidth);
    resolution.request->info->height = WantedSize(calculator, ResizeHeight);
    resolution.request->chosen = ChosenPlugin(calculator.dialog);
    EndDialog(calculator.dialog, 1);
}

void OnCommand(Resolution& resolution, u32 id, u32 code)
{
    ResizeCalculator& calculator = resolution.calculator;
    switch (id) {
    case ControlWidth:
        if (code == EN_CHANGE)
            OnTextChange(calculator, WidthControls);
        break;
    case ControlHeight:
        if (code == EN_CHANGE)
            OnTextChange(calculator, HeightControls);
        break;
    case ControlWidthUnit:
        if (code == CBN_SELCHANGE)
            OnUnitChange(calculator, WidthControls);
        break;
    case ControlHeightUnit:
        if (code == CBN_SELCHANGE)
            OnUnitChange(calculator, HeightControls);
        break;
    case ControlKeepAspect:
        if (code == BN_CLICKED || code == BN_SETFOCUS || code == BN_KILLFOCUS)
            OnKeepAspect(calculator);
        break;
    case IDOK:
        Take(resolution);
        break;
    case IDCANCEL:
        EndDialog(calculator.dialog, 0);
        break;
    default:
        break;
    }
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        Start(dialog, *reinterpret_cast<Resolution*>(lParam));
        return TRUE;
    }
    auto* resolution = reinterpret_cast<Resolution*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message != WM_COMMAND || resolution == nullptr)
        return FALSE;
    OnCommand(*resolution, LOWORD(wParam), HIWORD(wParam));
    return TRUE;
}

} // namespace

i32 ShowResolutionDialog(HWND owner, HINSTANCE instance, ResolutionRequest* request)
{
    if (request == nullptr || request->info == nullptr || request->names == nullptr)
        return BadArgument;
    Resolution resolution = {request, {}};
    const u32 id = IsJapanese() ? DialogResolutionJapanese : DialogResolutionEnglish;
    const INT_PTR result =
        DialogBoxIndirectParamW(instance, FindDialogResource(instance, id), owner, Procedure,
                                reinterpret_cast<LPARAM>(&resolution));
    if (result < 0)
        return Failed;
    return result == 1 ? Done : NothingDone;
}
