// The program's entry: command line, log, single instance, objects, settings, window, loop, and all
// of it down again.

#include "shell/Application.h"
#include "shell/CommandLine.h"
#include "shell/Logger.h"
#include "shell/SettingsSearch.h"

#include <commctrl.h>
#include <new>
#include <stdlib.h>

namespace
{

constexpr i32 StartFailed = -1;

/// True if another instance was found; it has the command line then, and this one is to end.
bool HandOver(const WCHAR* commandLine)
{
    HANDLE mutex = CreateMutexW(nullptr, TRUE, TEXT("Tavrix_Mutex"));
    const DWORD error = GetLastError();
    if (mutex == nullptr || error != ERROR_ALREADY_EXISTS)
        return false;
    HWND other = FindWindowW(TEXT("Tavrix"), nullptr);
    if (other == nullptr)
        return false; // still coming up, or going down: this start goes on as one of its own
    BringWindowToTop(other);
    SetForegroundWindow(other);
    COPYDATASTRUCT record = {};
    record.dwData = 1;
    record.cbData = static_cast<DWORD>((wcslen(commandLine) + 1) * sizeof(WCHAR));
    record.lpData = const_cast<WCHAR*>(commandLine);
    SendMessageW(other, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
    return true;
}

i32 RunFrame(Application* application, HINSTANCE instance, const WCHAR* commandLine,
             int showCommand)
{
    logger->Write(TEXT("Initialize common control."));
    INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&controls);

    MainFrame* frame = application->frame;
    application->instance = instance;
    application->commandLine = commandLine;
    application->showCommand = showCommand;

    logger->Write(TEXT("Open Tavrix.ini and load configuration."));
    FindSettings(frame->settings);
    // Only a carrier: the frame reads it back moments later and opens what it names, so that the
    // first start and a hand-over share one road.
    frame->settings->SetText(ProgramSection, TEXT("LastCommandLine"), commandLine);

    logger->Write(TEXT("Initialize application instance."));
    if (application->Init() != Done) {
        frame->settings->Close(1);
        return StartFailed;
    }
    logger->Write(TEXT("Now, run application."));
    return application->Run();
}

i32 RunApplication(HINSTANCE instance, const WCHAR* commandLine, int showCommand)
{
    logger->Write(TEXT("Create new application object."));
    auto* application = new (std::nothrow) Application;
    if (application == nullptr) {
        MessageBoxW(nullptr, TEXT("Filed to initialize Application Object."), TEXT("ERROR"),
                    MB_ICONHAND);
        return StartFailed;
    }
    logger->Write(TEXT("Create new window object."));
    application->frame = new (std::nothrow) MainFrame;
    i32 result = StartFailed;
    // A frame that found no memory for one of its objects is no frame.
    if (application->frame == nullptr || !application->frame->IsWhole())
        MessageBoxW(nullptr, TEXT("Filed to initialize Window Object."), TEXT("ERROR"),
                    MB_ICONHAND);
    else
        result = RunFrame(application, instance, commandLine, showCommand);
    delete application->frame;
    delete application;
    return result;
}

} // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, LPWSTR line, int showCommand)
{
    // Static, so that it stays within reach where it is left to the end of the process.
    static WCHAR* quotedName;
    quotedName = TakeQuotedName(line);
    const WCHAR* commandLine = quotedName != nullptr ? quotedName : line;

    logger = new (std::nothrow) Logger;
    if (logger == nullptr) {
        MessageBoxW(nullptr, TEXT("Failed to initialize Logger."), TEXT("ERROR"),
                    MB_ICONHAND | MB_TOPMOST);
        return StartFailed;
    }
    logger->Begin();

    // Nothing is cleaned up on this road: it all goes with the process, and the log, which belongs
    // to the other instance now, gets no last line.
    if (HandOver(commandLine))
        return 0;

    const i32 result = RunApplication(instance, commandLine, showCommand);
    delete logger;
    logger = nullptr;
    free(quotedName);
    return result;
}
