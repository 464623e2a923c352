#include "bench/program/Person.h"

#include "platform/core/HostPaths.h"
#include "resources/Ids.h"
#include "shell/MainFrame.h"

#include <windows.h>

#include <utility>

namespace bench
{

namespace
{

constexpr UINT LookMilliseconds = 5;

UINT_PTR looking = 0;
std::u16string nextName;
std::function<void()> answering;

/// The dialog whose control has the keyboard; a job's has neither button and does not count. The
/// main window has a control of every dialog's OK, its command bar, and owns the dialogs.
HWND DialogInFront()
{
    HWND window = GetFocus();
    while (window != nullptr && GetDlgItem(window, IDOK) == nullptr &&
           GetDlgItem(window, IDYES) == nullptr)
        window = GetParent(window);
    return mainFrame != nullptr && window == mainFrame->window ? nullptr : window;
}

void Answer()
{
    if (answering)
        answering();
}

void TypeName(HWND dialog)
{
    SetDlgItemTextW(dialog, ControlFileName, nextName.c_str());
    nextName.clear();
    Answer();
    SendMessageW(dialog, WM_COMMAND, IDOK, 0);
}

// The numbers of controls are each dialog's own matter, so that the first one after a command is
// taken for the file dialog.
void CALLBACK Look(HWND, UINT, UINT_PTR, DWORD)
{
    const HWND dialog = DialogInFront();
    if (dialog == nullptr)
        return;
    if (!nextName.empty()) {
        TypeName(dialog);
        return;
    }
    Answer();
    if (GetDlgItem(dialog, IDYES) != nullptr)
        EndDialog(dialog, IDYES);
    else
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
}

} // namespace

bool TypeNextName(const std::string& file)
{
    std::u16string path;
    if (tavrix::platform::DevicePathOf(file, &path) != tavrix::platform::HostPathResult::Done)
        return false;
    nextName = path.substr(1); // the dialog stands in the root
    if (looking == 0)
        looking = SetTimer(nullptr, 0, LookMilliseconds, Look);
    return true;
}

bool IsNameTaken()
{
    return nextName.empty();
}

void OnLastAnswer(std::function<void()> called)
{
    answering = std::move(called);
}

} // namespace bench
