// A person's hands: clicks and keys, given to the host window as a display would give them, so that
// grabs, focus and modal windows take part.
#include "platform/testing/WindowTesting.h"

#include "platform/qt/Window.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QTest>
#include <QWidget>
#include <QWindow>

namespace tavrix::testing
{
namespace
{

constexpr int AltFlag = 0x20;

struct KeyPair {
    int virtualKey;
    Qt::Key key;
};

constexpr KeyPair Keys[] = {
    {VK_BACK, Qt::Key_Backspace}, {VK_TAB, Qt::Key_Tab},         {VK_RETURN, Qt::Key_Return},
    {VK_SHIFT, Qt::Key_Shift},    {VK_CONTROL, Qt::Key_Control}, {VK_MENU, Qt::Key_Alt},
    {VK_ESCAPE, Qt::Key_Escape},  {VK_PRIOR, Qt::Key_PageUp},    {VK_NEXT, Qt::Key_PageDown},
    {VK_END, Qt::Key_End},        {VK_HOME, Qt::Key_Home},       {VK_LEFT, Qt::Key_Left},
    {VK_UP, Qt::Key_Up},          {VK_RIGHT, Qt::Key_Right},     {VK_DOWN, Qt::Key_Down},
    {VK_INSERT, Qt::Key_Insert},  {VK_DELETE, Qt::Key_Delete},   {0xBB, Qt::Key_Plus},
    {0xBD, Qt::Key_Minus},        {0xBC, Qt::Key_Comma},         {0xBE, Qt::Key_Period},
};

// Space, digits and letters have the same number in both.
Qt::Key KeyOf(int virtualKey)
{
    for (const KeyPair& pair : Keys)
        if (pair.virtualKey == virtualKey)
            return pair.key;
    if (virtualKey >= VK_F1 && virtualKey < VK_F1 + 24)
        return static_cast<Qt::Key>(Qt::Key_F1 + virtualKey - VK_F1);
    return static_cast<Qt::Key>(virtualKey);
}

// What a keyboard types with a key. The toolkit's own helper knows neither Shift nor Ctrl here.
QString TextOf(int virtualKey, Qt::KeyboardModifiers held)
{
    constexpr int ControlBits = 0x1F;
    if (virtualKey >= 'A' && virtualKey <= 'Z') {
        if ((held & Qt::ControlModifier) != 0)
            return QString(QChar(virtualKey & ControlBits));
        const QChar letter(virtualKey);
        return QString((held & Qt::ShiftModifier) != 0 ? letter : letter.toLower());
    }
    if (virtualKey == VK_SPACE || (virtualKey >= '0' && virtualKey <= '9'))
        return QString(QChar(virtualKey));
    switch (virtualKey) {
    case VK_RETURN:
        return QStringLiteral("\r");
    case VK_TAB:
        return QStringLiteral("\t");
    case VK_BACK:
        return QStringLiteral("\b");
    case VK_ESCAPE:
        return QStringLiteral("\x1b");
    case 0xBB:
        return QStringLiteral("+");
    case 0xBC:
        return QStringLiteral(",");
    case 0xBD:
        return QStringLiteral("-");
    case 0xBE:
        return QStringLiteral(".");
    default:
        return {};
    }
}

// An opened menu or list lies over everything and has the pointer and the keys.
QWidget* PopupAt(QPoint onDesktop)
{
    for (QWidget* popup = QApplication::activePopupWidget(); popup != nullptr;
         popup = popup->parentWidget())
        if (popup->isWindow() && popup->isVisible() && popup->geometry().contains(onDesktop))
            return popup;
    return nullptr;
}

// The host window, and where a point of the device screen lies on it.
QWindow* Host()
{
    return platform::ScreenWidget()->window()->windowHandle();
}

QPoint OnHost(int x, int y)
{
    const QWidget* screen = platform::ScreenWidget();
    return screen->mapTo(screen->window(), QPoint(x, y));
}

void ClickWidget(QWidget& top, QPoint at, Qt::KeyboardModifiers held = Qt::NoModifier)
{
    if (QWindow* window = top.windowHandle())
        QTest::mouseClick(window, Qt::LeftButton, held, at);
}

Qt::KeyboardModifiers HeldOf(int modifiers)
{
    Qt::KeyboardModifiers held = Qt::NoModifier;
    held.setFlag(Qt::ControlModifier, (modifiers & MK_CONTROL) != 0);
    held.setFlag(Qt::ShiftModifier, (modifiers & MK_SHIFT) != 0);
    held.setFlag(Qt::AltModifier, (modifiers & AltFlag) != 0);
    return held;
}

void MovePointer(QTest::MouseAction action, Qt::MouseButton button, QPoint at, int modifiers)
{
    if (QWindow* window = Host())
        QTest::mouseEvent(action, window, button, HeldOf(modifiers), OnHost(at.x(), at.y()));
}

// A host window that has just come up becomes the active one a moment later, as on a real display,
// and has no keyboard before.
void AwaitActivation()
{
    constexpr int Tries = 200;
    for (int i = 0; i < Tries && QApplication::activeWindow() == nullptr; ++i)
        QTest::qWait(5);
}

void SendKey(QTest::KeyAction action, int virtualKey, Qt::KeyboardModifiers held)
{
    AwaitActivation();
    const QWidget* top = QApplication::activePopupWidget();
    if (top == nullptr)
        top = QApplication::activeWindow();
    if (top == nullptr)
        top = platform::ScreenWidget()->window();
    if (QWindow* window = top->windowHandle())
        QTest::sendKeyEvent(action, window, KeyOf(virtualKey), TextOf(virtualKey, held), held);
}

} // namespace

void ClickScreen(int x, int y, int modifiers)
{
    QWidget* screen = platform::ScreenWidget();
    const QPoint onDesktop = screen->mapToGlobal(QPoint(x, y));
    if (QWidget* popup = PopupAt(onDesktop))
        ClickWidget(*popup, popup->mapFromGlobal(onDesktop), HeldOf(modifiers));
    else
        ClickWidget(*screen->window(), OnHost(x, y), HeldOf(modifiers));
}

void RightClickScreen(int x, int y)
{
    if (QWindow* window = Host())
        QTest::mouseClick(window, Qt::RightButton, Qt::NoModifier, OnHost(x, y));
}

void DragScreen(int x, int y, int toX, int toY)
{
    PressScreen(x, y);
    MoveScreen((x + toX) / 2, (y + toY) / 2);
    MoveScreen(toX, toY);
    ReleaseScreen(toX, toY);
}

void PressScreen(int x, int y, int modifiers)
{
    MovePointer(QTest::MousePress, Qt::LeftButton, QPoint(x, y), modifiers);
}

void MoveScreen(int x, int y, int modifiers)
{
    MovePointer(QTest::MouseMove, Qt::NoButton, QPoint(x, y), modifiers);
}

void ReleaseScreen(int x, int y, int modifiers)
{
    MovePointer(QTest::MouseRelease, Qt::LeftButton, QPoint(x, y), modifiers);
}

void CommitText(const std::u16string& text)
{
    AwaitActivation();
    QObject* focus = QGuiApplication::focusObject();
    if (focus == nullptr)
        return;
    QInputMethodEvent composed(QString::fromStdU16String(text), {});
    QCoreApplication::sendEvent(focus, &composed);
    QInputMethodEvent done;
    done.setCommitString(QString::fromStdU16String(text));
    QCoreApplication::sendEvent(focus, &done);
}

void DoubleClickScreen(int x, int y)
{
    if (QWindow* window = Host())
        QTest::mouseDClick(window, Qt::LeftButton, Qt::NoModifier, OnHost(x, y));
}

void ClickControl(HWND dialog, int id)
{
    const platform::Window* control = platform::FindWindowRecord(GetDlgItem(dialog, id));
    if (control == nullptr)
        return;
    QWidget* widget = control->widget;
    ClickWidget(*widget->window(), widget->mapTo(widget->window(), widget->rect().center()));
}

void TypeKey(int virtualKey, int modifiers)
{
    SendKey(QTest::Click, virtualKey, HeldOf(modifiers));
}

void HoldKey(int virtualKey, bool down)
{
    SendKey(down ? QTest::Press : QTest::Release, virtualKey, Qt::NoModifier);
}

std::u16string ControlText(HWND dialog, int id)
{
    const HWND control = GetDlgItem(dialog, id);
    std::u16string text(static_cast<size_t>(GetWindowTextLengthW(control)) + 1, 0);
    const int length = GetWindowTextW(control, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<size_t>(length));
    return text;
}

} // namespace tavrix::testing
