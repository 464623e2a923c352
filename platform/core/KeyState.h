// Two tables of which keys and buttons are down. The live one follows the keyboard and answers
// GetAsyncKeyState; the other follows the messages that the program has taken out of the queue and
// answers GetKeyState, so that with fast input a handler sees the keys as they stood when its
// message arose. On the user-interface thread.
#pragma once

#include <windows.h>

namespace tavrix::platform
{

/// The keyboard or pointer did this just now.
void NoteLiveKey(int virtualKey, bool down);
/// The program lost the keyboard: nothing counts as held any more.
void ClearLiveKeys();
/// A message of this kind is being handled, with these modifiers (MK_ flags, AltModifier).
void NoteMessageKeys(UINT message, WPARAM wParam, unsigned modifiers);

} // namespace tavrix::platform
