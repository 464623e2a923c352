// Every dialog of the program and of its plugins on the smallest screen that is usual: all of it
// can be seen, and each control can be met, by a finger too (which reaches a little farther than
// its own place, but not through another control).

#include "tests/support/Program.h"

#include "platform/qt/Window.h"
#include "platform/testing/Controls.h"
#include "platform/testing/core/TestPaths.h"

#include <gtest/gtest.h>

#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

using namespace tavrix::testing;
namespace fs = std::filesystem;
namespace platform = tavrix::platform;

namespace
{

constexpr int ScreenWidth = 800;
constexpr int ScreenHeight = 480;
constexpr int LeastWidth = 14;
constexpr int LeastHeight = 18;
constexpr LANGID Japanese = 1041;
constexpr LANGID English = 1033;

/// A module with dialogs; a null instance is the program.
struct Module {
    std::string name;
    HINSTANCE instance;
};

struct Control {
    std::string name; // class and number
    RECT place;       // on the screen
};

int Width(const RECT& place)
{
    return place.right - place.left;
}
int Height(const RECT& place)
{
    return place.bottom - place.top;
}

std::string Shown(const RECT& place)
{
    return std::to_string(place.left) + "," + std::to_string(place.top) + " " +
           std::to_string(Width(place)) + "x" + std::to_string(Height(place));
}

bool Holds(const RECT& outer, const RECT& inner)
{
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

bool Meet(const RECT& a, const RECT& b)
{
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

INT_PTR CALLBACK DoNothing(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

/// Whether a control is there for the pointer, be it disabled for the moment.
bool IsForThePointer(const platform::Window& control)
{
    const std::string name = Utf8(control.windowClass->name.c_str());
    if (name == "STATIC")
        return (control.style & SS_NOTIFY) != 0;
    if (name == "BUTTON")
        return (control.style & BS_TYPEMASK) != BS_GROUPBOX;
    return name != "msctls_progress32";
}

/// The visible controls that a person uses. The field inside a combo box is a part of it.
std::vector<Control> UsedControls(HWND dialog)
{
    std::vector<Control> controls;
    const platform::Window* record = platform::FindWindowRecord(dialog);
    for (const QWidget* widget : record->widget->findChildren<QWidget*>()) {
        const platform::Window* control = platform::WindowOfWidget(widget);
        if (control->widget == widget && control->parent == record && widget->isVisible() &&
            IsForThePointer(*control))
            controls.push_back(
                {Utf8(control->windowClass->name.c_str()) + " " + std::to_string(control->id),
                 PlaceOnScreen(control->handle)});
    }
    return controls;
}

std::vector<Module> BundledPlugins()
{
    std::vector<Module> modules;
    for (const auto& entry : fs::recursive_directory_iterator(InBuild("/bin/PLUGINS"))) {
        if (entry.path().extension() != ".dll")
            continue;
        const HINSTANCE instance = LoadLibraryW(DevicePath(entry.path()).c_str());
        EXPECT_NE(instance, nullptr) << entry.path();
        if (instance != nullptr)
            modules.push_back({entry.path().filename(), instance});
    }
    return modules;
}

/// The numbers of a module's dialogs. They are asked for one by one, all that there can be.
std::vector<WORD> DialogsOf(const Module& module)
{
    std::vector<WORD> found;
    for (int number = 1; number <= 0xFFFF; ++number) {
        if (FindResourceW(module.instance, MAKEINTRESOURCEW(number), RT_DIALOG) != nullptr)
            found.push_back(static_cast<WORD>(number));
        else if (GetLastError() == ERROR_RESOURCE_DATA_NOT_FOUND)
            break; // it has no resources at all
    }
    return found;
}

HWND ShowDialog(const Module& module, WORD number)
{
    const HRSRC resource = FindResourceW(module.instance, MAKEINTRESOURCEW(number), RT_DIALOG);
    const auto* bytes =
        static_cast<LPCDLGTEMPLATEW>(LockResource(LoadResource(module.instance, resource)));
    const HWND dialog = CreateDialogIndirectParamW(module.instance, bytes, nullptr, DoNothing, 0);
    if (dialog != nullptr)
        ShowWindow(dialog, SW_SHOW);
    return dialog;
}

/// What the test has seen, so that one which saw nothing cannot pass.
struct Seen {
    int dialogs = 0;
    int controls = 0;
    Control lowest{"", {0, 0, 9999, 9999}};
    Control narrowest{"", {0, 0, 9999, 9999}};
};

void ExpectRoomForEach(const std::vector<Control>& controls, const RECT& dialog)
{
    for (const Control& control : controls) {
        EXPECT_TRUE(Holds(dialog, control.place)) << control.name << " " << Shown(control.place);
        EXPECT_GE(Width(control.place), LeastWidth) << control.name;
        EXPECT_GE(Height(control.place), LeastHeight) << control.name;
        for (const Control& other : controls) {
            if (&other == &control)
                break;
            EXPECT_FALSE(Meet(control.place, other.place))
                << control.name << " " << Shown(control.place) << " and " << other.name << " "
                << Shown(other.place);
        }
    }
}

void Note(Seen& seen, const std::string& dialog, const std::vector<Control>& controls)
{
    ++seen.dialogs;
    for (const Control& control : controls) {
        ++seen.controls;
        const Control named{dialog + ", " + control.name, control.place};
        if (Height(control.place) < Height(seen.lowest.place))
            seen.lowest = named;
        if (Width(control.place) < Width(seen.narrowest.place))
            seen.narrowest = named;
    }
}

void ExpectOnTheScreen(const Module& module, WORD number, Seen& seen)
{
    const std::string name = module.name + ", dialog " + std::to_string(number);
    SCOPED_TRACE(name);
    const HWND dialog = ShowDialog(module, number);
    ASSERT_NE(dialog, nullptr);
    const RECT place = PlaceOnScreen(dialog);
    EXPECT_TRUE(Holds({0, 0, ScreenWidth, ScreenHeight}, place)) << Shown(place);
    const std::vector<Control> controls = UsedControls(dialog);
    ExpectRoomForEach(controls, place);
    Note(seen, name, controls);
    DestroyWindow(dialog);
}

Seen LookAtAll(LANGID language)
{
    setenv("TAVRIX_SCREEN", "800x480", 1);
    SetLanguage(language);
    RegisterProgramResources();
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), ScreenWidth);
    EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), ScreenHeight);
    std::vector<Module> modules = BundledPlugins();
    modules.push_back({"the program", nullptr});
    Seen seen;
    for (const Module& module : modules) {
        const std::vector<WORD> dialogs = DialogsOf(module);
        if (module.instance != nullptr) {
            EXPECT_EQ(dialogs.size() % 2, 0u) << module.name << ": one for each language";
        }
        for (const WORD number : dialogs)
            ExpectOnTheScreen(module, number, seen);
    }
    std::cout << seen.dialogs << " dialogs, " << seen.controls << " controls; the lowest "
              << Shown(seen.lowest.place) << " (" << seen.lowest.name << "), the narrowest "
              << Shown(seen.narrowest.place) << " (" << seen.narrowest.name << ")\n";
    return seen;
}

void ExpectThatAllWereSeen(const Seen& seen)
{
    EXPECT_GE(seen.dialogs, 100);
    EXPECT_GE(seen.controls, 600);
}

} // namespace

// The smallest are 19 pixels high (check and radio buttons) and 19 wide (the swatches of the
// colorbox, which gives them 19 by 21 itself). No dialog is an exception.
TEST(DialogSizes, OnASmallScreenEveryControlCanBeMetInEnglish)
{
    Scope scope;
    ExpectThatAllWereSeen(LookAtAll(English));
}

TEST(DialogSizes, OnASmallScreenEveryControlCanBeMetInJapanese)
{
    Scope scope;
    ExpectThatAllWereSeen(LookAtAll(Japanese));
}
