// Keys and the pointer, from the toolkit to the message queue. Windows of the program's classes and
// dialogs get queued messages; stock controls handle the toolkit's events themselves. Input for a
// window that a modal one shuts out, or that is disabled, is dropped. User-interface thread.
#pragma once

#include "platform/qt/Window.h"

class QKeyEvent;

namespace tavrix::platform
{

/// Puts the application's event filter in.
void InstallInput();
/// Makes a window that paints receive queued input.
void AttachInput(Window& window);
/// Queues a key event for a window.
void QueueKey(Window& window, const QKeyEvent& event);
/// The message of a key event; false for one that the device does not know.
bool MakeKeyMessage(HWND window, const QKeyEvent& event, MSG* message);
/// The MK_ flags and AltModifier of the toolkit's modifiers and buttons.
unsigned ModifierFlags(int keyboardModifiers, int mouseButtons);

} // namespace tavrix::platform
