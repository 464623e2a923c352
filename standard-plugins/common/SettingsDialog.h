// What a plugin asks for in a dialog of settings: numbers and what they are shown by. Constant data
// of a plugin; PluginDialog (common/device) shows it.
#pragma once

#include "standard-plugins/common/PluginSettings.h"

/// The numbers of one dialog in the script.
struct DialogNumbers {
    int english;
    int japanese;
};

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
    /// The value that this text shows as 1, a power of ten: with 100 a value of 250 is "2.50".
    uint32_t one = 1;
};

constexpr uint32_t mostDialogSettings = 16;

/// A dialog that asks for settings and for nothing else.
struct SettingsDialog {
    DialogNumbers numbers;
    const DialogSetting* settings;
    uint32_t count; // mostDialogSettings at most
};

/// Reads all of them; `values` has room for `dialog.count`.
void ReadSettings(const SettingsDialog& dialog, TavrixGetPropertyCallback get, uint32_t* values);
