// Whether the program rests: for a second its loop has handed out nothing but timer messages, and
// no thread of the program's runs. What a short timer looks after cannot change then, so that the
// loop may be late with it and a handheld's processor sleeps longer.
#pragma once

namespace tavrix::platform
{

/// The loop has handed out a message, or run a call, that was no timer's, or a timer has been set.
/// Any thread.
void NoteActivity();
/// A thread of the program's begins, or is over. Any thread.
void NoteThreadBegins();
void NoteThreadIsOver();
bool IsAtRest();

} // namespace tavrix::platform
