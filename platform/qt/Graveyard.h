// Where windows go whose calls may still be on the stack. See BuryWidget in Window.h.
#pragma once

#include <memory>

namespace tavrix::platform
{

struct Window;

/// Keeps the record of a destroyed window until nobody can hold it any more.
void BuryRecord(std::unique_ptr<Window> window);
/// Deletes everything that was buried. Only with no call of the program or the toolkit on the
/// stack.
void EmptyGraveyard();

} // namespace tavrix::platform
