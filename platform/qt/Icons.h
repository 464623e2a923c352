// Icon handles and the pictures behind them. User-interface thread.
#pragma once

#include <windows.h>

#include <QIcon>

namespace tavrix::platform
{

/// The icons that every device has, by the numbers under which LoadIconW knows them.
enum class StockIcon : WORD {
    Application = 32512,
    Hand = 32513,
    Question = 32514,
    Exclamation = 32515,
    Asterisk = 32516
};

/// The picture behind a handle, in all its sizes; a null icon for null, stale or foreign handles.
QIcon IconOf(HICON icon);
/// The size the handle was loaded for, in device pixels.
QSize IconSize(HICON icon);
/// The handle of a stock icon; never destroyed.
HICON StockIconHandle(StockIcon icon);

} // namespace tavrix::platform
