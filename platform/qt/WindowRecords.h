// All windows that exist, and the classes they are made from. User-interface thread.
#pragma once

#include "platform/qt/Window.h"

#include <vector>

namespace tavrix::platform
{

/// A class by what CreateWindowExW was given: its name or the number that RegisterClassW answered.
const WindowClass* FindWindowClassByNameOrAtom(const WCHAR* nameOrAtom);

/// The windows in the order of their creation, so that a parent stands before its children.
const std::vector<Window*>& AllWindows();
/// Keeps a record. Its handle is filled in; null when there are too many windows.
Window* AddWindow(std::unique_ptr<Window> window);
/// Makes the handle stale and buries the record with its widget.
void RemoveWindow(Window& window);
/// Lets WindowOfWidget find the window.
void LinkWidget(Window& window);

/// The window itself, or for a child the one that it lies on in the end.
Window& TopLevelOf(Window& window);
/// Whether `window` is owned by `owner`, over any number of steps.
bool IsOwnedBy(const Window& window, const Window& owner);

/// A window of its own is about to go out of sight: if the keyboard is in it, the owner (or the main
/// window) gets it, provided that it can be seen and takes input.
void PassFocusOn(const Window& leaving);

/// Sends WM_MOVE and WM_SIZE as the window's place now asks for.
void TellPlace(Window& window, bool moved, bool sized);

/// Equal without regard to case, as names of classes and titles are compared.
bool SameName(const std::u16string& a, const WCHAR* b);

} // namespace tavrix::platform
