// What the person does in the main window, and what happens around it.

#include "tests/endurance/RandomPerson.h"

#include "platform/testing/Controls.h"
#include "platform/testing/Testing.h"
#include "platform/testing/WindowTesting.h"
#include "resources/Ids.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

#include <filesystem>
#include <fstream>

namespace endurance
{

namespace
{

using namespace tavrix::testing;

constexpr u32 Commands[] = {CommandNew,
                            CommandOpenFile,
                            CommandOpenFile,
                            CommandReloadOpened,
                            CommandReloadSaved,
                            CommandSave,
                            CommandSave,
                            CommandVirtualSave,
                            CommandImageInformation,
                            CommandPaletteInformation,
                            CommandAbout,
                            CommandPluginsInfo,
                            CommandInitializeView,
                            CommandZoom25,
                            CommandZoom50,
                            CommandZoom75,
                            CommandZoom100,
                            CommandZoom200,
                            CommandZoom300,
                            CommandZoom400,
                            CommandZoomWindow,
                            CommandDitherOn,
                            CommandScreenColor,
                            CommandScreenMono,
                            CommandScrollLeft,
                            CommandScrollRight,
                            CommandScrollUp,
                            CommandScrollDown,
                            CommandResolution,
                            CommandSize,
                            CommandUndo,
                            CommandUndo,
                            CommandSelectAll,
                            CommandDeselect,
                            CommandCopyToMemory,
                            CommandPasteFromMemory,
                            CommandCopyToClipboard,
                            CommandPasteFromClipboard,
                            CommandClearMemory,
                            CommandClearClipboard,
                            CommandReverseHorizontal,
                            CommandReverseVertical,
                            CommandRotate180,
                            CommandRotateClockwise,
                            CommandRotateCounterClockwise,
                            CommandScroll,
                            CommandSelectRectangle,
                            CommandBrush,
                            CommandColorEraser,
                            CommandAlphaEraser,
                            CommandPipette,
                            CommandText,
                            CommandLaunchViewer,
                            CommandToolboxWindow,
                            CommandColorboxWindow,
                            CommandSubtract,
                            CommandPrintFirst,
                            CommandExit,
                            CommandNothingQuit};

/// The entries of plugins: the first of a menu and how many it can have.
struct Entries {
    u32 first;
    int count;
};
constexpr Entries PluginEntries[] = {{CommandFirstOpenAs, 14}, {CommandFirstSaveAs, 9},
                                     {CommandFirstEffect, 11}, {CommandFirstEffect, 11},
                                     {CommandFirstAdjust, 11}, {CommandFirstAdjust, 11},
                                     {CommandFirstPrint, 2}};

std::u16string PathTo(const std::string& name)
{
    return u"\\" + Wide(name);
}

std::string At(int x, int y)
{
    return std::to_string(x) + ", " + std::to_string(y);
}

} // namespace

void RandomPerson::SendCommand()
{
    u32 id = dice.Pick(Commands);
    if (dice.Chance(25)) {
        const Entries entries = dice.Pick(PluginEntries);
        id = entries.first + static_cast<u32>(dice.Below(entries.count));
    } else if (dice.Chance(10)) {
        id = CommandSave;
    } else if (dice.Chance(3)) {
        id = static_cast<u32>(dice.Below(65536));
    }
    journal.Note("command " + std::to_string(id));
    PostMessageW(mainFrame->window, WM_COMMAND, id, 0);
}

void RandomPerson::OpenOverTheWire()
{
    if (dice.Chance(60)) {
        journal.Note("open an address");
        PostMessageW(mainFrame->window, WM_COMMAND, CommandOpenUrl, 0);
        return;
    }
    const bool inRange = dice.Chance(70);
    const std::string name = surroundings.AnyName(dice);
    Dice own = dice.Fork();
    journal.Note(inRange ? "a device pushes \"" + name.substr(0, 60) + "\""
                         : "wait for a device that is not there");
    if (inRange)
        pusher.Push(InRoot(name), own);
    PostMessageW(mainFrame->window, WM_COMMAND, CommandOpenIrObex, 0);
}

void RandomPerson::PressKey()
{
    struct Key {
        int key;
        int held;
    };
    constexpr int Alt = 0x20;
    static constexpr Key keys[] = {{'A', MK_CONTROL},
                                   {'C', MK_CONTROL},
                                   {'C', MK_CONTROL | Alt},
                                   {'D', MK_CONTROL},
                                   {'K', MK_CONTROL},
                                   {'L', MK_CONTROL},
                                   {'N', MK_CONTROL},
                                   {'O', MK_CONTROL},
                                   {'P', MK_CONTROL},
                                   {'Q', MK_CONTROL},
                                   {'S', MK_CONTROL},
                                   {'S', MK_CONTROL | MK_SHIFT},
                                   {'V', MK_CONTROL},
                                   {'V', MK_CONTROL | Alt},
                                   {'Z', MK_CONTROL},
                                   {VK_DOWN, 0},
                                   {VK_UP, 0},
                                   {VK_LEFT, 0},
                                   {VK_RIGHT, 0},
                                   {VK_F1 + 3, Alt},
                                   {VK_TAB, 0},
                                   {VK_RETURN, 0},
                                   {VK_ESCAPE, 0},
                                   {VK_SPACE, 0},
                                   {'F', Alt},
                                   {'E', Alt},
                                   {'T', Alt},
                                   {'D', Alt},
                                   {'X', 0},
                                   {VK_MENU, 0},
                                   {VK_HOME, MK_SHIFT}};
    const Key key = dice.Pick(keys);
    journal.Note("key " + std::to_string(key.key) + " with " + std::to_string(key.held));
    TypeKey(key.key, key.held);
}

void RandomPerson::UsePen()
{
    if (dice.Chance(30))
        SendMessageW(mainFrame->window, WM_COMMAND,
                     dice.Pick({CommandScroll, CommandSelectRectangle, CommandBrush,
                                CommandColorEraser, CommandAlphaEraser, CommandPipette}),
                     0);
    const int x = dice.Between(-20, 660);
    const int y = dice.Chance(10) ? dice.Between(-5, 30) : dice.Between(26, 500);
    const int way = dice.Below(10);
    if (way == 0) {
        journal.Note("right click at " + At(x, y));
        RightClickScreen(x, y);
    } else if (way == 1) {
        journal.Note("double click at " + At(x, y));
        DoubleClickScreen(x, y);
    } else if (way < 5) {
        const int held = dice.Pick({0, 0, MK_SHIFT, MK_CONTROL});
        journal.Note("click at " + At(x, y) + " with " + std::to_string(held));
        ClickScreen(x, y, held);
    } else {
        const int moves = dice.Between(1, 6);
        journal.Note("drag of " + std::to_string(moves) + " moves from " + At(x, y));
        PressScreen(x, y);
        int toX = x;
        int toY = y;
        for (int i = 0; i < moves; ++i) {
            toX += dice.Between(-120, 120);
            toY += dice.Between(-120, 120);
            MoveScreen(toX, toY);
        }
        // Some let go beyond the screen, and some not before the next press.
        if (!dice.Chance(5))
            ReleaseScreen(toX, toY);
    }
}

void RandomPerson::HandOver()
{
    const std::string name = surroundings.AnyName(dice);
    std::u16string path = PathTo(name);
    if (dice.Chance(5))
        path = u"\"" + path;
    const auto bytes = static_cast<DWORD>((path.size() + 1) * sizeof(WCHAR));
    COPYDATASTRUCT record = {1, bytes, path.data()};
    if (dice.Chance(5))
        record.cbData = static_cast<DWORD>(dice.Below(static_cast<int>(bytes)));
    if (dice.Chance(3))
        record.lpData = nullptr;
    journal.Note("a second start hands over \"" + name.substr(0, 60) + "\"");
    SendMessageW(mainFrame->window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
}

void RandomPerson::UseDesktop()
{
    if (dice.Chance(50)) {
        const std::string name = surroundings.AnyName(dice);
        journal.Note("drop \"" + name.substr(0, 60) + "\"");
        DropFile(InRoot(name));
        return;
    }
    const int x = dice.Below(640);
    const int y = dice.Below(480);
    const int notches = dice.Pick({-3, -1, 1, 2});
    journal.Note("wheel at " + At(x, y) + " by " + std::to_string(notches));
    TurnWheel(x, y, notches);
}

void RandomPerson::UseClipboard()
{
    QClipboard* const clipboard = QGuiApplication::clipboard();
    switch (dice.Below(5)) {
    case 0: {
        QImage image(dice.Between(1, 60), dice.Between(1, 60), QImage::Format_ARGB32);
        image.fill(static_cast<uint>(dice.Next()));
        journal.Note("another program copies a picture");
        clipboard->setImage(image);
        break;
    }
    case 1:
        journal.Note("another program copies a text");
        clipboard->setText(QStringLiteral("words"));
        break;
    case 2: {
        auto* data = new QMimeData;
        data->setData(dice.Chance(50) ? QStringLiteral("image/png") : QStringLiteral("image/bmp"),
                      QByteArray(dice.Below(200), 'B'));
        journal.Note("another program copies a broken picture");
        clipboard->setMimeData(data);
        break;
    }
    case 3:
        journal.Note("the clipboard is emptied");
        clipboard->clear();
        break;
    default:
        journal.Note("the clipboard's timer");
        break;
    }
    PostMessageW(mainFrame->window, WM_TIMER, MainFrame::ClipboardTimer, 0);
}

void RandomPerson::Repaint()
{
    switch (dice.Below(4)) {
    case 0:
        journal.Note("full screen or back");
        TypeKey(VK_F1 + 10);
        break;
    case 1:
        journal.Note("the screen is seen");
        (void)ScreenPixels();
        break;
    default: {
        const RECT part = {dice.Below(640), dice.Below(480), dice.Below(700), dice.Below(500)};
        journal.Note("repaint");
        InvalidateRect(mainFrame->window, dice.Chance(50) ? &part : nullptr, TRUE);
        UpdateWindow(mainFrame->window);
    }
    }
}

void RandomPerson::ChangeMachine()
{
    const int what = dice.Below(100);
    if (what < 65) {
        journal.Note(troubles->Begin(dice));
    } else if (what < 75) {
        const int language = dice.Pick({1033, 1041, 1036});
        journal.Note("language " + std::to_string(language));
        SetLanguage(static_cast<LANGID>(language));
    } else if (what < 88) {
        journal.Note(surroundings.Change(dice));
    } else {
        const std::string name = surroundings.GoodName(dice);
        journal.Note("\"" + name + "\" is written anew by another program");
        const std::string other = surroundings.GoodName(dice);
        if (other != name) {
            std::error_code ignored;
            std::filesystem::copy_file(InRoot(other), InRoot(name),
                                       std::filesystem::copy_options::overwrite_existing, ignored);
        }
    }
}

} // namespace endurance
