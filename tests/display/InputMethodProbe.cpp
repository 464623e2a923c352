// A dialog with an edit field of each form and a default button, on a real display: tells every
// text that a field gets, in UTF-8, with its number, and every press of a button. "field N" on
// standard input gives that field the keyboard. Ends with standard input.
#include "platform/testing/WindowTesting.h"

#include <windows.h>

#include <csignal>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

using namespace tavrix::testing;

namespace
{

constexpr int FirstField = 100;
constexpr UINT GiveKeyboard = WM_APP + 1; // wParam: the field's number
constexpr UINT EndOfInput = WM_APP + 2;

struct Item {
    const WCHAR* className;
    DWORD style;
    int y;
    int height;
    int id;
    const WCHAR* text;
};

const Item Items[] = {
    {TEXT("EDIT"), WS_BORDER | ES_AUTOHSCROLL, 10, 24, FirstField, TEXT("")},
    {TEXT("EDIT"), WS_BORDER | ES_MULTILINE, 40, 60, FirstField + 1, TEXT("")},
    {TEXT("COMBOBOX"), CBS_DROPDOWN, 110, 100, FirstField + 2, TEXT("")},
    {TEXT("BUTTON"), BS_DEFPUSHBUTTON, 150, 24, IDOK, TEXT("OK")},
    {TEXT("BUTTON"), BS_PUSHBUTTON, 180, 24, IDCANCEL, TEXT("Cancel")},
};

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM)
{
    switch (message) {
    case WM_INITDIALOG:
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) < FirstField)
            std::cout << "button " << LOWORD(wParam) << std::endl;
        else if (HIWORD(wParam) == EN_CHANGE || HIWORD(wParam) == CBN_EDITCHANGE)
            std::cout << "field " << LOWORD(wParam) - FirstField << ' '
                      << Utf8(ControlText(dialog, LOWORD(wParam)).c_str()) << std::endl;
        return TRUE;
    case GiveKeyboard:
        SetFocus(GetDlgItem(dialog, FirstField + static_cast<int>(wParam)));
        std::cout << "has the keyboard" << std::endl;
        return TRUE;
    case EndOfInput:
        EndDialog(dialog, 0);
        return TRUE;
    default:
        return FALSE;
    }
}

/// A template without items in the device's form, 240 by 120 units.
std::vector<WORD> EmptyTemplate()
{
    return {0, 0x8080 /* WS_POPUP, WS_BORDER */, 0, 0, 0, 0, 0, 240, 120, 0, 0, 0};
}

} // namespace

int main()
{
    (void)GetSystemMetrics(SM_CXSCREEN); // the toolkit, which asks its windows before it ends
    std::signal(SIGTERM, SIG_DFL);
    std::thread reader;
    OnModal([&reader](HWND dialog, bool) {
        for (const Item& item : Items)
            CreateWindowExW(0, item.className, item.text,
                            WS_CHILD | WS_VISIBLE | WS_TABSTOP | item.style, 10, item.y, 300,
                            item.height, dialog, reinterpret_cast<HMENU>(INT_PTR{item.id}), nullptr,
                            nullptr);
        reader = std::thread([dialog] {
            for (std::string line; std::getline(std::cin, line);)
                PostMessageW(dialog, GiveKeyboard, static_cast<WPARAM>(line.back() - '0'), 0);
            PostMessageW(dialog, EndOfInput, 0, 0);
        });
    });
    const std::vector<WORD> words = EmptyTemplate();
    DialogBoxIndirectParamW(nullptr, reinterpret_cast<LPCDLGTEMPLATEW>(words.data()), nullptr,
                            Procedure, 0);
    reader.join();
    return 0;
}
