// Files that are dropped on the device screen. They come to the main window as a second start's do:
// WM_COPYDATA with 1, the device path and its terminating zero, one after the other from the
// message loop, when the program that the files came from has its answer. User-interface thread.
#pragma once

class QEvent;
class QWidget;

namespace tavrix::platform
{

/// Lets files be dropped on the widget. All of a drop must be local files that can be named on the
/// device, and the main window must take input, or the drop is refused while it is still dragged.
void TakeDrops(QWidget* widget);

} // namespace tavrix::platform
