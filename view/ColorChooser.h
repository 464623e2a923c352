// The colour chooser: a modal dialog with a trackbar for each of red, green and blue, a swatch that
// follows them, and "Redo", which goes back to the colour it was opened with. One at a time.
// User-interface thread.
#pragma once

#include "foundation/Result.h"
#include "pixel/DibBuffer.h"

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
    /// Done with the chosen colour in the record; NothingDone when it was given up or is open
    /// already, with nothing changed; BadArgument for null; Failed when there was no dialog.
    i32 Show(ColorChoice* asked);

private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

    void Start(HWND window);
    void OnCommand(u32 id);
    void SetColor(COLORREF color);
    /// The colour that the trackbars stand at.
    COLORREF ChosenColor() const;
    /// Swatch and numbers after the trackbars.
    void FollowBars();
    void ShowSwatch() const;
    void Close(INT_PTR result);
    void GiveUp();

    // While the dialog is open.
    ColorChoice* choice = nullptr;
    HWND dialog = nullptr;
    COLORREF initialColor = 0; // for "Redo"
    DibBuffer picture;         // the swatch's
    i32 swatchWidth = 0;
    i32 swatchHeight = 0;
    DrawingContext swatch;
};

/// A colour word 0xRRGGBBAA without its alpha, and back; the alpha byte comes back as 0, since the
/// platform's form holds none.
COLORREF ColorRefOfWord(u32 word);
u32 WordOfColorRef(COLORREF color);
