// The colour chooser: a modal dialog with a trackbar for each of red, green and blue, a swatch that
// follows them, and "Redo", which goes back to the colour it was opened with. One at a time.
// User-interface thread.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

/// What the chooser is asked, laid out as the platform's own record of colour dialogs. Owner,
/// instance and colour are looked at; the colour comes back changed when the person takes it.
struct ColorChoice {
    DWORD size; // of this record
    HWND owner;
    HINSTANCE instance;
    COLORREF color;
    COLORREF* customColors;
    DWORD flags;
    LPARAM customData;
    UINT_PTR(CALLBACK* hook)(HWND, UINT, WPARAM, LPARAM);
    LPCWSTR templateName;
};

class ColorChooser
{
public:
    /// 1 with the chosen colour in the record, 0 when it was given up; nothing is changed then.
    i32 Show(ColorChoice* choice);

private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

    ColorChoice* choice = nullptr; // while the dialog is open
    COLORREF initialColor = 0;     // for "Redo"
};

/// A colour word 0xRRGGBBAA without its alpha, and back; the alpha byte comes back as 0, since the
/// platform's form holds none.
COLORREF ColorRefOfWord(u32 word);
u32 WordOfColorRef(COLORREF color);
