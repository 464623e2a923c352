// The pictures of the stock icons. They are drawn here rather than taken from the desktop's theme,
// so that a message box looks the same on every host.
#pragma once

#include "platform/qt/Icons.h"

#include <QPixmap>

namespace tavrix::platform
{

/// A square picture of `side` pixels, with a clear ground.
QPixmap DrawStockIcon(StockIcon icon, int side);

} // namespace tavrix::platform
