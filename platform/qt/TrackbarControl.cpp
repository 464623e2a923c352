// The class msctls_trackbar32: a thumb that is dragged along a groove, paged by a press beside it
// and moved by keys. The parent hears of what the person does by WM_HSCROLL, or WM_VSCROLL of an
// upright one, and never of what the program sets. It acts on messages alone, so that a procedure
// that the program has put in front sees everything first and may keep or change it.
#include "platform/qt/ControlMessages.h"
#include "platform/qt/ControlSupport.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/TrackbarWidget.h"
#include "platform/qt/Window.h"

#include <commctrl.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace tavrix::platform
{
namespace
{

constexpr int PagesOfRange = 5;

using Holding = TrackbarState::Holding;

std::shared_ptr<TrackbarState> StateOf(const Window& window)
{
    return std::static_pointer_cast<TrackbarState>(window.extra);
}

TrackbarWidget& WidgetOf(const Window& window)
{
    return *static_cast<TrackbarWidget*>(window.widget);
}

/// Puts the thumb somewhere inside the range; tells whether it was elsewhere.
bool MoveTo(const Window& window, long long position)
{
    TrackbarState& state = *StateOf(window);
    const int now = static_cast<int>(std::clamp<long long>(position, state.lowest, state.highest));
    const bool moved = now != state.position;
    state.position = now;
    WidgetOf(window).Follow();
    return moved;
}

/// Behind the call the control may be gone.
void TellParent(const Window& window, int code, int position = 0)
{
    const HWND parent = GetParent(window.handle);
    if (parent == nullptr)
        return;
    const UINT message = (window.style & TBS_VERT) != 0 ? WM_VSCROLL : WM_HSCROLL;
    SendMessageW(parent, message, MAKEWPARAM(code, position),
                 reinterpret_cast<LPARAM>(window.handle));
}

int PageOf(const TrackbarState& state)
{
    if (state.page > 0)
        return state.page;
    const long long range = static_cast<long long>(state.highest) - state.lowest;
    return static_cast<int>(std::max(1LL, range / PagesOfRange));
}

/// Where a code of a step leads to.
long long Target(const TrackbarState& state, int code)
{
    const long long at = state.position;
    switch (code) {
    case TB_LINEUP:
        return at - state.line;
    case TB_LINEDOWN:
        return at + state.line;
    case TB_PAGEUP:
        return at - PageOf(state);
    case TB_PAGEDOWN:
        return at + PageOf(state);
    case TB_TOP:
        return state.lowest;
    default:
        return state.highest;
    }
}

/// A step that leads nowhere is not told.
void Step(const Window& window, int code)
{
    if (MoveTo(window, Target(*StateOf(window), code)))
        TellParent(window, code);
}

std::optional<int> CodeOfKey(WPARAM key)
{
    switch (key) {
    case VK_LEFT:
    case VK_UP:
        return TB_LINEUP;
    case VK_RIGHT:
    case VK_DOWN:
        return TB_LINEDOWN;
    case VK_PRIOR:
        return TB_PAGEUP;
    case VK_NEXT:
        return TB_PAGEDOWN;
    case VK_HOME:
        return TB_TOP;
    case VK_END:
        return TB_BOTTOM;
    default:
        return std::nullopt;
    }
}

int AlongOf(const Window& window, LPARAM lParam)
{
    return WidgetOf(window).Along(
        QPoint(static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))));
}

void OnPress(const Window& window, int at)
{
    const HWND handle = window.handle;
    TrackbarState& state = *StateOf(window);
    TrackbarWidget& widget = WidgetOf(window);
    state.pressedAt = at;
    state.pressedPosition = state.position;
    const int thumb = widget.ThumbStart();
    if (at >= thumb && at < thumb + widget.ThumbLength()) {
        state.holding = Holding::Thumb;
        return;
    }
    const bool back = at < thumb;
    state.holding = back ? Holding::PageUp : Holding::PageDown;
    Step(window, back ? TB_PAGEUP : TB_PAGEDOWN);
    // The time until the next page begins when the parent is done with this one.
    const Window* still = FindWindowRecord(handle);
    if (still != nullptr && StateOf(*still)->holding != Holding::Nothing)
        WidgetOf(*still).BeginPaging();
}

void OnMove(const Window& window, int at)
{
    TrackbarState& state = *StateOf(window);
    if (state.holding != Holding::Thumb) {
        state.pressedAt = at; // paging goes on to where the pointer is now
        return;
    }
    const long long moved = WidgetOf(window).PositionsOf(at - state.pressedAt);
    if (MoveTo(window, state.pressedPosition + moved))
        TellParent(window, TB_THUMBTRACK, state.position);
}

/// The button came up, or nobody will tell when it does.
void LetGo(const Window& window)
{
    const HWND handle = window.handle;
    const auto state = StateOf(window);
    const Holding held = std::exchange(state->holding, Holding::Nothing);
    WidgetOf(window).EndPaging();
    if (held == Holding::Nothing)
        return;
    if (held == Holding::Thumb)
        TellParent(window, TB_THUMBPOSITION, state->position);
    if (const Window* still = FindWindowRecord(handle))
        TellParent(*still, TB_ENDTRACK);
}

void SetRange(const Window& window, int lowest, int highest)
{
    TrackbarState& state = *StateOf(window);
    state.lowest = lowest;
    state.highest = highest;
    MoveTo(window, state.position);
    WidgetOf(window).update();
}

/// Answers the size before; the page goes back to its own size by a negative one.
LRESULT SetStep(int& step, int before, LPARAM size, int fallback)
{
    step = size > 0 ? static_cast<int>(size) : fallback;
    return before;
}

bool HandleInput(const Window& window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_LBUTTONDOWN:
        OnPress(window, AlongOf(window, lParam));
        return true;
    case WM_MOUSEMOVE:
        if ((wParam & MK_LBUTTON) == 0)
            LetGo(window);
        else
            OnMove(window, AlongOf(window, lParam));
        return true;
    case WM_LBUTTONUP:
        LetGo(window);
        return true;
    case WM_KEYDOWN:
        if (const auto code = CodeOfKey(wParam))
            Step(window, *code);
        return true;
    case WM_KEYUP:
        if (CodeOfKey(wParam))
            TellParent(window, TB_ENDTRACK);
        return true;
    default:
        return false;
    }
}

} // namespace

void TrackbarPageAgain(HWND handle)
{
    const Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return;
    const TrackbarState& state = *StateOf(*window);
    const int thumb = WidgetOf(*window).ThumbStart();
    if (state.holding == Holding::PageUp && state.pressedAt < thumb)
        Step(*window, TB_PAGEUP);
    else if (state.holding == Holding::PageDown &&
             state.pressedAt >= thumb + WidgetOf(*window).ThumbLength())
        Step(*window, TB_PAGEDOWN);
}

QWidget* MakeTrackbarWidget(Window& window, QWidget* parent)
{
    auto state = std::make_shared<TrackbarState>();
    window.extra = state;
    const bool upright = (window.style & TBS_VERT) != 0;
    auto* widget = new TrackbarWidget(window.handle, upright, std::move(state), parent);
    widget->setEnabled((window.style & WS_DISABLED) == 0);
    return widget;
}

LRESULT CALLBACK TrackbarProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    LRESULT result = 0;
    bool changed = false;
    if (HandleCommonMessage(*window, message, wParam, lParam, &result, &changed)) {
        if (message == WM_ENABLE && wParam == 0)
            LetGo(*window);
        return result;
    }
    if (HandleInput(*window, message, wParam, lParam))
        return 0;
    TrackbarState& state = *StateOf(*window);
    const int value = static_cast<int>(lParam);
    switch (message) {
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS;
    case TBM_GETPOS:
        return state.position;
    case TBM_GETRANGEMIN:
        return state.lowest;
    case TBM_GETRANGEMAX:
        return state.highest;
    case TBM_SETPOS:
        MoveTo(*window, value);
        return 0;
    case TBM_SETRANGE:
        SetRange(*window, LOWORD(lParam), std::max<int>(LOWORD(lParam), HIWORD(lParam)));
        return 0;
    case TBM_SETRANGEMIN:
        SetRange(*window, value, std::max(value, state.highest));
        return 0;
    case TBM_SETRANGEMAX:
        SetRange(*window, std::min(value, state.lowest), value);
        return 0;
    case TBM_GETPAGESIZE:
        return PageOf(state);
    case TBM_SETPAGESIZE:
        return SetStep(state.page, PageOf(state), lParam, 0);
    case TBM_GETLINESIZE:
        return state.line;
    case TBM_SETLINESIZE:
        return SetStep(state.line, state.line, lParam, 1);
    default:
        return DefWindowProcW(handle, message, wParam, lParam);
    }
}

} // namespace tavrix::platform
