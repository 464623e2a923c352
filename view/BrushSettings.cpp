#include "view/BrushSettings.h"

#include "foundation/Language.h"
#include "pixel/ScreenSurface.h"
#include "resources/Ids.h"
#include "view/DialogResource.h"

#include <commctrl.h>

namespace
{

constexpr u32 PreviewTimer = 10;
constexpr u32 PreviewMilliseconds = 1000;
constexpr u32 PreviewColor = 0xFFFFFFFF;

/// A parameter of the brush, and its trackbar.
struct Parameter {
    i32 bar;
    u32 lowest;
    u32 highest;
    u32 BrushInfo::*value;
};

constexpr Parameter Parameters[] = {
    {ControlBrushRadius, 1, 100, &BrushInfo::radius},
    {ControlBrushStrength, 1, 256, &BrushInfo::strength},
    {ControlBrushDiffusion, 1, 256, &BrushInfo::diffusion},
};

/// The dialog while it is open.
struct Settings {
    explicit Settings(Brush& shown) : brush(shown)
    {
        kept.size = sizeof(kept);
        (void)brush.GetInfo(&kept);
    }

    Brush& brush;
    BrushInfo kept = {}; // for "REDO"
    HWND dialog = nullptr;
    HeapAllocator allocator;
    Raster preview{&allocator};
    ScreenSurface surface;
    bool hasPreview = false;
    i32 previewWidth = 0;
    i32 previewHeight = 0;
};

Settings* SettingsOf(HWND dialog)
{
    return reinterpret_cast<Settings*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

void SetBars(const Settings& settings)
{
    for (const Parameter& parameter : Parameters)
        SendDlgItemMessageW(settings.dialog, parameter.bar, TBM_SETPOS, TRUE,
                            static_cast<LPARAM>(settings.kept.*parameter.value));
}

bool MakePreview(Settings& settings)
{
    RECT place = {};
    GetWindowRect(GetDlgItem(settings.dialog, ControlBrushPreview), &place);
    settings.previewWidth = place.right - place.left;
    settings.previewHeight = place.bottom - place.top;
    const u32 width = static_cast<u32>(settings.previewWidth);
    const u32 height = static_cast<u32>(settings.previewHeight);
    return settings.preview.Create(width, height, 24, nullptr, nullptr) >= 1 &&
           settings.surface.Create(width, height, 24) >= 1;
}

void FreePreview(Settings& settings)
{
    settings.hasPreview = false;
    settings.preview.Reset();
    settings.surface.Destroy();
}

void StartPreview(Settings& settings)
{
    settings.hasPreview = MakePreview(settings);
    if (settings.hasPreview) {
        settings.preview.FillAll(PreviewColor);
        SetTimer(settings.dialog, PreviewTimer, PreviewMilliseconds, nullptr);
        return;
    }
    FreePreview(settings);
    MessageBoxW(settings.dialog,
                InLanguage(TEXT("Not enough memory to allocate for tbe brush-view"),
                           TEXT("ブラシビューのためのメモリが確保できませんでした。")),
                InLanguage(TEXT("WARNING"), TEXT("警告")), MB_ICONEXCLAMATION);
}

// An empty white field: the brush itself is not drawn, and that is meant.
void ShowPreview(Settings& settings)
{
    const HWND control = GetDlgItem(settings.dialog, ControlBrushPreview);
    DrawingContext target;
    if (!settings.hasPreview || control == nullptr || target.AttachWindow(control) < 1)
        return;
    settings.preview.FillAll(PreviewColor);
    (void)settings.surface.Present(&settings.preview, 0);
    BitBlt(target.Handle(), 0, 0, settings.previewWidth, settings.previewHeight,
           settings.surface.GetDC(), 0, 0, SRCCOPY);
}

void Start(HWND dialog, Settings& settings)
{
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&settings));
    settings.dialog = dialog;
    for (const Parameter& parameter : Parameters)
        SendDlgItemMessageW(dialog, parameter.bar, TBM_SETRANGE, TRUE,
                            MAKELPARAM(parameter.lowest, parameter.highest));
    SetBars(settings);
    StartPreview(settings);
    PostMessageW(dialog, WM_TIMER, PreviewTimer, 0); // the first picture need not wait
}

void TakeBars(Settings& settings)
{
    BrushInfo taken = {};
    for (const Parameter& parameter : Parameters)
        taken.*parameter.value =
            static_cast<u32>(SendDlgItemMessageW(settings.dialog, parameter.bar, TBM_GETPOS, 0, 0));
    // A brush that cannot be made paints nothing until the next one.
    (void)settings.brush.Create(taken.radius, taken.strength, taken.diffusion);
}

void GiveUp(Settings& settings)
{
    KillTimer(settings.dialog, PreviewTimer);
    FreePreview(settings);
}

void OnCommand(Settings& settings, u32 id)
{
    switch (id) {
    case IDOK:
        GiveUp(settings);
        TakeBars(settings);
        EndDialog(settings.dialog, 1);
        break;
    case IDCANCEL:
        GiveUp(settings);
        EndDialog(settings.dialog, 0);
        break;
    case ControlBrushRedo: // hidden by its style, and working
        SetBars(settings);
        break;
    default:
        break;
    }
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        Start(dialog, *reinterpret_cast<Settings*>(lParam));
        return TRUE;
    }
    Settings* settings = SettingsOf(dialog);
    if (settings == nullptr)
        return FALSE;
    switch (message) {
    case WM_COMMAND:
        OnCommand(*settings, LOWORD(wParam));
        return TRUE;
    case WM_TIMER:
        ShowPreview(*settings);
        return TRUE;
    case WM_DESTROY:
        GiveUp(*settings);
        return FALSE;
    default:
        return FALSE;
    }
}

} // namespace

i32 ShowBrushSettings(HWND owner, HINSTANCE instance, Brush* brush)
{
    if (brush == nullptr)
        return BadArgument;
    Settings settings(*brush);
    const LPCDLGTEMPLATEW dialogTemplate =
        FindDialogResource(instance, IsJapanese() ? DialogBrushJapanese : DialogBrushEnglish);
    const INT_PTR result = DialogBoxIndirectParamW(instance, dialogTemplate, owner, Procedure,
                                                   reinterpret_cast<LPARAM>(&settings));
    if (result < 0)
        return Failed;
    return result == 1 ? Done : NothingDone;
}
