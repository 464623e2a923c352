// The numbers of the dialog that asks for the background, as the script names them.
#define DialogBackgroundEnglish 3101
#define DialogBackgroundJapanese 3102
#define ControlBackgroundRed 3111
#define ControlBackgroundRedNumber 3112
#define ControlBackgroundGreen 3113
#define ControlBackgroundGreenNumber 3114
#define ControlBackgroundBlue 3115
#define ControlBackgroundBlueNumber 3116
#define ControlBackgroundAsk 3117
#define ControlBackgroundSwatch 3118
