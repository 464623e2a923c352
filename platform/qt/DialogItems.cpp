// Controls by their ids.
#include "platform/qt/DialogState.h"
#include "platform/qt/Window.h"

#include <QWidget>

namespace tavrix::platform
{
namespace
{

bool IsItem(const Window* candidate, const Window& parent, int id)
{
    return candidate != nullptr && candidate->isChild && candidate->parent == &parent &&
           static_cast<int>(candidate->id) == id;
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

LRESULT WINAPI SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam)
{
    const HWND control = GetDlgItem(dialog, id);
    return control != nullptr ? SendMessageW(control, message, wParam, lParam) : 0;
}
