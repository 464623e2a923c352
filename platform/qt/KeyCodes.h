// Between the toolkit's keys and the device's virtual-key codes.
#pragma once

class QKeyEvent;

namespace tavrix::platform
{

/// The virtual-key code of a key event; 0 for a key that the device does not know.
int VirtualKeyOf(const QKeyEvent& event);

} // namespace tavrix::platform
