// Message boxes: dialogs of the platform's own, with an icon, a text and a row of buttons. They are
// built like every other dialog, so that their buttons have ids and their owners are shut out
// alike.
#include "platform/core/MessageQueue.h"
#include "platform/core/TestHooks.h"
#include "platform/qt/ControlMessages.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/DialogState.h"
#include "platform/qt/DialogWidget.h"
#include "platform/qt/Icons.h"
#include "platform/qt/MessageBoxText.h"
#include "platform/qt/Shot.h"
#include "platform/qt/Toolkit.h"
#include "platform/qt/UiThread.h"
#include "platform/qt/Window.h"

#include <QApplication>
#include <QFontMetrics>

#include <algorithm>
#include <cstdio>
#include <string>

namespace tavrix::platform
{
namespace
{

constexpr int Margin = 10;
constexpr int ButtonGap = 6;
constexpr int IconSide = 32;
constexpr UINT DefaultButtonMask = 0xF00;
constexpr UINT DefaultButtonStep = 0x100;

std::optional<StockIcon> IconOfFlags(UINT flags)
{
    switch (flags & MB_ICONMASK) {
    case MB_ICONHAND:
        return StockIcon::Hand;
    case MB_ICONQUESTION:
        return StockIcon::Question;
    case MB_ICONEXCLAMATION:
        return StockIcon::Exclamation;
    case MB_ICONASTERISK:
        return StockIcon::Asterisk;
    default:
        return std::nullopt;
    }
}

SIZE ButtonSize(const std::vector<BoxButton>& buttons)
{
    const QFontMetrics metrics(DialogFont());
    int widest = metrics.averageCharWidth() * 10;
    for (const BoxButton& button : buttons)
        widest = std::max(widest, metrics.horizontalAdvance(DisplayText(button.caption)) + 20);
    return {widest, metrics.height() + 10};
}

RECT Place(int left, int top, int width, int height)
{
    return {left, top, left + width, top + height};
}

DialogPlan PlanBox(const QString& text, const std::u16string& rawText,
                   const std::u16string& caption, UINT flags)
{
    DialogPlan plan;
    plan.style = WS_POPUP | WS_CAPTION;
    plan.title = caption;

    const std::vector<BoxButton> buttons = BoxButtons(flags, GetSystemDefaultLangID());
    const std::optional<StockIcon> icon = IconOfFlags(flags);
    const SIZE button = ButtonSize(buttons);
    const int count = static_cast<int>(buttons.size());
    const int rowWidth = count * button.cx + (count - 1) * ButtonGap;
    const int textLeft = icon ? Margin + IconSide + Margin : Margin;
    const int screenWidth = GetSystemMetrics(SM_CXSCREEN);
    const int screenHeight = GetSystemMetrics(SM_CYSCREEN);

    const QMargins frame = DialogFrame(plan.style);
    QSize block = TextBlockSize(text, screenWidth * 3 / 4 - textLeft - Margin);
    // A text too long for the screen is cut, so that its buttons stay in reach.
    const int room = screenHeight - frame.top() - frame.bottom() - 3 * Margin - button.cy;
    block.setHeight(std::min(block.height(), room));
    const int titleWidth =
        QFontMetrics(DialogFont()).horizontalAdvance(DisplayText(caption)) + 2 * Margin;
    const int widestClient = screenWidth - frame.left() - frame.right();
    plan.client.cx = std::min(
        widestClient, std::max({textLeft + block.width() + 1 + Margin, rowWidth + 2 * Margin,
                                std::min(titleWidth, screenWidth / 2)}));
    const int bodyHeight = std::max(block.height(), icon ? IconSide : 0);
    plan.client.cy = Margin + bodyHeight + Margin + button.cy + Margin;

    if (icon) {
        DialogControlPlan control;
        control.className = TEXT("STATIC");
        control.style = WS_VISIBLE | SS_ICON;
        control.place = Place(Margin, Margin, IconSide, IconSide);
        control.id = BoxIconId;
        control.icon = StockIconHandle(*icon);
        plan.controls.push_back(std::move(control));
    }
    DialogControlPlan body;
    body.className = TEXT("STATIC");
    body.style = WS_VISIBLE | SS_LEFT | SS_NOPREFIX;
    body.place = Place(textLeft, Margin + (bodyHeight - block.height()) / 2,
                       plan.client.cx - textLeft - Margin, block.height());
    body.id = BoxTextId;
    body.text = rawText;
    plan.controls.push_back(std::move(body));

    size_t chosen = (flags & DefaultButtonMask) / DefaultButtonStep;
    if (chosen >= buttons.size())
        chosen = 0;
    int left = (plan.client.cx - rowWidth) / 2;
    for (size_t i = 0; i < buttons.size(); ++i) {
        DialogControlPlan control;
        control.className = TEXT("BUTTON");
        control.style = WS_VISIBLE | WS_TABSTOP | (i == chosen ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON) |
                        (i == 0 ? WS_GROUP : 0);
        control.place = Place(left, plan.client.cy - Margin - button.cy, button.cx, button.cy);
        control.id = buttons[i].id;
        control.text = buttons[i].caption;
        plan.controls.push_back(std::move(control));
        left += button.cx + ButtonGap;
    }
    plan.corner = {(screenWidth - plan.client.cx - frame.left() - frame.right()) / 2,
                   (screenHeight - plan.client.cy - frame.top() - frame.bottom()) / 2};
    return plan;
}

std::string TextOf(HWND window)
{
    std::u16string text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, 0);
    text.resize(
        static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return QString::fromStdU16String(text).toStdString();
}

// Without anybody to answer, the box says its words where they can be read and takes its default.
void AnswerForNobody(HWND box, UINT answer)
{
    std::fprintf(stderr, "tavrix: %s: %s\n", TextOf(box).c_str(),
                 TextOf(GetDlgItem(box, BoxTextId)).c_str());
    PostMessageW(box, WM_COMMAND, answer, 0);
}

INT_PTR CALLBACK BoxProcedure(HWND box, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG: {
        const auto state = DialogStateOf(FindWindowRecord(box));
        SetFocus(GetDlgItem(box, static_cast<int>(state->defaultId)));
        if (ShotIsWanted())
            AnswerForNobody(box, state->defaultId);
        return FALSE;
    }
    case WM_COMMAND: {
        const UINT id = LOWORD(wParam);
        const HWND button = GetDlgItem(box, static_cast<int>(id));
        // Esc asks for IDCANCEL; a box with a single OK takes that as its answer.
        if (id == IDCANCEL && button == nullptr && GetDlgItem(box, IDOK) != nullptr)
            EndDialog(box, IDOK);
        else if (button != nullptr && id != BoxTextId && id != BoxIconId)
            EndDialog(box, static_cast<INT_PTR>(id));
        return TRUE;
    }
    default:
        (void)lParam;
        return FALSE;
    }
}

INT_PTR ShowBox(HWND owner, const WCHAR* text, const WCHAR* caption, UINT flags)
{
    ScreenWidget(); // measuring needs the fonts
    const std::u16string rawText = text != nullptr ? text : TEXT("");
    const bool japanese = IsJapanese(GetSystemDefaultLangID());
    // A null caption is the device's own word, an empty one stays empty.
    const std::u16string title = caption != nullptr ? caption
                                 : japanese         ? TEXT("エラー")
                                                    : TEXT("Error");
    auto state = std::make_shared<DialogState>();
    state->escapeIgnored = !EscapeAnswers(flags);
    const DialogPlan plan = PlanBox(DisplayText(rawText), rawText, title, flags);
    const INT_PTR result =
        RunDialog(plan, nullptr, IsWindow(owner) ? owner : nullptr, BoxProcedure, 0, state, true);
    return result > 0 ? result : 0;
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

int WINAPI MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT flags)
{
    return static_cast<int>(
        CallOnUiThread([&]() -> LRESULT { return ShowBox(owner, text, caption, flags); }));
}

BOOL WINAPI MessageBeep(UINT)
{
    ++Hooks().beeps;
    // The caller does not wait: a beep from a worker must not hang on what the user interface does.
    CallSoon([]() -> LRESULT {
        if (ToolkitIsUp())
            QApplication::beep();
        return 0;
    });
    return TRUE;
}
