// The numbers that the dialog's script and its code share, beside those of the page.
#ifndef PDF_PRINT_IDS_H
#define PDF_PRINT_IDS_H

#define DialogEnglish 100
#define DialogJapanese 101
#define ControlFile 1001

#endif
