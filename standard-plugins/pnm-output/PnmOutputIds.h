// The numbers that the dialog's script and its code share.
#pragma once

#define DialogPnmEnglish 100
#define DialogPnmJapanese 101
#define ControlPlain 1001
