// The class COMBOBOX: its messages. See ComboControl.h for the parts. The edit field of a combo box
// is a window of the class EDIT inside it, so that everything an edit field does it does here too.
#include "platform/qt/ComboControl.h"

#include "platform/qt/ControlMessages.h"
#include "platform/qt/ControlSupport.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/StockClasses.h"

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr UINT_PTR EditId = 1001; // as on the device

bool HasEdit(const Window& window)
{
    return (window.style & CBS_TYPEMASK) != CBS_DROPDOWNLIST;
}

/// Enter and Esc are the list's while it is dropped down, and not the dialog's.
bool WantsKey(const Window& window, LPARAM lParam)
{
    const auto* asked = reinterpret_cast<const MSG*>(lParam);
    const auto& state = *std::static_pointer_cast<ComboState>(window.extra);
    return state.list != nullptr && asked != nullptr && asked->message == WM_KEYDOWN &&
           (asked->wParam == VK_RETURN || asked->wParam == VK_ESCAPE);
}

Window* ComboOfEdit(HWND edit)
{
    Window* window = FindWindowRecord(edit);
    return window != nullptr ? window->parent : nullptr;
}

LRESULT CALLBACK EditInCombo(HWND edit, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* combo = ComboOfEdit(edit);
    if (combo == nullptr)
        return 0;
    const WNDPROC before = ComboStateOf(*combo).editBefore;
    if ((message == WM_KEYDOWN || message == WM_SYSKEYDOWN) &&
        HandleComboKey(combo->handle, message, static_cast<int>(wParam)))
        return 0;
    // They type nothing here, and on their way to the field they would be offered to the dialog, to
    // which they seem to be its own now that the list is closed.
    if (message == WM_CHAR && (wParam == VK_RETURN || wParam == VK_ESCAPE))
        return 0;
    const LRESULT result = CallWindowProcW(before, edit, message, wParam, lParam);
    if (message == WM_GETDLGCODE && WantsKey(*combo, lParam))
        return result | DLGC_WANTMESSAGE;
    return result;
}

void PlaceEdit(Window& window)
{
    const HWND edit = ComboStateOf(window).edit;
    const QRect place = ComboWidgetOf(window).FieldPlace();
    if (edit != nullptr)
        MoveWindow(edit, place.left(), place.top(), place.width(), place.height(), TRUE);
}

void FollowFont(Window& window, WPARAM font)
{
    // The widget has its new height, and the edit field its font only with the parent's.
    if (const HWND edit = ComboStateOf(window).edit)
        SendMessageW(edit, WM_SETFONT, font, 0);
    PlaceEdit(window);
}

void SetEditText(Window& window)
{
    ComboState& state = ComboStateOf(window);
    if (state.edit == nullptr)
        return;
    state.quiet = true;
    SetWindowTextW(state.edit, window.text.c_str());
    state.quiet = false;
}

void Create(Window& window, const CREATESTRUCTW& creation)
{
    ComboState& state = ComboStateOf(window);
    // What the control is given beyond its own height is the list's.
    state.listHeight = std::max(0, creation.cy - window.widget->height());
    if (!HasEdit(window)) {
        window.text.clear(); // its text is its choice's
        return;
    }
    state.edit = CreateWindowExW(0, TEXT("EDIT"), window.text.c_str(),
                                 WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, 0, 0, 0, window.handle,
                                 reinterpret_cast<HMENU>(EditId), window.instance, nullptr);
    Window* edit = FindWindowRecord(state.edit);
    if (edit == nullptr)
        return;
    state.editBefore = edit->procedure;
    edit->procedure = EditInCombo;
    window.widget->setFocusProxy(edit->widget);
}

/// The person typed.
void OnTyped(Window& window)
{
    ComboState& state = ComboStateOf(window);
    const HWND combo = window.handle;
    window.text = FindWindowRecord(state.edit)->text;
    if (state.quiet)
        return;
    state.model->Choose(-1);
    LightMatch(window);
    NotifyParent(combo, CBN_EDITUPDATE);
    if (IsWindow(combo))
        NotifyParent(combo, CBN_EDITCHANGE);
}

/// With the keyboard the whole text is ready to be typed over; without it none is marked.
void SelectAllText(Window& window, bool focused)
{
    if (const HWND edit = ComboStateOf(window).edit)
        SendMessageW(edit, EM_SETSEL, focused ? 0 : static_cast<WPARAM>(-1), -1);
}

void OnFocus(HWND combo, bool got)
{
    if (!got)
        CloseUp(combo, false);
    if (Window* window = FindWindowRecord(combo)) {
        window->widget->update();
        SelectAllText(*window, got);
        NotifyParent(combo, got ? WORD{CBN_SETFOCUS} : WORD{CBN_KILLFOCUS});
    }
}

void OnEditNotification(Window& window, int code)
{
    switch (code) {
    case EN_CHANGE:
        OnTyped(window);
        break;
    case EN_SETFOCUS:
    case EN_KILLFOCUS:
        OnFocus(window.handle, code == EN_SETFOCUS);
        break;
    default:
        break;
    }
}

LRESULT SetText(Window& window, LPARAM lParam)
{
    if (!HasEdit(window))
        return CB_ERR;
    const auto* text = reinterpret_cast<const WCHAR*>(lParam);
    window.text = text != nullptr ? text : TEXT("");
    ComboStateOf(window).model->Choose(-1);
    SetEditText(window);
    return TRUE;
}

LRESULT HandleChoices(Window& window, const ChoiceOutcome& outcome)
{
    ComboState& state = ComboStateOf(window);
    if (outcome.chosenAnew)
        ShowChoice(window);
    if (outcome.rowsChanged && state.list != nullptr)
        state.list->Renew();
    if (outcome.chosenAnew)
        LightMatch(window);
    return outcome.result;
}

LRESULT SelectText(Window& window, LPARAM lParam)
{
    const HWND edit = ComboStateOf(window).edit;
    if (edit == nullptr)
        return CB_ERR;
    SendMessageW(edit, EM_SETSEL, static_cast<WPARAM>(static_cast<short>(LOWORD(lParam))),
                 static_cast<short>(HIWORD(lParam)));
    return TRUE;
}

LRESULT LimitText(Window& window, WPARAM units)
{
    if (const HWND edit = ComboStateOf(window).edit)
        SendMessageW(edit, EM_SETLIMITTEXT, units, 0);
    return TRUE;
}

} // namespace

void ShowChoice(Window& window)
{
    const ChoiceModel& model = *ComboStateOf(window).model;
    const int chosen = model.Chosen();
    window.text = chosen >= 0 ? model.At(chosen).text : std::u16string();
    ComboWidgetOf(window).SetText(DisplayText(window.text));
    SetEditText(window);
    const HWND edit = ComboStateOf(window).edit;
    if (edit != nullptr && GetFocus() == edit)
        SendMessageW(edit, EM_SETSEL, 0, -1);
}

QWidget* MakeComboWidget(Window& window, QWidget* parent)
{
    window.extra = std::make_shared<ComboState>();
    auto* widget = new ComboWidget(window.handle, HasEdit(window), parent);
    widget->setEnabled((window.style & WS_DISABLED) == 0);
    return widget;
}

LRESULT CALLBACK ComboProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    if (message == WM_SETTEXT)
        return SetText(*window, lParam);
    LRESULT result = 0;
    bool changed = false;
    if (message == WM_ENABLE && wParam == 0)
        CloseUp(handle, false);
    window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    if (HandleCommonMessage(*window, message, wParam, lParam, &result, &changed)) {
        if (message == WM_SETFONT)
            FollowFont(*window, wParam);
        return result;
    }
    ComboState& state = ComboStateOf(*window);
    ChoiceOutcome outcome;
    const bool sorted = (window->style & CBS_SORT) != 0;
    if (HandleChoiceMessage(*state.model, true, sorted, message, wParam, lParam, &outcome))
        return HandleChoices(*window, outcome);
    if (HandleComboInput(handle, message, wParam, lParam))
        return 0;
    switch (message) {
    case WM_CREATE:
        Create(*window, *reinterpret_cast<const CREATESTRUCTW*>(lParam));
        return 0;
    case WM_DESTROY:
        BuryList(*window);
        return 0;
    case WM_SIZE:
        PlaceEdit(*window);
        return 0;
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTCHARS |
               (WantsKey(*window, lParam) ? DLGC_WANTMESSAGE : 0);
    case WM_COMMAND:
        if (reinterpret_cast<HWND>(lParam) == state.edit && state.edit != nullptr)
            OnEditNotification(*window, HIWORD(wParam));
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        OnFocus(handle, message == WM_SETFOCUS);
        return 0;
    case CB_SHOWDROPDOWN:
        if (wParam != 0)
            DropDown(handle);
        else
            CloseUp(handle, false);
        return TRUE;
    case CB_GETDROPPEDSTATE:
        return state.list != nullptr;
    case CB_GETEDITSEL:
        return state.edit != nullptr ? SendMessageW(state.edit, EM_GETSEL, wParam, lParam) : 0;
    case CB_SETEDITSEL:
        return SelectText(*window, lParam);
    case CB_LIMITTEXT:
        return LimitText(*window, wParam);
    default:
        return DefWindowProcW(handle, message, wParam, lParam);
    }
}

} // namespace tavrix::platform
