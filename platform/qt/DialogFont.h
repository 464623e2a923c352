// The one font of dialogs, controls and menus, and the dialog units that follow from it. The face
// and the size that a template names are not followed: templates are laid out for the device's own
// font, and units taken from the font in use keep texts and controls in proportion. User-interface
// thread, after the toolkit is up.
#pragma once

#include <QFont>
#include <QSize>
#include <QString>

namespace tavrix::platform
{

/// Makes the font the toolkit's own. Its measures may not be asked of it yet: the font
/// configuration may still be being read.
void InstallDialogFont();

/// 12 pixels on a screen of ordinary density, more on a dense one as far as the device screen has
/// room for it.
const QFont& DialogFont();

/// The size in pixels of 4 by 8 dialog units.
QSize DialogBaseUnits();
int HorizontalUnits(int units); // to pixels, rounded to nearest
int VerticalUnits(int units);

/// The program's text as the painter takes it: lines end in a line feed alone.
QString DisplayText(const std::u16string& text);

/// The size of a text of several lines, broken at words when it is wider than `widest`.
QSize TextBlockSize(const QString& text, int widest);

} // namespace tavrix::platform
