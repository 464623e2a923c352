#include "view/Colorbox.h"

#include "foundation/Numbers.h"
#include "image/DrawingContext.h"
#include "resources/Ids.h"
#include "view/ColorChooser.h"
#include "view/DialogResource.h"
#include "view/Toolbox.h"
#include "view/WindowDrag.h"

#include <memory>
#include <new>

namespace
{

constexpr i32 Width = 44;
constexpr i32 Height = 36;
constexpr i32 TitleHeight = 11;
constexpr i32 FirstRowBelowTitle = 12; // a press above it drags
constexpr i32 SwatchWidth = 19;
constexpr i32 SwatchHeight = 21;
constexpr i32 SwatchTop = 13;
constexpr i32 FaceLeft = 2;
constexpr i32 BackgroundLeft = 23;
constexpr COLORREF DialogColor = 14215660; // 0xD8E9EC: red 236, green 233, blue 216
constexpr UINT ColorsChangedMessage = WM_APP;

/// One of the two colours. A brush that could not be made paints nothing.
struct Swatch {
    ~Swatch() { DropBrush(); }

    void DropBrush()
    {
        if (brush != nullptr)
            DeleteObject(brush);
        brush = nullptr;
    }
    void MakeBrush()
    {
        DropBrush();
        if (color != nullptr)
            brush = CreateSolidBrush(ColorRefOfWord(*color));
    }
    void Attach(HWND dialog, i32 id)
    {
        control = GetDlgItem(dialog, id);
        // Without a window it would be the screen's context.
        if (control != nullptr)
            (void)context.AttachWindow(control);
        MakeBrush();
    }
    void Paint() const
    {
        RECT area = {};
        GetClientRect(control, &area);
        if (context.Handle() != nullptr && brush != nullptr)
            FillRect(context.Handle(), &area, brush);
    }

    u32* color = nullptr;
    HWND control = nullptr;
    DrawingContext context;
    HBRUSH brush = nullptr;
};

/// The window's own, from its making to its end.
struct Colorbox {
    explicit Colorbox(const ColorboxParameters& given) : parameters(given)
    {
        face.color = given.faceColor;
        background.color = given.backgroundColor;
    }
    ~Colorbox()
    {
        if (dialogBrush != nullptr)
            DeleteObject(dialogBrush);
    }
    Colorbox(const Colorbox&) = delete;
    Colorbox& operator=(const Colorbox&) = delete;

    ColorboxParameters parameters;
    HWND window = nullptr;
    Swatch face;
    Swatch background;
    HBRUSH dialogBrush = CreateSolidBrush(DialogColor);
    WindowDrag drag;
};

Colorbox* ColorboxOf(HWND dialog)
{
    return reinterpret_cast<Colorbox*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

// The template's units follow the font, the title's picture does not.
void TakePixelSizes(HWND dialog)
{
    SetWindowPos(dialog, nullptr, 0, 0, Width, Height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    MoveWindow(GetDlgItem(dialog, ControlToolTitle), 0, 0, Width, TitleHeight, FALSE);
    MoveWindow(GetDlgItem(dialog, ControlFaceSwatch), FaceLeft, SwatchTop, SwatchWidth,
               SwatchHeight, FALSE);
    MoveWindow(GetDlgItem(dialog, ControlBackgroundSwatch), BackgroundLeft, SwatchTop, SwatchWidth,
               SwatchHeight, FALSE);
}

// Below the toolbox; where that would stand when there is none.
void Place(const Colorbox& colorbox)
{
    i32 x = GetSystemMetrics(SM_CXSCREEN) - Width;
    i32 y = TruncateToSigned(colorbox.parameters.clientOriginY);
    RECT toolbox = {};
    if (GetWindowRect(FindWindowW(nullptr, ToolboxTitle), &toolbox)) {
        x = toolbox.left;
        y = toolbox.bottom;
    }
    SetWindowPos(colorbox.window, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Start(HWND dialog, std::unique_ptr<Colorbox>& made)
{
    Colorbox& colorbox = *made;
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(made.release()));
    colorbox.window = dialog;
    SetWindowTextW(dialog, ColorboxTitle);
    TakePixelSizes(dialog);
    Place(colorbox);
    colorbox.background.Attach(dialog, ControlBackgroundSwatch);
    colorbox.face.Attach(dialog, ControlFaceSwatch);
    ShowWindow(dialog, SW_SHOW);
}

void TakeColors(Colorbox& colorbox)
{
    colorbox.background.MakeBrush();
    colorbox.face.MakeBrush();
    PostMessageW(colorbox.window, WM_PAINT, 0, 0);
}

void Paint(const Colorbox& colorbox)
{
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(colorbox.window, &paint);
    colorbox.background.Paint();
    colorbox.face.Paint();
    RECT area = {};
    GetClientRect(colorbox.window, &area);
    if (colorbox.dialogBrush != nullptr)
        FillRect(dc, &area, colorbox.dialogBrush);
    EndPaint(colorbox.window, &paint);
}

INT_PTR StaticBrush(const Colorbox& colorbox, HWND control)
{
    SendMessageW(colorbox.window, WM_PAINT, 0, 0);
    for (const Swatch* swatch : {&colorbox.face, &colorbox.background})
        if (control != nullptr && control == swatch->control)
            return reinterpret_cast<INT_PTR>(swatch->brush);
    return 0;
}

void Pick(Colorbox& colorbox, Swatch& swatch)
{
    const HWND window = colorbox.window;
    if (colorbox.parameters.onPick == nullptr || swatch.color == nullptr ||
        colorbox.parameters.onPick(window, swatch.color) == 0)
        return;
    // The window may have gone while the person chose.
    if (ColorboxOf(window) != &colorbox)
        return;
    swatch.MakeBrush();
    PostMessageW(window, WM_PAINT, 0, 0);
}

void OnCommand(Colorbox& colorbox, u32 id)
{
    if (id == ControlBackgroundSwatch)
        Pick(colorbox, colorbox.background);
    else if (id == ControlFaceSwatch)
        Pick(colorbox, colorbox.face);
}

void Press(Colorbox& colorbox, LPARAM point)
{
    if (static_cast<short>(HIWORD(point)) < FirstRowBelowTitle)
        colorbox.drag.Begin(colorbox.window, point);
}

void End(HWND dialog, Colorbox* colorbox)
{
    SetWindowLongPtrW(dialog, DWLP_USER, 0);
    delete colorbox;
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        Start(dialog, *reinterpret_cast<std::unique_ptr<Colorbox>*>(lParam));
        return FALSE; // the keyboard stays where it is
    }
    Colorbox* colorbox = ColorboxOf(dialog);
    if (colorbox == nullptr)
        return FALSE;
    switch (message) {
    case ColorsChangedMessage:
        TakeColors(*colorbox);
        return TRUE;
    case WM_PAINT:
        Paint(*colorbox);
        return TRUE;
    case WM_CTLCOLORDLG:
        return reinterpret_cast<INT_PTR>(colorbox->dialogBrush);
    case WM_CTLCOLORSTATIC:
        return StaticBrush(*colorbox, reinterpret_cast<HWND>(lParam));
    case WM_COMMAND:
        OnCommand(*colorbox, LOWORD(wParam));
        return TRUE;
    case WM_LBUTTONDOWN:
        Press(*colorbox, lParam);
        return TRUE;
    case WM_MOUSEMOVE:
        colorbox->drag.Follow(dialog, lParam);
        return TRUE;
    case WM_LBUTTONUP:
        colorbox->drag.End(dialog, lParam);
        return TRUE;
    case WM_DESTROY:
        End(dialog, colorbox);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

HWND CreateColorbox(HWND owner, HINSTANCE instance, const ColorboxParameters& parameters)
{
    std::unique_ptr<Colorbox> made(new (std::nothrow) Colorbox(parameters));
    if (made == nullptr)
        return nullptr;
    return CreateDialogIndirectParamW(instance, FindDialogResource(instance, DialogColorbox), owner,
                                      Procedure, reinterpret_cast<LPARAM>(&made));
}
