// The parts of the class SysListView32 to each other: its messages (ListControl), what pointer and
// keys do to its rows (ListInput), its sort (ListSort). Everything that tells the parent may find
// the control gone afterwards, so these take handles and look the window up again. User-interface
// thread.
#pragma once

#include "platform/qt/ListWidget.h"
#include "platform/qt/Window.h"

namespace tavrix::platform
{

inline ListState& ListStateOf(Window& window)
{
    return *std::static_pointer_cast<ListState>(window.extra);
}

inline ListWidget& ListWidgetOf(Window& window)
{
    return *static_cast<ListWidget*>(window.widget);
}

/// Sets the bits of `mask` in a row's state and tells the parent of each row that changed, by
/// LVN_ITEMCHANGED. False when the window is gone or has no such row.
bool ChangeState(HWND list, int row, UINT state, UINT mask);

/// Acts on pointer and keys. False for another message.
bool HandleListInput(HWND list, UINT message, WPARAM wParam, LPARAM lParam);

/// LVM_SORTITEMS: equal rows keep their order. The rows stand as they were until the last
/// comparison, so that the compare function can ask for them. FALSE with nothing moved when there
/// is no function, or when it took the control or its rows away meanwhile.
LRESULT SortList(HWND list, WPARAM parameter, PFNLVCOMPARE compare);

} // namespace tavrix::platform
