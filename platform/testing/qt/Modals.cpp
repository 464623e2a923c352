// Message boxes and modal dialogs under a test's hand.
#include "platform/testing/WindowTesting.h"

#include "platform/core/TestHooks.h"
#include "platform/qt/MessageBoxText.h"

namespace tavrix::testing
{
namespace
{

std::u16string TextOf(HWND window)
{
    std::u16string text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, 0);
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<size_t>(length));
    return text;
}

} // namespace

std::u16string BoxText(HWND box)
{
    return TextOf(GetDlgItem(box, platform::BoxTextId));
}

std::u16string BoxCaption(HWND box)
{
    return TextOf(box);
}

void OnModal(std::function<void(HWND dialog, bool box)> script)
{
    platform::TestHooks& hooks = platform::Hooks();
    const std::lock_guard<std::mutex> guard(hooks.lock);
    hooks.modalStarted = std::move(script);
    hooks.active = true;
}

} // namespace tavrix::testing
