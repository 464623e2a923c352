#include "tests/endurance/Modals.h"

#include "resources/Ids.h"

namespace endurance
{

Modal* Modals::Innermost()
{
    std::erase_if(open, [](const Modal& modal) { return !IsWindow(modal.window); });
    return open.empty() ? nullptr : &open.back();
}

Situation SituationOf(const Modal& modal)
{
    if (modal.box)
        return Situation::Box;
    if (GetDlgItem(modal.window, ControlProgressBar) != nullptr &&
        GetDlgItem(modal.window, ControlHeadline) != nullptr)
        return Situation::Job;
    if (GetDlgItem(modal.window, ControlFileList) != nullptr &&
        GetDlgItem(modal.window, ControlFileFilter) != nullptr)
        return Situation::FileDialog;
    return Situation::Dialog;
}

} // namespace endurance
