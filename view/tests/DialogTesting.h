// What the tests of the dialogs about the picture and the program share: the dialog while it is
// open, and the ways out that each has.
#pragma once

#include "view/tests/PenTesting.h"

#include <functional>

namespace dialogtest
{

using namespace tavrix::testing;
using pentest::PenFrame;
using Text = std::u16string;
using Texts = std::vector<Text>;

/// The dialog while it is open.
struct Dialog {
    HWND window;

    HWND Control(int id) const { return GetDlgItem(window, id); }
    Text Of(int id) const { return ControlText(window, id); }
    Text Caption() const
    {
        WCHAR text[100] = {};
        GetWindowTextW(window, text, 100);
        return text;
    }
    void Command(WPARAM id) const { SendMessageW(window, WM_COMMAND, id, 0); }
    void Close() const { PostMessageW(window, WM_COMMAND, IDOK, 0); }
};

inline RECT PlaceOf(HWND window)
{
    RECT place = {};
    GetWindowRect(window, &place);
    return place;
}

/// Ends the dialog that is open where nothing else does, so that a test fails and does not hang.
class Patience
{
public:
    Patience() { timer = SetTimer(nullptr, 0, Milliseconds, Give); }
    ~Patience()
    {
        KillTimer(nullptr, timer);
        waited = nullptr;
    }
    Patience(const Patience&) = delete;
    Patience& operator=(const Patience&) = delete;
    static inline HWND waited = nullptr; // the dialog

private:
    static constexpr UINT Milliseconds = 60000; // a loaded machine takes its time
    static void CALLBACK Give(HWND, UINT, UINT_PTR, DWORD)
    {
        ADD_FAILURE() << "the dialog does not end";
        EndDialog(waited, 0);
    }
    UINT_PTR timer;
};

/// Runs `open`, which shows one dialog, with a script for it. How many dialogs came up.
inline int Open(const std::function<void()>& open, const std::function<void(const Dialog&)>& script)
{
    const Patience patience;
    int dialogs = 0;
    OnModal([&](HWND window, bool box) {
        EXPECT_FALSE(box);
        ++dialogs;
        Patience::waited = window;
        script(Dialog{window});
    });
    open();
    OnModal({});
    return dialogs;
}

/// Presses the cross in the caption.
inline void ClickCross(HWND dialog)
{
    const RECT place = PlaceOf(dialog);
    ClickScreen(place.right - 12, place.top + 12);
}

/// The focus goes through the controls in this order and back to the first.
inline void ExpectTabOrder(const Dialog& dialog, const std::vector<int>& ids)
{
    for (const int id : ids) {
        EXPECT_EQ(GetFocus(), dialog.Control(id)) << id;
        TypeKey(VK_TAB);
    }
    EXPECT_EQ(GetFocus(), dialog.Control(ids.front()));
    TypeKey(VK_TAB, MK_SHIFT);
    EXPECT_EQ(GetFocus(), dialog.Control(ids.back()));
}

/// Each way out of a dialog of which commands 1 and 2 are the end ends it, and no other command
/// does.
inline void ExpectWaysOut(const std::function<void()>& open, const std::vector<WPARAM>& others)
{
    const std::function<void(const Dialog&)> ways[] = {
        [](const Dialog& dialog) { ClickControl(dialog.window, IDOK); },
        [](const Dialog& dialog) { ClickCross(dialog.window); },
        [](const Dialog&) { TypeKey(VK_ESCAPE); },
        [](const Dialog&) { TypeKey(VK_RETURN); },
        [](const Dialog& dialog) { PostMessageW(dialog.window, WM_CLOSE, 0, 0); },
        [](const Dialog& dialog) { PostMessageW(dialog.window, WM_COMMAND, 1, 0); },
        [](const Dialog& dialog) { PostMessageW(dialog.window, WM_COMMAND, 2, 0); },
    };
    for (size_t way = 0; way < std::size(ways); ++way) {
        SCOPED_TRACE(way);
        EXPECT_EQ(Open(open,
                       [&](const Dialog& dialog) {
                           Pump(20);
                           for (const WPARAM id : others)
                               dialog.Command(id);
                           Pump(20);
                           EXPECT_TRUE(IsWindowVisible(dialog.window))
                               << "another command ended it";
                           ways[way](dialog);
                       }),
                  1);
    }
}

} // namespace dialogtest
