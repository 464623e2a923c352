// The class LISTBOX: rows of text of which one may be chosen. The parent hears of what the person
// does where the style asks for it, and never of what the program sets.
#include "platform/qt/ChoiceView.h"
#include "platform/qt/ControlMessages.h"
#include "platform/qt/ControlSupport.h"
#include "platform/qt/InputRoute.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/TypedSearch.h"
#include "platform/qt/Window.h"

namespace tavrix::platform
{
namespace
{

struct ListBoxState {
    std::shared_ptr<ChoiceModel> model = std::make_shared<ChoiceModel>();
    TypedSearch typed;
    bool held = false; // the left button chooses what it moves over
};

ListBoxState& StateOf(Window& window)
{
    return *std::static_pointer_cast<ListBoxState>(window.extra);
}

ChoiceView& ViewOf(Window& window)
{
    return *static_cast<ChoiceView*>(window.widget);
}

void Tell(HWND list, WORD code)
{
    const Window* window = FindWindowRecord(list);
    if (window != nullptr && (window->style & LBS_NOTIFY) != 0)
        NotifyParent(list, code);
}

/// The person goes to a row.
void Choose(HWND list, int row)
{
    Window* window = FindWindowRecord(list);
    if (window == nullptr || row < 0)
        return;
    ChoiceModel& model = *StateOf(*window).model;
    const bool changed = model.Chosen() != row;
    model.Choose(row);
    ViewOf(*window).Light(row);
    if (changed)
        Tell(list, LBN_SELCHANGE);
}

int RowUnder(Window& window, LPARAM lParam)
{
    return ViewOf(window).RowAt(
        {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))});
}

void OnPress(HWND list, LPARAM lParam)
{
    SetFocus(list);
    if (Window* window = FindWindowRecord(list)) {
        StateOf(*window).held = true;
        Choose(list, RowUnder(*window, lParam));
    }
}

void OnDoublePress(HWND list, LPARAM lParam)
{
    OnPress(list, lParam);
    Window* window = FindWindowRecord(list);
    if (window != nullptr && RowUnder(*window, lParam) >= 0)
        Tell(list, LBN_DBLCLK);
}

void OnCharacter(HWND list, Window& window, WPARAM unit)
{
    if (unit < VK_SPACE)
        return;
    ListBoxState& state = StateOf(window);
    const std::shared_ptr<ChoiceModel> model = state.model;
    Choose(list, state.typed.Take(
                     static_cast<char16_t>(unit), model->Count(), model->Chosen(),
                     [&model](int row) -> const std::u16string& { return model->At(row).text; }));
}

bool HandleInput(HWND list, Window& window, UINT message, WPARAM wParam, LPARAM lParam)
{
    ListBoxState& state = StateOf(window);
    switch (message) {
    case WM_LBUTTONDOWN:
        OnPress(list, lParam);
        return true;
    case WM_LBUTTONDBLCLK:
        OnDoublePress(list, lParam);
        return true;
    case WM_MOUSEMOVE:
        if (state.held && (wParam & MK_LBUTTON) != 0)
            Choose(list, RowUnder(window, lParam));
        return true;
    case WM_LBUTTONUP:
        state.held = false;
        return true;
    case WM_KEYDOWN:
        Choose(list, ViewOf(window).RowByKey(state.model->Chosen(), static_cast<int>(wParam)));
        return true;
    case WM_CHAR:
        OnCharacter(list, window, wParam);
        return true;
    default:
        return false;
    }
}

} // namespace

QWidget* MakeListBoxWidget(Window& window, QWidget* parent)
{
    constexpr DWORD SunkenEdge = 0x200; // WS_EX_CLIENTEDGE
    const auto state = std::make_shared<ListBoxState>();
    window.extra = state;
    const bool framed = (window.style & WS_BORDER) != 0 || (window.extendedStyle & SunkenEdge) != 0;
    auto* view = new ChoiceView(state->model, parent);
    view->setFrameShape(framed ? QFrame::StyledPanel : QFrame::NoFrame);
    view->setFocusPolicy(Qt::StrongFocus);
    view->setVerticalScrollBarPolicy((window.style & WS_VSCROLL) != 0 ? Qt::ScrollBarAsNeeded
                                                                      : Qt::ScrollBarAlwaysOff);
    view->setEnabled((window.style & WS_DISABLED) == 0);
    RouteInput(window.handle, view);
    RouteInput(window.handle, view->viewport());
    return view;
}

LRESULT CALLBACK ListBoxProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    LRESULT result = 0;
    bool changed = false;
    if (HandleCommonMessage(*window, message, wParam, lParam, &result, &changed))
        return result;
    ChoiceModel& model = *StateOf(*window).model;
    ChoiceOutcome outcome;
    const bool sorted = (window->style & LBS_SORT) != 0;
    if (HandleChoiceMessage(model, false, sorted, message, wParam, lParam, &outcome)) {
        if (outcome.rowsChanged)
            ViewOf(*window).Renew();
        if (outcome.rowsChanged || outcome.chosenAnew)
            ViewOf(*window).Light(model.Chosen());
        return outcome.result;
    }
    if (HandleInput(handle, *window, message, wParam, lParam))
        return 0;
    switch (message) {
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    case WM_SETFOCUS:
        Tell(handle, LBN_SETFOCUS);
        return 0;
    case WM_KILLFOCUS:
        StateOf(*window).held = false;
        Tell(handle, LBN_KILLFOCUS);
        return 0;
    default:
        return DefWindowProcW(handle, message, wParam, lParam);
    }
}

} // namespace tavrix::platform
