/* The dialog that asks which colours are inverted. User-interface thread. */
#ifndef INVERT_DIALOG_H
#define INVERT_DIALOG_H

#include <stdint.h>
#include <windows.h>

/* Shows the dialog over `owner` with the colours of *channels checked (bits 0, 1, 2: blue, green,
 * red) and puts the answer there. 1 for OK; 0 when the user cancelled, and *channels stays; -1 when
 * it cannot be shown. */
int32_t AskForChannels(HWND owner, uint32_t *channels);

#endif
