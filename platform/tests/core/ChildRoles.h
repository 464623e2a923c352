// What roles of a child process are made of, and those that stand in files of their own.
#pragma once

#include <string>

/// Writes a line for the parent.
void Tell(const std::string& line);
void Tell(unsigned long long number);
/// Waits until the parent lets this process go on.
void WaitToGoOn();

// Windows that other processes meet (WindowRoles.cpp). Each tells "ready" first.

/// Shows a window and serves it. Tells of each WM_COPYDATA "<dwData> <cbData> <first units>" and
/// answers the number of bytes and 1000; "wait" is first held until told, "back" is sent on to the
/// parent's window, whose answer is given; "exit" ends the process in order. Tells of each wish to
/// come to the front.
void ShowWindowToOthers();
/// The same, but takes the window away when told, tells, and goes on serving.
void ShowWindowUntilTold();
/// Shows a window and never looks at its messages.
void ShowWindowThatNobodyServes();
/// Shows a window, gives it another title when told, and waits.
void ShowWindowThatChanges();
/// Shows a window, leaves its message loop when told, and waits.
void ShowWindowUntilQuit();
/// Sends "hello" to the window and tells the answer.
void SendToWindow();
