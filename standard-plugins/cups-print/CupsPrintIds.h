// The numbers that the dialog's script and its code share, beside those of the page.
#ifndef CUPS_PRINT_IDS_H
#define CUPS_PRINT_IDS_H

#define DialogEnglish 100
#define DialogJapanese 101
#define ControlPrinter 1101
#define ControlCopies 1102

#endif
