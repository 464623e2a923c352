// Menu handles: which menu stands behind one. A menu from a resource belongs to whoever loaded it
// until it is put into a command bar; popups belong to the menu they hang in. User-interface
// thread.
#pragma once

#include "platform/qt/MenuModel.h"

namespace tavrix::platform
{

/// The menu behind a handle; null for null, stale or made-up handles.
std::shared_ptr<Menu> MenuOf(HMENU handle);

/// Reads a compiled menu into a menu with handles for itself and all its popups; null on failure.
std::shared_ptr<Menu> MakeMenu(const void* bytes, size_t size);

} // namespace tavrix::platform
