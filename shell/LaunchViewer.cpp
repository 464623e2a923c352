// Starting the sibling viewer, which stands beside the program, on the current file.

#include "foundation/BoundedText.h"
#include "foundation/KnownFolders.h"
#include "foundation/Language.h"
#include "shell/Boxes.h"
#include "shell/MainFrame.h"

#include <stdlib.h>

namespace
{

constexpr u32 ViewerPathCapacity = 1024;

} // namespace

void MainFrame::LaunchViewer()
{
    auto* path = static_cast<WCHAR*>(calloc(ViewerPathCapacity, sizeof(WCHAR)));
    if (path == nullptr) {
        MessageBeep(0xFFFFFFFF);
        return;
    }
    (void)GetApplicationDirectory(path, ViewerPathCapacity);
    (void)AppendText(path, ViewerPathCapacity, TEXT("\\Mirelook.exe"));
    const int answer =
        MessageBoxW(window,
                    InLanguage(TEXT("Do you want to close Tavrix before execute Mirelook?"),
                               TEXT("Mirelookを起動する前にTavrixを終了させますか？")),
                    InLanguage(TEXT("Question"), TEXT("確認")), MB_YESNO | MB_ICONQUESTION);

    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    // Suspended, so that the close is on its way before the other program begins.
    if (CreateProcessW(path, openedPath, nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr,
                       nullptr, &startup, &process)) {
        if (answer == IDYES)
            PostMessageW(window, WM_CLOSE, 0, 0);
        // Meant: the two handles stay open. They go with the process.
        ResumeThread(process.hThread);
    } else {
        ShowError(window, TEXT("Failed to execute Mirelook."),
                  TEXT("Mirelookの起動に失敗しました。"));
    }
    free(path);
}
