// Dialogs from templates: making them, running them, ending them, and what the dialog class does
// with the messages that its dialog procedure leaves.
#include "platform/core/TestHooks.h"
#include "platform/qt/Backing.h"
#include "platform/qt/ControlGround.h"
#include "platform/qt/ControlMessages.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/DialogState.h"
#include "platform/qt/DialogTemplate.h"
#include "platform/qt/DialogWidget.h"
#include "platform/qt/StockClasses.h"
#include "platform/qt/UiThread.h"
#include "platform/qt/Window.h"

#include <QApplication>

#include <utility>

namespace tavrix::platform
{
namespace
{

/// The window that a modal dialog shuts out: what `window` lies on, or itself.
HWND TopLevelOf(HWND window)
{
    const Window* record = FindWindowRecord(window);
    while (record != nullptr && record->isChild && record->parent != nullptr)
        record = record->parent;
    return record != nullptr ? record->handle : nullptr;
}

void DisableOwner(HWND owner, DialogState& state)
{
    const HWND top = TopLevelOf(owner);
    // An owner that is disabled already belongs to an outer dialog and stays so.
    if (top == nullptr || !IsWindowEnabled(top))
        return;
    EnableWindow(top, FALSE);
    state.disabledOwner = top;
}

void EnableOwner(DialogState& state)
{
    const HWND owner = state.disabledOwner;
    state.disabledOwner = nullptr;
    if (IsWindow(owner))
        EnableWindow(owner, TRUE);
}

void TellModalStarted(HWND dialog, bool box)
{
    TestHooks& hooks = Hooks();
    if (!hooks.active)
        return;
    std::function<void(HWND, bool)> script;
    {
        const std::lock_guard<std::mutex> guard(hooks.lock);
        script = hooks.modalStarted;
    }
    if (script)
        script(dialog, box);
}

/// An open menu would lie over the dialog and keep the pointer.
void ClosePopups()
{
    while (QWidget* popup = QApplication::activePopupWidget()) {
        if (!popup->close())
            break;
    }
}

bool HasEnded(void* state)
{
    return static_cast<DialogState*>(state)->ended;
}

DialogPlan PlanOf(const DialogTemplate& source, HWND owner)
{
    DialogPlan plan;
    plan.style = source.style;
    plan.extendedStyle = source.extendedStyle;
    plan.title = source.title;
    POINT origin{0, 0};
    if ((source.style & WS_CHILD) == 0 && IsWindow(owner))
        ClientToScreen(owner, &origin);
    plan.corner = {origin.x + HorizontalUnits(source.x), origin.y + VerticalUnits(source.y)};
    plan.client = {HorizontalUnits(source.width), VerticalUnits(source.height)};
    for (const DialogItem& item : source.items) {
        DialogControlPlan control;
        control.className = item.className;
        control.style = item.style;
        control.extendedStyle = item.extendedStyle;
        control.place.left = HorizontalUnits(item.x);
        control.place.top = VerticalUnits(item.y);
        control.place.right = control.place.left + HorizontalUnits(item.width);
        control.place.bottom = control.place.top + VerticalUnits(item.height);
        control.id = source.extended ? item.id : item.id & 0xFFFF;
        control.text = item.text.text;
        control.pictureOrdinal = item.text.ordinal.value_or(0);
        control.creationData = item.creationData;
        plan.controls.push_back(std::move(control));
    }
    return plan;
}

/// The plan of a template; empty when it is broken or of a dialog class of its own, which needs a
/// default procedure that the device's interface here does not have.
std::optional<DialogPlan> ReadPlan(LPCDLGTEMPLATEW dialogTemplate, HWND owner)
{
    const auto parsed = ParseDialogTemplate(dialogTemplate);
    if (!parsed || !parsed->className.text.empty() || parsed->className.ordinal)
        return std::nullopt;
    ScreenWidget(); // dialog units need the font
    return PlanOf(*parsed, owner);
}

/// The ground below the controls is done anew, and with it theirs.
void ForgetGrounds(const Window& dialog, const QRegion& region)
{
    const auto state = DialogStateOf(&dialog);
    if (!state)
        return;
    for (const HWND handle : state->controls) {
        Window* control = FindWindowRecord(handle);
        if (control == nullptr || !region.intersects(control->widget->geometry()))
            continue;
        ForgetGround(*control);
        control->widget->update();
    }
}

/// The background: what the dialog procedure answers to WM_CTLCOLORDLG, else the device's own. A
/// hollow brush leaves everything as it is.
LRESULT EraseDialog(Window& window, WPARAM wParam)
{
    const HWND handle = window.handle;
    const auto dc = reinterpret_cast<HDC>(wParam);
    const QRegion region = PaintingOf(window).erasing;
    ForgetGrounds(window, region);
    const auto brush = reinterpret_cast<HBRUSH>(
        SendMessageW(handle, WM_CTLCOLORDLG, wParam, reinterpret_cast<LPARAM>(handle)));
    if (brush == nullptr || dc == nullptr)
        return DefWindowProcW(handle, WM_ERASEBKGND, wParam, 0);
    for (const QRect& part : region) {
        const RECT area{part.left(), part.top(), part.right() + 1, part.bottom() + 1};
        FillRect(dc, &area, brush);
    }
    return 1;
}

/// The procedure's WM_PAINT. A procedure that draws by a context of its own and says "done" without
/// a word about the update region would get the next WM_PAINT at once, for ever, and nobody else
/// anything: what was to be painted counts as painted then.
INT_PTR PaintByProcedure(HWND handle, DLGPROC procedure, WPARAM wParam, LPARAM lParam)
{
    Painting& painting = PaintingOf(*FindWindowRecord(handle));
    const bool handedOut = std::exchange(painting.handedOut, false);
    const unsigned begun = painting.begun;
    const INT_PTR handled = procedure(handle, WM_PAINT, wParam, lParam);
    Window* window = FindWindowRecord(handle);
    if (window != nullptr && handled != 0 && handedOut && PaintingOf(*window).begun == begun)
        ValidateRect(handle, nullptr);
    return handled;
}

/// The size is told while the dialog is still hidden, when only this call gives the client area its
/// place; answers the message's words for the size that comes of it.
LPARAM LayOutClient(Window& window)
{
    static_cast<DialogWidget*>(window.widget)->LayOut();
    const QSize size = ClientWidget(window)->size();
    return MAKELPARAM(size.width(), size.height());
}

/// What the class itself does with a message.
LRESULT DefaultDialogProcedure(Window& window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto state = DialogStateOf(&window);
    const HWND handle = window.handle;
    switch (message) {
    case WM_CLOSE:
        if (state && !state->escapeIgnored)
            PostMessageW(handle, WM_COMMAND, IDCANCEL,
                         reinterpret_cast<LPARAM>(GetDlgItem(handle, IDCANCEL)));
        return 0;
    case WM_ERASEBKGND:
        return EraseDialog(window, wParam);
    case WM_SETTEXT: {
        const LRESULT result = DefWindowProcW(handle, message, wParam, lParam);
        static_cast<DialogWidget*>(window.widget)->SetTitle(DisplayText(window.text));
        return result;
    }
    case WM_DESTROY:
        if (state && !state->ended) {
            state->ended = true;
            PostMessageW(nullptr, WM_NULL, 0, 0);
        }
        return 0;
    case DM_GETDEFID:
        return state && state->defaultId != 0 ? MAKELONG(state->defaultId, DC_HASDEFID) : 0;
    case DM_SETDEFID:
        if (state)
            state->defaultId = static_cast<UINT>(wParam);
        return TRUE;
    default:
        return DefWindowProcW(handle, message, wParam, lParam);
    }
}

/// Messages whose answer is what the dialog procedure returns, not the message result word.
bool AnswersDirectly(UINT message)
{
    return message == WM_INITDIALOG || (message >= 0x0132 && message <= WM_CTLCOLORSTATIC);
}

} // namespace

std::shared_ptr<DialogState> DialogStateOf(const Window* window)
{
    if (window == nullptr || window->windowClass == nullptr ||
        window->windowClass->procedure != DialogClassProcedure)
        return nullptr;
    return std::static_pointer_cast<DialogState>(window->extra);
}

QWidget* MakeDialogWidget(Window& window, QWidget* parent)
{
    return new DialogWidget(window, parent);
}

LRESULT CALLBACK DialogClassProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr)
        return 0;
    if (message == WM_CREATE)
        (void)LayOutClient(*window);
    else if (message == WM_SIZE)
        lParam = LayOutClient(*window);
    if (const auto procedure = reinterpret_cast<DLGPROC>(window->dialogWords[1])) {
        window->dialogWords[0] = 0;
        const INT_PTR handled = message == WM_PAINT
                                    ? PaintByProcedure(handle, procedure, wParam, lParam)
                                    : procedure(handle, message, wParam, lParam);
        window = FindWindowRecord(handle); // the procedure may have destroyed it
        if (handled != 0 && AnswersDirectly(message))
            return handled;
        if (window == nullptr)
            return 0;
        // The end of a dialog's life is also the platform's business, whoever handles it.
        if (handled != 0 && message != WM_DESTROY)
            return window->dialogWords[0];
    }
    return DefaultDialogProcedure(*window, message, wParam, lParam);
}

INT_PTR RunDialog(const DialogPlan& plan, HINSTANCE instance, HWND owner, DLGPROC procedure,
                  LPARAM parameter, const std::shared_ptr<DialogState>& state, bool box)
{
    const HWND focusBefore = GetFocus();
    state->modal = true;
    DisableOwner(owner, *state);
    const HWND dialog = BuildDialog(plan, instance, owner, procedure, parameter, state);
    if (dialog == nullptr) {
        EnableOwner(*state);
        return state->ended ? state->result : -1;
    }
    if (!state->ended) {
        ClosePopups();
        BeginModal(*FindWindowRecord(dialog));
        ShowDialog(dialog);
        TellModalStarted(dialog, box);
        RunModalLoop(HasEnded, state.get());
        if (Window* window = FindWindowRecord(dialog))
            EndModal(*window);
    }
    EnableOwner(*state);
    if (IsWindow(dialog))
        DestroyWindow(dialog);
    if (IsWindow(focusBefore) && IsWindowEnabled(focusBefore) && IsWindowVisible(focusBefore))
        SetFocus(focusBefore);
    return state->result;
}

} // namespace tavrix::platform

using namespace tavrix::platform;

INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW dialogTemplate,
                                       HWND owner, DLGPROC procedure, LPARAM parameter)
{
    return CallOnUiThread([&]() -> LRESULT {
        if (owner != nullptr && !IsWindow(owner))
            return 0; // the one failure that is not -1
        const auto plan = ReadPlan(dialogTemplate, owner);
        if (!plan)
            return -1;
        return RunDialog(*plan, instance, owner, procedure, parameter,
                         std::make_shared<DialogState>(), false);
    });
}

HWND WINAPI CreateDialogIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW dialogTemplate,
                                       HWND owner, DLGPROC procedure, LPARAM parameter)
{
    return reinterpret_cast<HWND>(CallOnUiThread([&]() -> LRESULT {
        const auto plan = ReadPlan(dialogTemplate, owner);
        if (!plan)
            return 0;
        const HWND dialog = BuildDialog(*plan, instance, owner, procedure, parameter,
                                        std::make_shared<DialogState>());
        if (dialog != nullptr && (plan->style & WS_VISIBLE) != 0)
            ShowDialog(dialog);
        return reinterpret_cast<LRESULT>(dialog);
    }));
}

BOOL WINAPI EndDialog(HWND dialog, INT_PTR result)
{
    const auto state = DialogStateOf(FindWindowRecord(dialog));
    if (!state) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    state->result = result;
    state->ended = true;
    EnableOwner(*state);
    ShowWindow(dialog, SW_HIDE);
    PostMessageW(dialog, WM_NULL, 0, 0); // the loop looks at the end only between messages
    return TRUE;
}
