#include "tests/endurance/DialogActions.h"

#include "platform/testing/Controls.h"
#include "platform/testing/Testing.h"
#include "platform/testing/WindowTesting.h"
#include "platform/testing/Wire.h"
#include "resources/Ids.h"
#include "tests/endurance/WebServer.h"

#include <algorithm>

namespace endurance
{

namespace
{

using namespace tavrix::testing;

constexpr int Keys[] = {VK_TAB, VK_TAB,  VK_DOWN,  VK_UP,    VK_LEFT, VK_RIGHT,  VK_HOME,
                        VK_END, VK_NEXT, VK_PRIOR, VK_SPACE, VK_BACK, VK_DELETE, '0',
                        '1',    '5',     '9',      'A',      'S',     0xBD};

std::u16string ClassOf(HWND window)
{
    WCHAR name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

bool IsClass(HWND window, const char16_t* wanted)
{
    std::u16string name = ClassOf(window);
    for (char16_t& sign : name)
        sign = static_cast<char16_t>(towlower(sign));
    return name == wanted;
}

/// Values in range and out of it, and what is no number at all.
std::u16string AnyText(Dice& dice)
{
    const std::string server = "http://" + OwnAddress();
    if (dice.Chance(60))
        return Wide(std::to_string(dice.Between(1, 150)));
    return Wide(dice.Pick<std::string>({"0",
                                        "-1",
                                        "1",
                                        "64",
                                        "255",
                                        "256",
                                        "99999999999999999999",
                                        "4294967296",
                                        "65536",
                                        "3.5",
                                        "1e9",
                                        "",
                                        " ",
                                        "abc",
                                        "\xE6\xB0\xB4\xE5\xBD\xA9\xE7\x94\xBB",
                                        "%s%n",
                                        "\\..\\..\\x",
                                        std::string(400, '9'),
                                        server + "/good.png",
                                        server + "/any.jpg",
                                        "http://",
                                        "two\r\nlines",
                                        "\xF0\x9F\x8E\xA8 and letters"}));
}

void SetText(HWND field, Dice& dice, const std::string& name, NoteAction note)
{
    const std::u16string text = AnyText(dice);
    if (dice.Chance(50)) {
        note("set the text of " + name + " to \"" + Utf8(text.c_str()).substr(0, 60) + "\"");
        SetWindowTextW(field, text.c_str());
        return;
    }
    note("type \"" + Utf8(text.c_str()).substr(0, 60) + "\" into " + name);
    SetFocus(field);
    SendMessageW(field, EM_SETSEL, 0, -1);
    CommitText(text);
}

void ClickInside(HWND window, Dice& dice, const std::string& name, NoteAction note)
{
    const RECT place = PlaceOnScreen(window);
    const int x = dice.Below(place.right - place.left);
    const int y = dice.Below(place.bottom - place.top);
    const bool twice = dice.Chance(15);
    note((twice ? "double click in " : "click in ") + name + " at " + std::to_string(x) + ", " +
         std::to_string(y));
    ClickWindow(window, x, y, twice);
}

void DragInside(HWND window, Dice& dice, const std::string& name, NoteAction note)
{
    const RECT place = PlaceOnScreen(window);
    const int x = place.left + dice.Below(place.right - place.left);
    const int y = place.top + dice.Below(place.bottom - place.top);
    const int toX = x + dice.Between(-80, 80);
    const int toY = y + dice.Between(-30, 30);
    note("drag in " + name + " by " + std::to_string(toX - x) + ", " + std::to_string(toY - y));
    DragScreen(x, y, toX, toY);
}

void PressKey(Dice& dice, NoteAction note)
{
    const int key = dice.Pick(Keys);
    const int held = dice.Pick({0, 0, 0, 0, MK_SHIFT, MK_CONTROL, 0x20});
    note("key " + std::to_string(key) + " with " + std::to_string(held));
    TypeKey(key, held);
}

void Leave(const Modal& dialog, Dice& dice, NoteAction note)
{
    // Whatever a person may find to leave it by comes to its turn in the end.
    const int way = dialog.actions > 30 ? 1 + dialog.actions % 4 : dice.Below(10);
    if (way == 1 || way >= 7) {
        note("cancel");
        PostMessageW(dialog.window, WM_COMMAND, IDCANCEL, 0);
    } else if (way == 2) {
        note("Esc");
        TypeKey(VK_ESCAPE);
    } else if (way == 3) {
        note("Enter");
        TypeKey(VK_RETURN);
    } else if (way == 4) {
        note("close");
        PostMessageW(dialog.window, WM_CLOSE, 0, 0);
    } else {
        note("OK");
        if (dice.Chance(50))
            ClickControl(dialog.window, IDOK);
        else
            PostMessageW(dialog.window, WM_COMMAND, IDOK, 0);
    }
}

void UseControl(const Modal& dialog, Dice& dice, NoteAction note)
{
    const std::vector<HWND> controls = ControlsOf(dialog.window);
    if (controls.empty()) {
        Leave(dialog, dice, note);
        return;
    }
    const HWND control = dice.AnyOf(controls);
    const std::string name = NameOf(control);
    if (IsClass(control, u"edit") && dice.Chance(80))
        SetText(control, dice, name, note);
    else if (dice.Chance(20))
        DragInside(control, dice, name, note);
    else
        ClickInside(control, dice, name, note);
}

bool AsksForNameToSave(HWND dialog)
{
    const std::u16string title = ControlText(dialog, ControlHeadline);
    return title.find(u"ave") != title.npos || title.find(u"保存") != title.npos;
}

} // namespace

std::string NameOf(HWND window)
{
    WCHAR text[40] = {};
    GetWindowTextW(window, text, 40);
    return Utf8(ClassOf(window).c_str()) + " " + std::to_string(GetDlgCtrlID(window)) + " \"" +
           Utf8(text) + "\"";
}

void ActInBox(const Modal& box, Dice& dice, NoteAction note)
{
    const std::string text = Utf8(BoxText(box.window).c_str()).substr(0, 60);
    if (dice.Chance(20)) {
        note("Esc in the box \"" + text + "\"");
        TypeKey(VK_ESCAPE);
        return;
    }
    if (dice.Chance(40)) {
        note("Enter in the box \"" + text + "\"");
        TypeKey(VK_RETURN);
        return;
    }
    const int answer = GetDlgItem(box.window, IDYES) != nullptr ? dice.Pick({IDYES, IDNO}) : IDOK;
    note("answer " + std::to_string(answer) + " to the box \"" + text + "\"");
    EndDialog(box.window, answer);
}

/// Mostly a page of the server that is there.
void TypeAddress(HWND field, Dice& dice, NoteAction note)
{
    const std::string address = AnyAddress(static_cast<unsigned>(dice.Below(1000)));
    note("the address " + address.substr(address.rfind('/')));
    SetWindowTextW(field, Wide(address).c_str());
}

void ActInDialog(const Modal& dialog, Dice& dice, NoteAction note)
{
    if (const HWND field = GetDlgItem(dialog.window, ControlUrl);
        field != nullptr && dialog.actions == 0 && dice.Chance(80))
        TypeAddress(field, dice, note);
    else if (field != nullptr && dialog.actions == 1 && dice.Chance(80))
        TypeKey(VK_RETURN);
    else if (dice.Chance(25 + 5 * dialog.actions))
        Leave(dialog, dice, note);
    else if (dice.Chance(25))
        PressKey(dice, note);
    else
        UseControl(dialog, dice, note);
}

void ActInFileDialog(const Modal& dialog, Dice& dice, const Surroundings& surroundings,
                     NoteAction note)
{
    const HWND field = GetDlgItem(dialog.window, ControlFileName);
    if (dialog.actions == 0 && dice.Chance(85)) {
        const std::string name = AsksForNameToSave(dialog.window) ? Surroundings::NameToSave(dice)
                                                                  : surroundings.AnyName(dice);
        note("name the file \"" + name.substr(0, 60) + "\"");
        SetWindowTextW(field, Wide(name).c_str());
    } else if (dialog.actions == 1 && dice.Chance(75)) {
        note("OK in the file dialog");
        PostMessageW(dialog.window, WM_COMMAND, IDOK, 0);
    } else {
        ActInDialog(dialog, dice, note);
    }
}

void ActInPopup(Dice& dice, NoteAction note)
{
    const int way = dice.Below(10);
    if (way < 6) {
        const int key = dice.Pick({VK_DOWN, VK_DOWN, VK_UP, VK_RIGHT, VK_LEFT});
        note("key " + std::to_string(key) + " in the menu");
        TypeKey(key);
    } else if (way < 8) {
        note("Enter on the menu's \"" + Utf8(LitMenuEntry().c_str()) + "\"");
        TypeKey(VK_RETURN);
    } else {
        note("the menu closes");
        ClosePopups();
    }
}

} // namespace endurance
