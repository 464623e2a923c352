// A plugin's dialogs, from its own resource script (RESOURCES in the CMakeLists), in the language
// that SetLanguage was told. The script holds every dialog twice, under a number for each language
// and as LANGUAGE LANG_NEUTRAL both, so that the plugin's language decides and not the device's.
// User-interface thread: inside Configure alone.
#pragma once

#include "standard-plugins/common/PluginSettings.h"

#include <windows.h>

/// The numbers of one dialog in the script.
struct DialogNumbers {
    int english;
    int japanese;
};

/// Shows a dialog over `owner`, which may be null. PluginDone when it ended with IDOK,
/// PluginNothing with IDCANCEL, PluginFailed when it cannot be shown or ended otherwise.
/// `parameter` comes to the procedure with WM_INITDIALOG.
int32_t ShowPluginDialog(const DialogNumbers& numbers, TavrixWindow owner, DLGPROC procedure,
                         LPARAM parameter);

enum class SettingControl {
    Trackbar, // over the setting's range
    Check,    // a check box: 0 and 1
    Choice    // radio buttons, one for each value of the range, with numbers that follow each other
};

/// A setting and what asks for it.
struct DialogSetting {
    PluginSetting setting;
    SettingControl kind;
    /// The control; of radio buttons the first.
    int control;
    /// A text beside a trackbar that always shows its number; 0 for none.
    int number;
    /// The value that this text shows as 0: settings hold no numbers below 0.
    uint32_t zero = 0;
};

constexpr uint32_t mostDialogSettings = 16;

/// A dialog that asks for settings and for nothing else; constant data of a plugin.
struct SettingsDialog {
    DialogNumbers numbers;
    const DialogSetting* settings;
    uint32_t count; // mostDialogSettings at most
};

/// Carries out Configure: shows the dialog with the stored settings and stores what was chosen once
/// OK was pressed. PluginDone; PluginNothing when the user cancelled, and nothing is stored;
/// PluginBadArgument for a null callback; PluginFailed when it cannot be shown or a setting cannot
/// be stored.
int32_t AskSettings(const SettingsDialog& dialog, TavrixWindow owner, TavrixPutPropertyCallback put,
                    TavrixGetPropertyCallback get);
