// What keys, pointer and wheel do to a combo box, and what its parent hears of it.
#include "platform/qt/ComboControl.h"
#include "platform/qt/ControlSupport.h"

#include <QScrollBar>

#include <utility>

namespace tavrix::platform
{
namespace
{

/// How many rows show where the program has left the list no height.
constexpr int DefaultRows = 12;

QPoint PointOf(LPARAM lParam)
{
    return {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}

bool Notify(HWND combo, WORD code)
{
    NotifyParent(combo, code);
    return IsWindow(combo) != FALSE;
}

/// The person has chosen a row. False when the control is gone.
bool Take(HWND combo, int row)
{
    Window* window = FindWindowRecord(combo);
    if (window == nullptr)
        return false;
    ChoiceModel& model = *ComboStateOf(*window).model;
    const bool changed = model.Chosen() != row;
    model.Choose(row);
    ShowChoice(*window);
    return Notify(combo, CBN_SELENDOK) && (!changed || Notify(combo, CBN_SELCHANGE));
}

/// Goes to a row: lights it in the list that is dropped down, else it is the choice at once.
void GoTo(HWND combo, int row)
{
    Window* window = FindWindowRecord(combo);
    if (window == nullptr || row < 0)
        return;
    ComboState& state = ComboStateOf(*window);
    if (state.list != nullptr)
        state.list->Light(row);
    else if (row != state.model->Chosen())
        Take(combo, row);
}

int RowNow(const ComboState& state)
{
    return state.list != nullptr ? state.list->Lit() : state.model->Chosen();
}

/// Where a key leads; -1 for another key.
int RowByKey(const ComboState& state, int key)
{
    const int now = RowNow(state);
    if (state.list != nullptr)
        return state.list->RowByKey(now, key);
    const int last = state.model->Count() - 1;
    if (last < 0)
        return -1;
    const bool back = key == VK_UP || key == VK_PRIOR || key == VK_LEFT;
    switch (key) {
    case VK_HOME:
        return 0;
    case VK_END:
        return last;
    case VK_UP:
    case VK_DOWN:
    case VK_PRIOR:
    case VK_NEXT:
    case VK_LEFT:
    case VK_RIGHT:
        return std::clamp(now + (back ? -1 : 1), 0, last);
    default:
        return -1;
    }
}

void Toggle(HWND combo)
{
    Window* window = FindWindowRecord(combo);
    if (window == nullptr)
        return;
    if (ComboStateOf(*window).list != nullptr)
        CloseUp(combo, true);
    else
        DropDown(combo);
}

/// The next row that begins with what was typed.
void OnCharacter(HWND combo, char16_t unit)
{
    Window* window = FindWindowRecord(combo);
    if (window == nullptr || unit < VK_SPACE)
        return;
    ComboState& state = ComboStateOf(*window);
    const std::shared_ptr<ChoiceModel> model = state.model;
    GoTo(combo, state.typed.Take(
                    unit, model->Count(), RowNow(state),
                    [&model](int row) -> const std::u16string& { return model->At(row).text; }));
}

void OnPress(HWND combo)
{
    SetFocus(combo);
    Window* window = FindWindowRecord(combo);
    if (window == nullptr)
        return;
    if (ComboStateOf(*window).list != nullptr)
        CloseUp(combo, false);
    else
        DropDown(combo);
}

/// A pointer's place in the control as one in the list.
QPoint InList(Window& window, QPoint point)
{
    DropList& list = *ComboStateOf(window).list;
    return list.mapFrom(list.window(), window.widget->mapTo(window.widget->window(), point));
}

/// The button that dropped the list down is still held and moves into the list.
void OnMove(Window& window, WPARAM wParam, LPARAM lParam)
{
    ComboState& state = ComboStateOf(window);
    if (state.list == nullptr || (wParam & MK_LBUTTON) == 0)
        return;
    const int row = state.list->RowAt(InList(window, PointOf(lParam)));
    if (row >= 0 && row != state.list->Lit())
        state.list->Light(row);
}

void OnRelease(Window& window, LPARAM lParam)
{
    const ComboState& state = ComboStateOf(window);
    if (state.list == nullptr)
        return;
    const int row = state.list->RowAt(InList(window, PointOf(lParam)));
    if (row >= 0)
        DropListDone(window.handle, row);
}

} // namespace

void BuryList(Window& window)
{
    if (DropList* list = std::exchange(ComboStateOf(window).list, nullptr)) {
        list->Bury();
        ComboWidgetOf(window).SetDropped(false);
    }
}

void LightMatch(Window& window)
{
    const ComboState& state = ComboStateOf(window);
    if (state.list == nullptr)
        return;
    const int chosen = state.model->Chosen();
    const bool typed = chosen < 0 && state.edit != nullptr && !window.text.empty();
    state.list->Light(typed ? state.model->FindBeginning(-1, window.text) : chosen);
}

void DropDown(HWND combo)
{
    Window* window = FindWindowRecord(combo);
    if (window == nullptr || window->destroying || !IsWindowEnabled(combo) ||
        ComboStateOf(*window).list != nullptr || !Notify(combo, CBN_DROPDOWN))
        return;
    window = FindWindowRecord(combo);
    ComboState& state = ComboStateOf(*window);
    if (state.list != nullptr || !window->widget->isVisible() || !IsWindowEnabled(combo))
        return;
    state.list = new DropList(combo, window->widget, state.model);
    const int row = state.list->RowHeight();
    const int least = row + 2 * state.list->frameWidth();
    state.list->Place(state.listHeight >= least ? state.listHeight
                                                : DefaultRows * row + least - row);
    LightMatch(*window);
    state.list->show();
    state.list->raise();
    ComboWidgetOf(*window).SetDropped(true);
}

void CloseUp(HWND combo, bool take)
{
    Window* window = FindWindowRecord(combo);
    if (window == nullptr || ComboStateOf(*window).list == nullptr)
        return;
    const int lit = ComboStateOf(*window).list->Lit();
    DropListDone(combo, take ? lit : -1);
}

void DropListDone(HWND combo, int row)
{
    Window* window = FindWindowRecord(combo);
    if (window == nullptr || ComboStateOf(*window).list == nullptr)
        return;
    BuryList(*window);
    const bool taken = ComboStateOf(*window).model->Has(row);
    if (taken ? Take(combo, row) : Notify(combo, CBN_SELENDCANCEL))
        Notify(combo, CBN_CLOSEUP);
}

void ComboWheel(HWND combo, int notches)
{
    Window* window = FindWindowRecord(combo);
    // Over a field without the keyboard it would change what the person is not looking at.
    if (window == nullptr || ComboStateOf(*window).list != nullptr ||
        WindowOfWidget(window->widget->window()->focusWidget()) == nullptr)
        return;
    const HWND focus = GetFocus();
    if (focus != combo && focus != ComboStateOf(*window).edit)
        return;
    const ChoiceModel& model = *ComboStateOf(*window).model;
    if (model.Count() > 0)
        GoTo(combo, std::clamp(model.Chosen() - notches, 0, model.Count() - 1));
}

bool HandleComboKey(HWND combo, UINT message, int key)
{
    Window* window = FindWindowRecord(combo);
    if (window == nullptr)
        return true;
    const ComboState& state = ComboStateOf(*window);
    if (key == VK_F4 && message == WM_KEYDOWN) {
        Toggle(combo);
        return true;
    }
    if (message == WM_SYSKEYDOWN) {
        if (key != VK_DOWN && key != VK_UP)
            return false;
        Toggle(combo);
        return true;
    }
    if (state.list != nullptr && (key == VK_RETURN || key == VK_ESCAPE)) {
        CloseUp(combo, key == VK_RETURN);
        return true;
    }
    // What moves the caret stays the edit field's.
    if (state.edit != nullptr &&
        (key == VK_HOME || key == VK_END || key == VK_LEFT || key == VK_RIGHT))
        return false;
    const bool moves = key >= VK_PRIOR && key <= VK_DOWN;
    if (moves)
        GoTo(combo, RowByKey(state, key));
    return moves;
}

bool HandleComboInput(HWND combo, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(combo);
    switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        OnPress(combo);
        return true;
    case WM_MOUSEMOVE:
        OnMove(*window, wParam, lParam);
        return true;
    case WM_LBUTTONUP:
        OnRelease(*window, lParam);
        return true;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        return HandleComboKey(combo, message, static_cast<int>(wParam));
    case WM_CHAR:
        OnCharacter(combo, static_cast<char16_t>(wParam));
        return true;
    default:
        return false;
    }
}

} // namespace tavrix::platform
