// Controls by their ids.
#include "platform/qt/DialogState.h"
#include "platform/qt/Window.h"

#include <QString>
#include <QWidget>

#include <climits>
#include <optional>

namespace tavrix::platform
{
namespace
{

bool IsItem(const Window* candidate, const Window& parent, int id)
{
    return candidate != nullptr && candidate->isChild && candidate->parent == &parent &&
           static_cast<int>(candidate->id) == id;
}

/// The number that a text begins with behind its spaces; empty where there is none or it lies
/// outside the range.
std::optional<long long> NumberOf(const std::u16string& text, long long lowest, long long highest)
{
    size_t at = 0;
    while (at < text.size() && text[at] == ' ')
        ++at;
    const bool negative = lowest < 0 && at < text.size() && text[at] == '-';
    at += negative ? 1 : 0;
    const size_t first = at;
    long long number = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        number = number * 10 + (text[at] - '0');
        if (number > highest + 1) // one more may be the lowest
            return std::nullopt;
    }
    number = negative ? -number : number;
    const bool fits = at > first && number >= lowest && number <= highest;
    return fits ? std::optional(number) : std::nullopt;
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

HWND WINAPI GetDlgItem(HWND dialog, int id)
{
    const Window* parent = FindWindowRecord(dialog);
    if (parent == nullptr)
        return nullptr;
    // Of several with one id the template's first is meant, whatever lies on top by now.
    if (const auto state = DialogStateOf(parent)) {
        for (const HWND control : state->controls) {
            const Window* candidate = FindWindowRecord(control);
            if (IsItem(candidate, *parent, id))
                return candidate->handle;
        }
    }
    if (const QWidget* client = ClientWidget(*parent)) {
        for (const QObject* child : client->children()) {
            if (!child->isWidgetType())
                continue;
            const Window* candidate = WindowOfWidget(static_cast<const QWidget*>(child));
            if (IsItem(candidate, *parent, id))
                return candidate->handle;
        }
    }
    return nullptr;
}

int WINAPI GetDlgCtrlID(HWND window)
{
    const Window* record = FindWindowRecord(window);
    return record != nullptr && record->isChild ? static_cast<int>(record->id) : 0;
}

BOOL WINAPI SetDlgItemTextW(HWND dialog, int id, LPCWSTR text)
{
    const HWND control = GetDlgItem(dialog, id);
    return control != nullptr ? SetWindowTextW(control, text) : FALSE;
}

UINT WINAPI GetDlgItemTextW(HWND dialog, int id, LPWSTR buffer, int capacity)
{
    if (buffer != nullptr && capacity > 0)
        buffer[0] = 0;
    const HWND control = GetDlgItem(dialog, id);
    return control != nullptr ? static_cast<UINT>(GetWindowTextW(control, buffer, capacity)) : 0;
}

UINT WINAPI GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL isSigned)
{
    std::u16string text(1, 0);
    const HWND control = GetDlgItem(dialog, id);
    if (control != nullptr)
        text.resize(static_cast<size_t>(GetWindowTextLengthW(control)) + 1);
    text.resize(GetDlgItemTextW(dialog, id, text.data(), static_cast<int>(text.size())));
    const auto number = isSigned ? NumberOf(text, INT_MIN, INT_MAX) : NumberOf(text, 0, UINT_MAX);
    if (translated != nullptr)
        *translated = number.has_value();
    return static_cast<UINT>(number.value_or(0));
}

BOOL WINAPI SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned)
{
    const long long number = isSigned ? static_cast<int>(value) : static_cast<long long>(value);
    const QString text = QString::number(number);
    return SetDlgItemTextW(dialog, id, text.toStdU16String().c_str());
}

LRESULT WINAPI SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam)
{
    const HWND control = GetDlgItem(dialog, id);
    return control != nullptr ? SendMessageW(control, message, wParam, lParam) : 0;
}
