// The whole program inside a test: its entry run for real on a file, headless, with a script that
// acts once the start is over. One run a test process.
#pragma once

#include "platform/testing/WindowTesting.h"
#include "shell/MainFrame.h"

#include <functional>
#include <string>

namespace tavrix::testing
{

/// Puts a plugin library into the user's own plugin folder of a kind, where the program finds it.
void InstallPlugin(const std::string& library, const std::string& kind = "INPUT");
/// The same under another file name.
void InstallPluginAs(const std::string& library, const std::string& kind, const std::string& file);
/// A plugin of the fixture labelled.c, whose file name says what it answers: without the ".dll".
void InstallLabelled(const std::string& kind, const std::string& label);
/// The bundled INPUT plugins.
void InstallBundledPlugins();

/// Puts a settings file of these lines where the next start finds it.
void WriteSettings(const std::u16string& lines);
/// Writes the settings anew: the program starts without the toolbox and the colorbox, which would
/// lie over the picture.
void HideToolWindows();

/// The device path of a host file.
std::u16string DevicePath(const std::string& hostPath);

/// Makes the program's resources known, as its host's entry does. RunProgram does it by itself.
void RegisterProgramResources();

using Step = std::function<void(MainFrame&)>;

/// Runs the program's entry on a command line (as the device sees it). Once the main window is
/// shown the steps run with the frame, one after the other; between two of them the program's own
/// message loop has the time to handle what the first brought about (keys pass the accelerators
/// only there). Then the window is closed. Answers the exit code.
int RunProgram(const std::u16string& commandLine, const std::vector<Step>& steps);
int RunProgram(const std::u16string& commandLine, const Step& step);
/// The same with a host file in quotes.
int RunProgramOn(const std::string& hostPath, const std::vector<Step>& steps);
int RunProgramOn(const std::string& hostPath, const Step& step);

/// The texts that the progress dialog's status line showed during the run, in order, each once.
const std::vector<std::u16string>& StatusTexts();
/// Milliseconds for which the last progress dialog was open.
DWORD ProgressDialogTime();

} // namespace tavrix::testing
