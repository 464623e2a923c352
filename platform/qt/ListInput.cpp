// What pointer and keys do to the rows of a list. The program hears of every change while it is
// going on and may end the control, so each step looks the window up again.
#include "platform/qt/ControlSupport.h"
#include "platform/qt/ListControl.h"

#include <QPoint>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

// A small keyboard has no keypad, so both signs do.
constexpr int PlusKey = 0xBB;
constexpr int KeypadPlus = 0x6B;

bool IsSingle(const ListState& state)
{
    return (state.style & LVS_SINGLESEL) != 0;
}

QPoint PointOf(LPARAM lParam)
{
    return {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}

/// Selects the rows from one to another and no other.
bool SelectOnly(HWND list, int first, int last)
{
    for (int row = 0;; ++row) {
        Window* window = FindWindowRecord(list);
        if (window == nullptr)
            return false;
        if (row >= ListStateOf(*window).model.RowCount())
            return true;
        const bool inside = row >= first && row <= last;
        if (!ChangeState(list, row, inside ? LVIS_SELECTED : 0, LVIS_SELECTED))
            return false;
    }
}

void SetAnchor(HWND list, int row)
{
    if (Window* window = FindWindowRecord(list))
        ListStateOf(*window).anchor = row;
}

/// One row alone is selected and has the focus. The others lose the selection first.
bool ChooseRow(HWND list, int row)
{
    SetAnchor(list, row);
    return SelectOnly(list, row, row) && ChangeState(list, row, LVIS_FOCUSED, LVIS_FOCUSED);
}

/// With Shift: everything between the row that was chosen last and this one.
bool ChooseRange(HWND list, int row)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr)
        return false;
    const ListState& state = ListStateOf(*window);
    const int anchor = state.model.HasRow(state.anchor) ? state.anchor : row;
    SetAnchor(list, anchor);
    return SelectOnly(list, std::min(anchor, row), std::max(anchor, row)) &&
           ChangeState(list, row, LVIS_FOCUSED, LVIS_FOCUSED);
}

bool ToggleRow(HWND list, int row)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr || !ListStateOf(*window).model.HasRow(row))
        return false;
    SetAnchor(list, row);
    const UINT state = ListStateOf(*window).model.State(row) ^ LVIS_SELECTED;
    return ChangeState(list, row, state | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
}

void Choose(HWND list, int row, bool shift, bool control)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr)
        return;
    const bool several = !IsSingle(ListStateOf(*window));
    if (row < 0) {
        if (!several || (!shift && !control))
            SelectOnly(list, -1, -1);
    } else if (several && shift) {
        ChooseRange(list, row);
    } else if (several && control) {
        ToggleRow(list, row);
    } else {
        ChooseRow(list, row);
    }
}

void NotifyClick(HWND list, UINT code, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr)
        return;
    const QPoint point = PointOf(lParam);
    NMITEMACTIVATE record{};
    record.hdr.code = code;
    record.iItem = ListWidgetOf(*window).RowAt(point);
    record.iSubItem = record.iItem >= 0 ? ListWidgetOf(*window).ColumnAt(point) : 0;
    record.ptAction = {point.x(), point.y()};
    if (record.iItem >= 0)
        record.lParam = ListStateOf(*window).model.Tag(record.iItem);
    record.uKeyFlags = (wParam & MK_SHIFT) != 0 ? LVKF_SHIFT : 0u;
    record.uKeyFlags |= (wParam & MK_CONTROL) != 0 ? LVKF_CONTROL : 0u;
    NotifyParent(list, &record.hdr);
}

void OnPress(HWND list, WPARAM wParam, LPARAM lParam)
{
    SetFocus(list);
    Window* window = FindWindowRecord(list);
    if (window == nullptr)
        return;
    const int row = ListWidgetOf(*window).RowAt(PointOf(lParam));
    ListStateOf(*window).pressedRow = row;
    Choose(list, row, (wParam & MK_SHIFT) != 0, (wParam & MK_CONTROL) != 0);
}

void OnRelease(HWND list, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr)
        return;
    ListState& state = ListStateOf(*window);
    const int pressed = state.pressedRow;
    state.pressedRow = ListState::NoPress;
    // A press that is dragged away is no click.
    if (pressed != ListState::NoPress && ListWidgetOf(*window).RowAt(PointOf(lParam)) == pressed)
        NotifyClick(list, NM_CLICK, wParam, lParam);
}

void OnDoublePress(HWND list, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr)
        return;
    // The second press may have slipped to another row than the first.
    ListState& state = ListStateOf(*window);
    const int row = ListWidgetOf(*window).RowAt(PointOf(lParam));
    if (row >= 0 && row != state.model.Focus())
        OnPress(list, wParam, lParam);
    if (Window* still = FindWindowRecord(list))
        ListStateOf(*still).pressedRow = ListState::NoPress; // its end is no click any more
    NotifyClick(list, NM_DBLCLK, wParam, lParam);
}

void MoveTo(HWND list, int row, bool shift, bool control)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr)
        return;
    ListWidgetOf(*window).EnsureVisible(row, false);
    if (control && !shift && !IsSingle(ListStateOf(*window)))
        ChangeState(list, row, LVIS_FOCUSED, LVIS_FOCUSED);
    else
        Choose(list, row, shift, false);
}

bool OnKey(HWND list, int key)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr)
        return true;
    ListState& state = ListStateOf(*window);
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    const bool control = GetKeyState(VK_CONTROL) < 0;
    const int focus = state.model.Focus();
    if (state.model.RowCount() == 0)
        return true;
    switch (key) {
    case VK_LEFT:
    case VK_RIGHT:
        if ((state.style & LVS_TYPEMASK) == LVS_REPORT) {
            ListWidgetOf(*window).ScrollSideways(key == VK_RIGHT);
            return true;
        }
        [[fallthrough]];
    case VK_UP:
    case VK_DOWN:
    case VK_HOME:
    case VK_END:
    case VK_PRIOR:
    case VK_NEXT:
        MoveTo(list, focus < 0 ? 0 : ListWidgetOf(*window).Neighbour(focus, key), shift, control);
        return true;
    case PlusKey:
    case KeypadPlus:
        if (!control || (state.style & LVS_TYPEMASK) != LVS_REPORT)
            return false;
        ListWidgetOf(*window).FitColumns();
        return true;
    case VK_SPACE:
        if (focus >= 0 && state.typed.IsIdle()) {
            if (control && !IsSingle(state))
                ToggleRow(list, focus);
            else
                ChangeState(list, focus, LVIS_SELECTED, LVIS_SELECTED);
        }
        return true;
    default:
        return false;
    }
}

/// Goes to the next row that begins with what was typed; the same letter again goes on to the next.
void OnCharacter(HWND list, WPARAM unit)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr || unit < VK_SPACE)
        return;
    ListState& state = ListStateOf(*window);
    if (unit == VK_SPACE && state.typed.IsIdle())
        return; // it selects
    const ListModel& model = state.model;
    const int row = state.typed.Take(
        static_cast<char16_t>(unit), model.RowCount(), model.Focus(),
        [&model](int at) -> const std::u16string& { return model.Row(at).item.text; });
    if (row >= 0)
        MoveTo(list, row, false, false);
}

} // namespace

bool HandleListInput(HWND list, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_LBUTTONDOWN:
        OnPress(list, wParam, lParam);
        return true;
    case WM_LBUTTONUP:
        OnRelease(list, wParam, lParam);
        return true;
    case WM_LBUTTONDBLCLK:
        OnDoublePress(list, wParam, lParam);
        return true;
    case WM_KEYDOWN:
        return OnKey(list, static_cast<int>(wParam));
    case WM_CHAR:
        OnCharacter(list, wParam);
        return true;
    default:
        return false;
    }
}

} // namespace tavrix::platform
