#include "platform/core/MessageQueue.h"
#include "platform/core/WindowTable.h"
#include "platform/qt/WindowRecords.h"

#include <QWidget>

#include <algorithm>
#include <vector>

namespace tavrix::platform
{
namespace
{

// Handles, not records: a modal window may be destroyed by its own procedure.
std::vector<HWND>& ModalStack()
{
    static auto& stack = *new std::vector<HWND>;
    return stack;
}

const Window* InnermostModal()
{
    const auto& stack = ModalStack();
    for (auto entry = stack.rbegin(); entry != stack.rend(); ++entry)
        if (const Window* window = FindWindowRecord(*entry))
            return window;
    return nullptr;
}

} // namespace

void BeginModal(Window& window)
{
    ReleaseCapture();
    ModalStack().push_back(window.handle);
    window.widget->raise();
}

void EndModal(Window& window)
{
    auto& stack = ModalStack();
    const auto found = std::find(stack.rbegin(), stack.rend(), window.handle);
    if (found != stack.rend())
        stack.erase(std::next(found).base());
    // A capture that was taken inside must not outlive the dialog unseen.
    const HWND capture = GetCapture();
    if (capture != nullptr && IsSameOrBelow(capture, window.handle))
        ReleaseCapture();
}

bool TakesInput(const Window& window)
{
    const Window* top = &window;
    for (const Window* at = &window; at != nullptr; at = at->isChild ? at->parent : nullptr) {
        if ((at->style & WS_DISABLED) != 0)
            return false;
        top = at;
    }
    const Window* modal = InnermostModal();
    return modal == nullptr || top == modal || IsOwnedBy(*top, *modal);
}

void RunModalLoop(bool (*finished)(void* state), void* state)
{
    const NestedLoop nested;
    MSG message;
    while (!finished(state)) {
        const BOOL result = GetMessageW(&message, nullptr, 0, 0);
        if (result == 0) {
            // The program's own loop is to see it too.
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        if (result < 0)
            return;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

} // namespace tavrix::platform
