// The controls that choose the page, for the dialogs of every plugin that prints: paper,
// orientation, margins, and the picture fitted or at its real size. Their numbers are those of
// PageDialogIds.h. User-interface thread.
#pragma once

#include "standard-plugins/common/pdf/PageGeometry.h"
#include "standard-plugins/common/PluginInfo.h"

#include <windows.h>

/// Fills the controls; the first `papers` of PaperKind are offered.
void ShowPage(HWND dialog, const PageSettings& page, uint32_t papers);
/// Turns off what means nothing for what is chosen; to be called when the dialog hears of a change
/// of ControlPaper, ControlFit or ControlRealSize.
void EnablePageControls(HWND dialog);
/// Takes what was chosen. False once a number outside its range was refused with a box under
/// `caption`.
bool TakePage(HWND dialog, const BilingualText& caption, PageSettings* page);

/// The row of a list that is chosen, the first where none is.
uint32_t ChosenRow(HWND dialog, int control);
/// The number in a field. False where it is none or outside its range.
bool TakeNumber(HWND dialog, int control, uint32_t least, uint32_t most, uint32_t* number);
/// Says in a box why a field is refused and leaves the user in it. False.
bool RefuseField(HWND dialog, int control, const BilingualText& text, const BilingualText& caption);
