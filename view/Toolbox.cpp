#include "view/Toolbox.h"

#include "foundation/Allocator.h"
#include "foundation/Numbers.h"
#include "pixel/ScreenSurface.h"
#include "resources/Ids.h"
#include "view/DialogResource.h"
#include "view/WindowDrag.h"

#include <algorithm>
#include <memory>
#include <new>

namespace
{

constexpr i32 Width = 44;
constexpr i32 Height = 31;
constexpr i32 TitleHeight = 11;
constexpr i32 CellSize = 20;
constexpr u32 StripWidth = 180; // nine cells
constexpr u32 StripHeight = 20;
constexpr u32 StripDepth = 24;
constexpr u32 StripBytes = StripWidth * StripHeight * StripDepth / 8;
constexpr u32 FaceColor = 0xECE9D8FF; // what the strip's cells lie on
constexpr UINT ShowToolMessage = WM_APP;

/// The window's own, from its making to its end.
struct Toolbox {
    explicit Toolbox(const ToolboxParameters& given)
        : parameters(given), strip(&allocator), raster(&allocator)
    {
    }

    ToolboxParameters parameters;
    HWND window = nullptr;
    HeapAllocator allocator;
    Raster strip;
    Raster raster; // what the window shows
    ScreenSurface surface;
    DrawingContext context;
    i32 width = 0;
    i32 height = 0;
    WindowDrag drag;
};

Toolbox* ToolboxOf(HWND dialog)
{
    return reinterpret_cast<Toolbox*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

void LoadStrip(Toolbox& toolbox)
{
    const auto instance =
        reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(toolbox.window, GWLP_HINSTANCE));
    const HRSRC resource = FindResourceW(instance, MAKEINTRESOURCEW(BinaryTools), TEXT("binary"));
    if (resource == nullptr || SizeofResource(instance, resource) < StripBytes)
        return;
    const void* bytes = LockResource(LoadResource(instance, resource));
    // Without its strip the toolbox shows no tool, and works.
    if (toolbox.strip.Create(StripWidth, StripHeight, StripDepth, nullptr, nullptr) >= 1)
        (void)toolbox.strip.LoadRaw(bytes);
}

// The template's units follow the font, the pictures do not.
void TakePixelSizes(HWND dialog)
{
    SetWindowPos(dialog, nullptr, 0, 0, Width, Height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    MoveWindow(GetDlgItem(dialog, ControlToolTitle), 0, 0, Width, TitleHeight, FALSE);
    MoveWindow(GetDlgItem(dialog, ControlToolSettings), Width - CellSize - 2, TitleHeight,
               CellSize + 2, CellSize, FALSE);
}

void Start(HWND dialog, std::unique_ptr<Toolbox>& made)
{
    Toolbox& toolbox = *made;
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(made.release()));
    toolbox.window = dialog;
    SetWindowTextW(dialog, ToolboxTitle);
    TakePixelSizes(dialog);
    RECT place = {};
    GetWindowRect(dialog, &place);
    toolbox.width = place.right - place.left;
    toolbox.height = place.bottom - place.top;
    SetWindowPos(dialog, nullptr, GetSystemMetrics(SM_CXSCREEN) - toolbox.width,
                 TruncateToSigned(toolbox.parameters.clientOriginY), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);

    (void)toolbox.context.AttachWindow(dialog);
    const u32 width = static_cast<u32>(toolbox.width);
    const u32 height = static_cast<u32>(toolbox.height);
    // What could not be made stays away, and the operations on it do nothing.
    (void)toolbox.raster.Create(width, height, 24, nullptr, nullptr);
    (void)toolbox.surface.Create(width, height, 24);
    LoadStrip(toolbox);
}

i32 CellCorner(i32 cell)
{
    return static_cast<i32>(std::clamp<i64>(i64{CellSize} * cell, INT32_MIN, INT32_MAX));
}

// Any cell may be asked for: one outside the strip copies nothing, and -1, -1 one that the copy
// moves below the window.
void ShowTool(Toolbox& toolbox, i32 column, i32 row)
{
    toolbox.raster.FillAll(FaceColor);
    (void)toolbox.strip.CopyTo(CellCorner(column), CellCorner(row), CellSize, CellSize,
                               &toolbox.raster, 0, TitleHeight, SRCCOPY);
    PostMessageW(toolbox.window, WM_PAINT, 0, 0);
}

void Paint(Toolbox& toolbox)
{
    PAINTSTRUCT paint;
    BeginPaint(toolbox.window, &paint);
    (void)toolbox.surface.Present(&toolbox.raster, 0);
    BitBlt(toolbox.context.Handle(), 0, 0, toolbox.width, toolbox.height, toolbox.surface.GetDC(),
           0, 0, SRCCOPY);
    EndPaint(toolbox.window, &paint);
}

// The platform shall paint nothing over the picture.
INT_PTR KeepBackground(Toolbox& toolbox)
{
    PostMessageW(toolbox.window, WM_PAINT, 0, 0);
    return reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH));
}

void Press(Toolbox& toolbox, LPARAM point)
{
    if (static_cast<short>(HIWORD(point)) <= TitleHeight)
        toolbox.drag.Begin(toolbox.window, point);
    else if (toolbox.parameters.onClick != nullptr)
        toolbox.parameters.onClick();
}

void End(HWND dialog, Toolbox* toolbox)
{
    SetWindowLongPtrW(dialog, DWLP_USER, 0);
    delete toolbox;
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        Start(dialog, *reinterpret_cast<std::unique_ptr<Toolbox>*>(lParam));
        return FALSE; // the keyboard stays where it is
    }
    Toolbox* toolbox = ToolboxOf(dialog);
    if (toolbox == nullptr)
        return FALSE;
    switch (message) {
    case ShowToolMessage:
        ShowTool(*toolbox, static_cast<i32>(wParam), static_cast<i32>(lParam));
        return TRUE;
    case WM_PAINT:
        Paint(*toolbox);
        return TRUE;
    case WM_CTLCOLORDLG:
        return KeepBackground(*toolbox);
    case WM_LBUTTONDOWN:
        Press(*toolbox, lParam);
        return TRUE;
    case WM_MOUSEMOVE:
        toolbox->drag.Follow(dialog, lParam);
        return TRUE;
    case WM_LBUTTONUP:
        toolbox->drag.End(dialog, lParam);
        return TRUE;
    case WM_DESTROY:
        End(dialog, toolbox);
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

HWND CreateToolbox(HWND owner, HINSTANCE instance, const ToolboxParameters& parameters)
{
    std::unique_ptr<Toolbox> made(new (std::nothrow) Toolbox(parameters));
    if (made == nullptr)
        return nullptr;
    return CreateDialogIndirectParamW(instance, FindDialogResource(instance, DialogToolbox), owner,
                                      Procedure, reinterpret_cast<LPARAM>(&made));
}
