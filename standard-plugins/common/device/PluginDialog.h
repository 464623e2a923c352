// A plugin's dialogs, from its own resource script (RESOURCES in the CMakeLists), in the language
// that SetLanguage was told. The script holds every dialog twice, under a number for each language
// and as LANGUAGE LANG_NEUTRAL both, so that the plugin's language decides and not the device's.
// User-interface thread: inside Configure alone.
#pragma once

#include "standard-plugins/common/SettingsDialog.h"

#include <windows.h>

/// Shows a dialog over `owner`, which may be null. PluginDone when it ended with IDOK,
/// PluginNothing with IDCANCEL, PluginFailed when it cannot be shown or ended otherwise.
/// `parameter` comes to the procedure with WM_INITDIALOG.
int32_t ShowPluginDialog(const DialogNumbers& numbers, TavrixWindow owner, DLGPROC procedure,
                         LPARAM parameter);

/// Who draws beside the settings, a preview.
struct DialogFollower {
    void* self;
    /// The dialog's procedure for every message that the settings do not need; FALSE where it does
    /// nothing.
    INT_PTR (*handle)(void* self, HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    /// The controls show `values`, at first and after each change.
    void (*changed)(void* self, HWND dialog, const uint32_t* values);
};

/// Lets an open dialog of settings show other values, `dialog.count` of them; the follower is told.
void ShowSettings(HWND dialog, const uint32_t* values);

/// Carries out Configure: shows the dialog with the stored settings and stores what was chosen once
/// OK was pressed. PluginDone; PluginNothing when the user cancelled, and nothing is stored;
/// PluginBadArgument for a null callback; PluginFailed when it cannot be shown or a setting cannot
/// be stored.
/// `follower` may be null.
int32_t AskSettings(const SettingsDialog& dialog, TavrixWindow owner, TavrixPutPropertyCallback put,
                    TavrixGetPropertyCallback get, const DialogFollower* follower = nullptr);
