// What the person does in dialogs that it may never have seen, the plugins' own included.
#pragma once

#include "tests/endurance/Dice.h"
#include "tests/endurance/Modals.h"
#include "tests/endurance/Surroundings.h"

#include <string>

namespace endurance
{

/// Does one thing in a box or a dialog. The more has been done in it already, the more likely it is
/// one that ends it. Answers what it is before it is done, through `note`.
using NoteAction = void (*)(const std::string& action);
void ActInBox(const Modal& box, Dice& dice, NoteAction note);
void ActInDialog(const Modal& dialog, Dice& dice, NoteAction note);
void ActInFileDialog(const Modal& dialog, Dice& dice, const Surroundings& surroundings,
                     NoteAction note);
/// In an open menu or a list that is dropped down.
void ActInPopup(Dice& dice, NoteAction note);

/// A name for a window: its class, number and text.
std::string NameOf(HWND window);

} // namespace endurance
