// Answers the dialogs and message boxes that a plugin opens: each gets the same answer a moment
// after it has come up, and, where it stays open over that, every other way out of a dialog.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

namespace plugincheck
{

/// While one lives, dialogs are answered with `answer` (IDOK, IDCANCEL).
class DialogAnswers
{
public:
    explicit DialogAnswers(int answer);
    ~DialogAnswers();
    DialogAnswers(const DialogAnswers&) = delete;
    DialogAnswers& operator=(const DialogAnswers&) = delete;

    /// Dialogs that have come up.
    u32 Dialogs() const;
    /// Whether some dialog did not end at its answer.
    bool WasForced() const;
};

} // namespace plugincheck
