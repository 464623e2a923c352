// What the program's fonts look like. User-interface thread, after the toolkit is up.
#pragma once

#include <windows.h>

#include <QFont>

namespace tavrix::platform
{

/// The font behind a handle of CreateFontIndirectW; the dialog font for null, the stock font and
/// any other handle. A face that is not there looks like the dialog font, and so do the signs that
/// a face lacks; the character set is not looked at, nor are width and angles. The font stays what
/// it is when the handle goes.
QFont FontOf(HFONT font);

/// The same for text in a picture of the program's: hard edges, from outlines as they are, so that
/// a large size is an exact multiple of a small one, and each sign as far from the next as its own
/// width says.
QFont OutlineFontOf(HFONT font);
QFont OutlineFontOf(const LOGFONTW& record);

} // namespace tavrix::platform
