#include "platform/qt/KeyCodes.h"

#include <windows.h>

#include <QKeyEvent>

namespace tavrix::platform
{
namespace
{

struct Pair {
    int key;
    int code;
};

// The codes without a name in the device's headers stand as numbers.
constexpr Pair Named[] = {
    {Qt::Key_Backspace, VK_BACK},  {Qt::Key_Tab, VK_TAB},       {Qt::Key_Backtab, VK_TAB},
    {Qt::Key_Return, VK_RETURN},   {Qt::Key_Enter, VK_RETURN},  {Qt::Key_Shift, VK_SHIFT},
    {Qt::Key_Control, VK_CONTROL}, {Qt::Key_Alt, VK_MENU},      {Qt::Key_Pause, 0x13},
    {Qt::Key_CapsLock, 0x14},      {Qt::Key_Escape, VK_ESCAPE}, {Qt::Key_Space, VK_SPACE},
    {Qt::Key_PageUp, VK_PRIOR},    {Qt::Key_PageDown, VK_NEXT}, {Qt::Key_End, VK_END},
    {Qt::Key_Home, VK_HOME},       {Qt::Key_Left, VK_LEFT},     {Qt::Key_Up, VK_UP},
    {Qt::Key_Right, VK_RIGHT},     {Qt::Key_Down, VK_DOWN},     {Qt::Key_Print, 0x2C},
    {Qt::Key_Insert, VK_INSERT},   {Qt::Key_Delete, VK_DELETE}, {Qt::Key_Menu, 0x5D},
    {Qt::Key_NumLock, 0x90},       {Qt::Key_ScrollLock, 0x91},
};

// Punctuation by the code of its key on the common layout.
constexpr Pair Punctuation[] = {
    {Qt::Key_Semicolon, 0xBA},    {Qt::Key_Colon, 0xBA},      {Qt::Key_Equal, 0xBB},
    {Qt::Key_Plus, 0xBB},         {Qt::Key_Comma, 0xBC},      {Qt::Key_Less, 0xBC},
    {Qt::Key_Minus, 0xBD},        {Qt::Key_Underscore, 0xBD}, {Qt::Key_Period, 0xBE},
    {Qt::Key_Greater, 0xBE},      {Qt::Key_Slash, 0xBF},      {Qt::Key_Question, 0xBF},
    {Qt::Key_QuoteLeft, 0xC0},    {Qt::Key_AsciiTilde, 0xC0}, {Qt::Key_BracketLeft, 0xDB},
    {Qt::Key_BraceLeft, 0xDB},    {Qt::Key_Backslash, 0xDC},  {Qt::Key_Bar, 0xDC},
    {Qt::Key_BracketRight, 0xDD}, {Qt::Key_BraceRight, 0xDD}, {Qt::Key_Apostrophe, 0xDE},
    {Qt::Key_QuoteDbl, 0xDE},
};

// The digit keys with Shift held, on the common layout.
constexpr Pair ShiftedDigits[] = {
    {Qt::Key_Exclam, '1'},     {Qt::Key_At, '2'},       {Qt::Key_NumberSign, '3'},
    {Qt::Key_Dollar, '4'},     {Qt::Key_Percent, '5'},  {Qt::Key_AsciiCircum, '6'},
    {Qt::Key_Ampersand, '7'},  {Qt::Key_Asterisk, '8'}, {Qt::Key_ParenLeft, '9'},
    {Qt::Key_ParenRight, '0'},
};

constexpr int KeypadDigit = 0x60;
constexpr int LastFunctionKey = 24;

template <size_t Count>
int Find(const Pair (&pairs)[Count], int key)
{
    for (const Pair& pair : pairs)
        if (pair.key == key)
            return pair.code;
    return 0;
}

} // namespace

int VirtualKeyOf(const QKeyEvent& event)
{
    const int key = event.key();
    const bool keypad = (event.modifiers() & Qt::KeypadModifier) != 0;
    if (key >= Qt::Key_0 && key <= Qt::Key_9)
        return keypad ? KeypadDigit + key - Qt::Key_0 : key;
    if (keypad) {
        switch (key) {
        case Qt::Key_Asterisk:
            return 0x6A;
        case Qt::Key_Plus:
            return 0x6B;
        case Qt::Key_Minus:
            return 0x6D;
        case Qt::Key_Period:
        case Qt::Key_Comma:
            return 0x6E;
        case Qt::Key_Slash:
            return 0x6F;
        default:
            break;
        }
    }
    if (key >= Qt::Key_A && key <= Qt::Key_Z)
        return key;
    if (key >= Qt::Key_F1 && key < Qt::Key_F1 + LastFunctionKey)
        return VK_F1 + key - Qt::Key_F1;
    for (const int code : {Find(Named, key), Find(Punctuation, key), Find(ShiftedDigits, key)})
        if (code != 0)
            return code;
    return 0;
}

} // namespace tavrix::platform
