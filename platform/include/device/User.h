// The device's windows: classes, messages, timers, dialogs from templates, menus, message boxes.
// Everything here belongs to the user-interface thread (the one that runs main) except PostMessageW,
// SendMessageW, MessageBoxW, IsWindow, SetWindowTextW and MessageBeep, which any thread may call;
// SendMessageW to another thread's window waits until that thread has handled it.
// Included through <windows.h> only.
#pragma once

#include "device/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef LRESULT(CALLBACK* WNDPROC)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
typedef INT_PTR(CALLBACK* DLGPROC)(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
typedef void(CALLBACK* TIMERPROC)(HWND window, UINT message, UINT_PTR id, DWORD tickCount);

typedef struct tagMSG
{
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
} MSG, *LPMSG;

typedef struct tagWNDCLASSW
{
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName;
    LPCWSTR lpszClassName;
} WNDCLASSW;

typedef struct tagCREATESTRUCTW
{
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    LPCWSTR lpszName;
    LPCWSTR lpszClass;
    DWORD dwExStyle;
} CREATESTRUCTW, *LPCREATESTRUCTW;

typedef struct tagPAINTSTRUCT
{
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
    BOOL fRestore;
    BOOL fIncUpdate;
    BYTE rgbReserved[32];
} PAINTSTRUCT, *LPPAINTSTRUCT;

typedef struct tagCOPYDATASTRUCT
{
    ULONG_PTR dwData;
    DWORD cbData;
    PVOID lpData;
} COPYDATASTRUCT;

// The head of a dialog template; titles, font and items follow it as in a compiled resource.
typedef struct
{
    DWORD style;
    DWORD dwExtendedStyle;
    WORD cdit;
    short x;
    short y;
    short cx;
    short cy;
} __attribute__((packed, aligned(2))) DLGTEMPLATE;
typedef const DLGTEMPLATE* LPCDLGTEMPLATEW;

// Messages.
#define WM_NULL 0x0000
#define WM_CREATE 0x0001
#define WM_DESTROY 0x0002
#define WM_MOVE 0x0003
#define WM_SIZE 0x0005
#define WM_ACTIVATE 0x0006
#define WM_SETFOCUS 0x0007
#define WM_KILLFOCUS 0x0008
#define WM_ENABLE 0x000A
#define WM_SETTEXT 0x000C
#define WM_GETTEXT 0x000D
#define WM_GETTEXTLENGTH 0x000E
#define WM_PAINT 0x000F
#define WM_CLOSE 0x0010
#define WM_QUIT 0x0012
#define WM_ERASEBKGND 0x0014
#define WM_SHOWWINDOW 0x0018
#define WM_SETCURSOR 0x0020
#define WM_SETFONT 0x0030
#define WM_GETFONT 0x0031
#define WM_COPYDATA 0x004A
#define WM_NOTIFY 0x004E
#define WM_GETICON 0x007F
#define WM_SETICON 0x0080
#define WM_NCDESTROY 0x0082
#define WM_GETDLGCODE 0x0087
#define EM_GETSEL 0x00B0
#define EM_SETSEL 0x00B1
#define EM_GETLINECOUNT 0x00BA
#define EM_REPLACESEL 0x00C2
#define EM_LIMITTEXT 0x00C5
#define EM_SETLIMITTEXT EM_LIMITTEXT
#define EM_SETREADONLY 0x00CF
#define WM_KEYDOWN 0x0100
#define WM_KEYUP 0x0101
#define WM_CHAR 0x0102
#define WM_SYSKEYDOWN 0x0104
#define WM_SYSKEYUP 0x0105
#define WM_SYSCHAR 0x0106
#define WM_INITDIALOG 0x0110
#define WM_COMMAND 0x0111
#define WM_SYSCOMMAND 0x0112
#define WM_TIMER 0x0113
#define WM_HSCROLL 0x0114
#define WM_VSCROLL 0x0115
#define WM_INITMENUPOPUP 0x0117
#define WM_CTLCOLOREDIT 0x0133
#define WM_CTLCOLORLISTBOX 0x0134
#define WM_CTLCOLORBTN 0x0135
#define WM_CTLCOLORDLG 0x0136
#define WM_CTLCOLORSTATIC 0x0138
#define WM_MOUSEMOVE 0x0200
#define WM_LBUTTONDOWN 0x0201
#define WM_LBUTTONUP 0x0202
#define WM_LBUTTONDBLCLK 0x0203
#define WM_RBUTTONDOWN 0x0204
#define WM_RBUTTONUP 0x0205
#define CB_GETEDITSEL 0x0140
#define CB_LIMITTEXT 0x0141
#define CB_SETEDITSEL 0x0142
#define CB_ADDSTRING 0x0143
#define CB_DELETESTRING 0x0144
#define CB_GETCOUNT 0x0146
#define CB_GETCURSEL 0x0147
#define CB_GETLBTEXT 0x0148
#define CB_GETLBTEXTLEN 0x0149
#define CB_INSERTSTRING 0x014A
#define CB_RESETCONTENT 0x014B
#define CB_FINDSTRING 0x014C
#define CB_SELECTSTRING 0x014D
#define CB_SETCURSEL 0x014E
#define CB_SHOWDROPDOWN 0x014F
#define CB_GETITEMDATA 0x0150
#define CB_SETITEMDATA 0x0151
#define CB_GETDROPPEDSTATE 0x0157
#define CB_FINDSTRINGEXACT 0x0158
#define LB_ADDSTRING 0x0180
#define LB_INSERTSTRING 0x0181
#define LB_DELETESTRING 0x0182
#define LB_RESETCONTENT 0x0184
#define LB_SETCURSEL 0x0186
#define LB_GETCURSEL 0x0188
#define LB_GETTEXT 0x0189
#define LB_GETTEXTLEN 0x018A
#define LB_GETCOUNT 0x018B
#define LB_SELECTSTRING 0x018C
#define LB_FINDSTRING 0x018F
#define LB_GETITEMDATA 0x0199
#define LB_SETITEMDATA 0x019A
#define WM_USER 0x0400
#define WM_APP 0x8000

// Styles.
#define WS_OVERLAPPED 0x00000000u
#define WS_POPUP 0x80000000u
#define WS_CHILD 0x40000000u
#define WS_VISIBLE 0x10000000u
#define WS_DISABLED 0x08000000u
#define WS_CLIPSIBLINGS 0x04000000u
#define WS_CLIPCHILDREN 0x02000000u
#define WS_CAPTION 0x00C00000u
#define WS_BORDER 0x00800000u
#define WS_DLGFRAME 0x00400000u
#define WS_VSCROLL 0x00200000u
#define WS_HSCROLL 0x00100000u
#define WS_SYSMENU 0x00080000u
#define WS_GROUP 0x00020000u
#define WS_TABSTOP 0x00010000u
#define CS_DBLCLKS 8u
#define CW_USEDEFAULT ((int)0x80000000)
#define DS_SETFONT 0x40u
#define DS_MODALFRAME 0x80u
#define SS_LEFT 0u
#define SS_CENTER 1u
#define SS_RIGHT 2u
#define SS_ICON 3u
#define SS_BITMAP 0xEu
#define SS_TYPEMASK 0x1Fu
#define SS_NOTIFY 0x100u
#define STN_CLICKED 0
#define BS_PUSHBUTTON 0u
#define BS_DEFPUSHBUTTON 1u
#define BS_CHECKBOX 2u
#define BS_AUTOCHECKBOX 3u
#define BS_RADIOBUTTON 4u
#define BS_GROUPBOX 7u
#define BS_AUTORADIOBUTTON 9u
#define BS_TYPEMASK 0xFu
#define BN_CLICKED 0
#define BN_DOUBLECLICKED 5
#define BN_SETFOCUS 6
#define BN_KILLFOCUS 7
#define BM_GETCHECK 0x00F0
#define BM_SETCHECK 0x00F1
#define BM_GETSTATE 0x00F2
#define BST_UNCHECKED 0
#define BST_CHECKED 1
#define BST_PUSHED 4
#define BST_FOCUS 8
#define ES_LEFT 0u
#define ES_CENTER 1u
#define ES_RIGHT 2u
#define ES_MULTILINE 4u
#define ES_PASSWORD 0x20u
#define ES_AUTOVSCROLL 0x40u
#define ES_AUTOHSCROLL 0x80u
#define ES_READONLY 0x800u
#define ES_NUMBER 0x2000u
#define EN_SETFOCUS 0x0100
#define EN_KILLFOCUS 0x0200
#define EN_CHANGE 0x0300
#define CBS_SIMPLE 1u
#define CBS_DROPDOWN 2u
#define CBS_DROPDOWNLIST 3u
#define CBS_TYPEMASK 3u
#define CBS_AUTOHSCROLL 0x40u
#define CBS_SORT 0x100u
#define CB_ERR (-1)
#define CBN_SELCHANGE 1
#define CBN_DBLCLK 2
#define CBN_SETFOCUS 3
#define CBN_KILLFOCUS 4
#define CBN_EDITCHANGE 5
#define CBN_EDITUPDATE 6
#define CBN_DROPDOWN 7
#define CBN_CLOSEUP 8
#define CBN_SELENDOK 9
#define CBN_SELENDCANCEL 10
#define LBS_NOTIFY 1u
#define LBS_SORT 2u
#define LBS_NOINTEGRALHEIGHT 0x100u
#define LB_ERR (-1)
#define LBN_SELCHANGE 1
#define LBN_DBLCLK 2
#define LBN_SETFOCUS 4
#define LBN_KILLFOCUS 5

#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_SHOW 5
#define SWP_NOSIZE 1u
#define SWP_NOMOVE 2u
#define SWP_NOZORDER 4u
#define SWP_NOACTIVATE 0x10u
#define SWP_SHOWWINDOW 0x40u
#define SWP_HIDEWINDOW 0x80u
#define HWND_TOP ((HWND)0)
#define HWND_BOTTOM ((HWND)1)
#define SM_CXSCREEN 0
#define SM_CYSCREEN 1
#define GWLP_WNDPROC (-4)
#define GWLP_HINSTANCE (-6)
#define GWLP_ID (-12)
#define GWL_STYLE (-16)
#define GWL_EXSTYLE (-20)
#define GWLP_USERDATA (-21)
#define DWLP_MSGRESULT 0
#define DWLP_DLGPROC ((int)sizeof(LRESULT))
#define DWLP_USER ((int)(sizeof(LRESULT) + sizeof(DLGPROC)))
#define PM_NOREMOVE 0u
#define PM_REMOVE 1u

// Message boxes, buttons, icons, cursors.
#define IDOK 1
#define IDCANCEL 2
#define IDABORT 3
#define IDRETRY 4
#define IDIGNORE 5
#define IDYES 6
#define IDNO 7
#define MB_OK 0u
#define MB_OKCANCEL 1u
#define MB_YESNOCANCEL 3u
#define MB_YESNO 4u
#define MB_TYPEMASK 0xFu
#define MB_ICONHAND 0x10u
#define MB_ICONQUESTION 0x20u
#define MB_ICONEXCLAMATION 0x30u
#define MB_ICONASTERISK 0x40u
#define MB_ICONMASK 0xF0u
#define MB_DEFBUTTON2 0x100u
#define MB_TOPMOST 0x40000u
#define IMAGE_BITMAP 0u
#define IMAGE_ICON 1u
#define IMAGE_CURSOR 2u
#define IDC_ARROW MAKEINTRESOURCEW(32512)
#define ICON_SMALL 0
#define ICON_BIG 1

// Menus.
#define MF_BYCOMMAND 0u
#define MF_BYPOSITION 0x400u
#define MF_ENABLED 0u
#define MF_GRAYED 1u
#define MF_DISABLED 2u
#define MF_STRING 0u
#define MF_UNCHECKED 0u
#define MF_CHECKED 8u
#define MF_POPUP 0x10u
#define MF_SEPARATOR 0x800u

// Keys.
#define VK_BACK 0x08
#define VK_TAB 0x09
#define VK_RETURN 0x0D
#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12
#define VK_ESCAPE 0x1B
#define VK_SPACE 0x20
#define VK_PRIOR 0x21
#define VK_NEXT 0x22
#define VK_END 0x23
#define VK_HOME 0x24
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28
#define VK_INSERT 0x2D
#define VK_DELETE 0x2E
#define VK_F1 0x70
#define VK_F4 0x73
#define VK_F11 0x7A
#define MK_LBUTTON 1
#define MK_RBUTTON 2
#define MK_SHIFT 4
#define MK_CONTROL 8

// Windows and classes.
CE_API ATOM WINAPI RegisterClassW(const WNDCLASSW* record);
CE_API HWND WINAPI CreateWindowExW(DWORD extendedStyle, LPCWSTR className, LPCWSTR title,
                                   DWORD style, int x, int y, int width, int height, HWND parent,
                                   HMENU menu, HINSTANCE instance, LPVOID parameter);
CE_API BOOL WINAPI DestroyWindow(HWND window);
CE_API LRESULT WINAPI DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
CE_API LRESULT WINAPI CallWindowProcW(WNDPROC previous, HWND window, UINT message, WPARAM wParam,
                                      LPARAM lParam);
CE_API BOOL WINAPI IsWindow(HWND window);
CE_API BOOL WINAPI IsWindowVisible(HWND window);
CE_API BOOL WINAPI IsWindowEnabled(HWND window);
CE_API BOOL WINAPI EnableWindow(HWND window, BOOL enable);
CE_API BOOL WINAPI ShowWindow(HWND window, int command);
CE_API BOOL WINAPI UpdateWindow(HWND window);
CE_API HWND WINAPI GetParent(HWND window);
CE_API HWND WINAPI FindWindowW(LPCWSTR className, LPCWSTR title);
CE_API int WINAPI GetClassNameW(HWND window, LPWSTR buffer, int capacity);
CE_API BOOL WINAPI BringWindowToTop(HWND window);
CE_API BOOL WINAPI SetForegroundWindow(HWND window);
CE_API BOOL WINAPI GetWindowRect(HWND window, LPRECT rectangle);
CE_API BOOL WINAPI GetClientRect(HWND window, LPRECT rectangle);
CE_API BOOL WINAPI SetWindowPos(HWND window, HWND after, int x, int y, int width, int height,
                                UINT flags);
CE_API BOOL WINAPI MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
CE_API BOOL WINAPI ClientToScreen(HWND window, LPPOINT point);
CE_API BOOL WINAPI ScreenToClient(HWND window, LPPOINT point);
CE_API BOOL WINAPI SetWindowTextW(HWND window, LPCWSTR text);
CE_API int WINAPI GetWindowTextW(HWND window, LPWSTR buffer, int capacity);
CE_API int WINAPI GetWindowTextLengthW(HWND window);
CE_API LONG_PTR WINAPI GetWindowLongPtrW(HWND window, int index);
CE_API LONG_PTR WINAPI SetWindowLongPtrW(HWND window, int index, LONG_PTR value);
CE_API HWND WINAPI SetFocus(HWND window);
CE_API HWND WINAPI GetFocus(void);
CE_API HWND WINAPI SetCapture(HWND window);
CE_API BOOL WINAPI ReleaseCapture(void);
CE_API HWND WINAPI GetCapture(void);
CE_API SHORT WINAPI GetAsyncKeyState(int key);
CE_API SHORT WINAPI GetKeyState(int key);
CE_API int WINAPI GetSystemMetrics(int index);

// Painting.
CE_API BOOL WINAPI InvalidateRect(HWND window, const RECT* rectangle, BOOL erase);
CE_API BOOL WINAPI ValidateRect(HWND window, const RECT* rectangle);
CE_API BOOL WINAPI GetUpdateRect(HWND window, LPRECT rectangle, BOOL erase);
CE_API HDC WINAPI BeginPaint(HWND window, LPPAINTSTRUCT paint);
CE_API BOOL WINAPI EndPaint(HWND window, const PAINTSTRUCT* paint);

// Messages and timers.
CE_API BOOL WINAPI GetMessageW(LPMSG message, HWND window, UINT first, UINT last);
CE_API BOOL WINAPI PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove);
CE_API BOOL WINAPI TranslateMessage(const MSG* message);
CE_API LRESULT WINAPI DispatchMessageW(const MSG* message);
CE_API BOOL WINAPI PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
CE_API LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
CE_API void WINAPI PostQuitMessage(int exitCode);
CE_API UINT_PTR WINAPI SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC callback);
CE_API BOOL WINAPI KillTimer(HWND window, UINT_PTR id);

// Dialogs and controls.
CE_API INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW dialogTemplate,
                                              HWND owner, DLGPROC procedure, LPARAM parameter);
CE_API HWND WINAPI CreateDialogIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW dialogTemplate,
                                              HWND owner, DLGPROC procedure, LPARAM parameter);
CE_API BOOL WINAPI EndDialog(HWND dialog, INT_PTR result);
CE_API HWND WINAPI GetDlgItem(HWND dialog, int id);
CE_API int WINAPI GetDlgCtrlID(HWND window);
CE_API BOOL WINAPI SetDlgItemTextW(HWND dialog, int id, LPCWSTR text);
CE_API UINT WINAPI GetDlgItemTextW(HWND dialog, int id, LPWSTR buffer, int capacity);
/// The control's text as a decimal number, with spaces before it and, where `isSigned`, a minus
/// sign. 0 and `*translated` FALSE for what is no number or does not fit.
CE_API UINT WINAPI GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL isSigned);
CE_API BOOL WINAPI SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned);
CE_API LRESULT WINAPI SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam,
                                          LPARAM lParam);
CE_API int WINAPI MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT flags);
CE_API BOOL WINAPI MessageBeep(UINT kind);

// Clipboard: formats by number, offered to and taken from the rest of the desktop.
#define CF_BITMAP 2u
#define CF_DIB 8u
CE_API BOOL WINAPI OpenClipboard(HWND owner);
CE_API BOOL WINAPI CloseClipboard(void);
CE_API BOOL WINAPI EmptyClipboard(void);
CE_API BOOL WINAPI IsClipboardFormatAvailable(UINT format);
/// With the clipboard open: gives it a block (CF_DIB: header, palette, rows; of LocalAlloc or
/// GlobalAlloc) or a bitmap (CF_BITMAP), which is the clipboard's from then on, and returns it. Null
/// on failure, and the object stays the caller's. Other programs get it as image/bmp and image/png.
CE_API HANDLE WINAPI SetClipboardData(UINT format, HANDLE data);
/// With the clipboard open: what it holds, the clipboard's own, good until it is closed; null when
/// it holds none of the format. One format is never made of the other. A picture of another program
/// comes as a CF_DIB of 24 bits, bottom-up; one whose owner does not answer in time as nothing.
CE_API HANDLE WINAPI GetClipboardData(UINT format);

// Icons, cursors, accelerators.
CE_API HICON WINAPI LoadIconW(HINSTANCE instance, LPCWSTR name);
CE_API HANDLE WINAPI LoadImageW(HINSTANCE instance, LPCWSTR name, UINT kind, int width, int height,
                                UINT flags);
CE_API BOOL WINAPI DestroyIcon(HICON icon);
CE_API HCURSOR WINAPI LoadCursorW(HINSTANCE instance, LPCWSTR name);
CE_API HACCEL WINAPI LoadAcceleratorsW(HINSTANCE instance, LPCWSTR name);
CE_API int WINAPI TranslateAcceleratorW(HWND window, HACCEL table, LPMSG message);

// Menus.
CE_API HMENU WINAPI LoadMenuW(HINSTANCE instance, LPCWSTR name);
CE_API BOOL WINAPI DestroyMenu(HMENU menu);
CE_API HMENU WINAPI GetSubMenu(HMENU menu, int position);
CE_API BOOL WINAPI EnableMenuItem(HMENU menu, UINT item, UINT flags);
CE_API DWORD WINAPI CheckMenuItem(HMENU menu, UINT item, UINT flags);
CE_API BOOL WINAPI AppendMenuW(HMENU menu, UINT flags, UINT_PTR id, LPCWSTR text);
CE_API BOOL WINAPI DeleteMenu(HMENU menu, UINT item, UINT flags);
CE_API int WINAPI GetMenuItemCount(HMENU menu);
CE_API UINT WINAPI GetMenuItemID(HMENU menu, int position);
CE_API UINT WINAPI GetMenuState(HMENU menu, UINT item, UINT flags);
CE_API int WINAPI GetMenuStringW(HMENU menu, UINT item, LPWSTR buffer, int capacity, UINT flags);

// The program's entry, called by the host's main on the user-interface thread.
int WINAPI wWinMain(HINSTANCE instance, HINSTANCE previousInstance, LPWSTR commandLine,
                    int showCommand);

#ifdef __cplusplus
}
#endif
