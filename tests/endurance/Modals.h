// The dialogs and boxes that are open, the innermost last.
#pragma once

#include <windows.h>

#include <vector>

namespace endurance
{

enum class Situation { Window, Popup, Box, Dialog, FileDialog, Job };

struct Modal {
    HWND window = nullptr;
    bool box = false;
    int actions = 0; // what the person has done in it
    int ticks = 0;   // of the message loop, while it is the innermost
};

class Modals
{
public:
    void Opened(HWND window, bool box) { open.push_back({window, box}); }
    /// Null when the main window has the person's attention.
    Modal* Innermost();

private:
    std::vector<Modal> open;
};

/// What kind of dialog it is.
Situation SituationOf(const Modal& modal);

} // namespace endurance
