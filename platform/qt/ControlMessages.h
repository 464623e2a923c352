// Message numbers and style bits of the stock controls that the device's public headers leave out
// because the program itself does not name them, but dialogs and their keys need.
#pragma once

#include <windows.h>

namespace tavrix::platform
{

inline constexpr const WCHAR* DialogClassName = TEXT("#32770");

inline constexpr UINT BM_SETSTATE = 0x00F3;
inline constexpr UINT BM_SETSTYLE = 0x00F4;
inline constexpr UINT BM_CLICK = 0x00F5;
inline constexpr UINT STM_SETICON = 0x0170;
inline constexpr UINT STM_GETICON = 0x0171;
inline constexpr UINT DM_GETDEFID = 0x0400;
inline constexpr UINT DM_SETDEFID = 0x0401;
inline constexpr WORD DC_HASDEFID = 0x534B;

inline constexpr DWORD SS_LEFTNOWORDWRAP = 0x0C;
inline constexpr DWORD SS_NOPREFIX = 0x80;
inline constexpr DWORD SS_CENTERIMAGE = 0x200;
inline constexpr WORD STN_DBLCLK = 1;

inline constexpr UINT WM_STYLECHANGED = 0x007D;

inline constexpr LRESULT DLGC_WANTARROWS = 0x0001;
inline constexpr LRESULT DLGC_WANTMESSAGE = 0x0004;
inline constexpr LRESULT DLGC_HASSETSEL = 0x0008;
inline constexpr LRESULT DLGC_WANTCHARS = 0x0080;
inline constexpr LRESULT DLGC_DEFPUSHBUTTON = 0x0010;
inline constexpr LRESULT DLGC_UNDEFPUSHBUTTON = 0x0020;
inline constexpr LRESULT DLGC_RADIOBUTTON = 0x0040;
inline constexpr LRESULT DLGC_STATIC = 0x0100;
inline constexpr LRESULT DLGC_BUTTON = 0x2000;

} // namespace tavrix::platform
