// The application object: makes the main window and runs the program's one message loop.
#pragma once

#include "shell/MainFrame.h"

class Application
{
public:
    virtual ~Application() = default;

    /// Registers the window class, loads the keys and makes the main window. Done, or NothingDone
    /// when there is no window.
    [[nodiscard]] virtual i32 Init();
    /// Runs until the quit message; its wParam.
    virtual i32 Run();
    /// What is to be done behind the loop: nothing. Never called; Done.
    virtual i32 Exit();

    MainFrame* frame = nullptr; // not owned
    HINSTANCE instance = nullptr;
    HINSTANCE previousInstance = nullptr; // always null
    const WCHAR* commandLine = nullptr;
    int showCommand = 0; // stored and never used
    HACCEL accelerators = nullptr;
};
