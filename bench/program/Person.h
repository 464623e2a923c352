// Who answers the program's dialogs in program-run: types a name into the file dialog, takes a
// plugin's settings as they are, says Yes to a question, and waits while a job runs.
#pragma once

#include <functional>
#include <string>

namespace bench
{

/// The host file whose name the next file dialog gets. Begins to look for dialogs. False for a name
/// that the device cannot have.
bool TypeNextName(const std::string& file);
/// Whether it was typed since.
bool IsNameTaken();
/// Called right before each answer that closes a dialog; an empty one ends it.
void OnLastAnswer(std::function<void()> called);

} // namespace bench
