// The parts of the class COMBOBOX to each other: its messages (ComboControl), and what keys,
// pointer and wheel do to it (ComboInput). Whatever tells the parent may find the control gone
// afterwards, so these take handles and look the window up again. User-interface thread.
//
// What the person chooses while the list is dropped down is only lit there. It becomes the choice,
// and the parent hears of it, when the person takes it.
#pragma once

#include "platform/qt/ChoiceModel.h"
#include "platform/qt/ComboWidget.h"
#include "platform/qt/DropList.h"
#include "platform/qt/TypedSearch.h"
#include "platform/qt/Window.h"

#include <memory>

namespace tavrix::platform
{

struct ComboState {
    std::shared_ptr<ChoiceModel> model = std::make_shared<ChoiceModel>();
    HWND edit = nullptr;          // null: a choice alone
    WNDPROC editBefore = nullptr; // the procedure that ours stands in front of
    DropList* list = nullptr;     // while it is dropped down; it lies on the screen
    int listHeight = 0;           // the most that the program has given it
    bool quiet = false;           // the edit field's text is being set, not typed
    TypedSearch typed;
};

inline ComboState& ComboStateOf(Window& window)
{
    return *std::static_pointer_cast<ComboState>(window.extra);
}

inline ComboWidget& ComboWidgetOf(Window& window)
{
    return *static_cast<ComboWidget*>(window.widget);
}

/// The chosen row's text, or none, becomes the control's. Tells nobody.
void ShowChoice(Window& window);

/// Drops the list down, behind CBN_DROPDOWN, in which the program may fill it.
void DropDown(HWND combo);
/// Closes it: with `take` its lit row becomes the choice.
void CloseUp(HWND combo, bool take);
/// The list is put away and nobody hears of it.
void BuryList(Window& window);
/// Lights the row of the edit field's text.
void LightMatch(Window& window);

/// Acts on pointer and keys. False for what is not the control's.
bool HandleComboInput(HWND combo, UINT message, WPARAM wParam, LPARAM lParam);
/// A key of the edit field that is the combo box's; false for any other.
bool HandleComboKey(HWND combo, UINT message, int key);

} // namespace tavrix::platform
