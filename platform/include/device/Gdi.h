// The device's drawing calls: device contexts, DIB sections and block transfer. A memory context
// may be used from any thread, a window's only on the user-interface thread. Included through
// <windows.h> only.
#pragma once

#include "device/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

#define SRCCOPY 0x00CC0020u
#define BLACKNESS 0x00000042u
#define WHITENESS 0x00FF0062u
#define BI_RGB 0u
#define DIB_RGB_COLORS 0u
#define WHITE_BRUSH 0
#define LTGRAY_BRUSH 1
#define GRAY_BRUSH 2
#define DKGRAY_BRUSH 3
#define BLACK_BRUSH 4
#define NULL_BRUSH 5
#define SYSTEM_FONT 13
#define CLR_INVALID 0xFFFFFFFFu
#define HGDI_ERROR ((HANDLE)(LONG_PTR)-1)

typedef struct tagBITMAPINFOHEADER
{
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
} BITMAPINFOHEADER, *LPBITMAPINFOHEADER;

typedef struct tagRGBQUAD
{
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
} RGBQUAD;

typedef struct tagBITMAPINFO
{
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
} BITMAPINFO, *LPBITMAPINFO;

typedef struct tagBITMAP
{
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    LPVOID bmBits;
} BITMAP, *LPBITMAP;

#define LF_FACESIZE 32
#define FW_NORMAL 400
#define FW_BOLD 700
#define DEFAULT_CHARSET 1
#define SHIFTJIS_CHARSET 128

typedef struct tagLOGFONTW
{
    LONG lfHeight;
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    WCHAR lfFaceName[LF_FACESIZE];
} LOGFONTW;

typedef struct tagTEXTMETRICW
{
    LONG tmHeight;
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;
    LONG tmExternalLeading;
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    LONG tmWeight;
    LONG tmOverhang;
    LONG tmDigitizedAspectX;
    LONG tmDigitizedAspectY;
    WCHAR tmFirstChar;
    WCHAR tmLastChar;
    WCHAR tmDefaultChar;
    WCHAR tmBreakChar;
    BYTE tmItalic;
    BYTE tmUnderlined;
    BYTE tmStruckOut;
    BYTE tmPitchAndFamily;
    BYTE tmCharSet;
} TEXTMETRICW;

#define RASTER_FONTTYPE 1u
#define DEVICE_FONTTYPE 2u
#define TRUETYPE_FONTTYPE 4u
typedef int(CALLBACK* FONTENUMPROCW)(const LOGFONTW* record, const TEXTMETRICW* metric, DWORD kind,
                                     LPARAM parameter);

#define DT_LEFT 0u
#define DT_TOP 0u
#define DT_CENTER 1u
#define DT_RIGHT 2u
#define DT_WORDBREAK 0x10u
#define DT_SINGLELINE 0x20u
#define DT_NOCLIP 0x100u
#define DT_CALCRECT 0x400u
#define DT_NOPREFIX 0x800u

/// A font for WM_SETFONT and SelectObject, until DeleteObject. Null for null.
CE_API HFONT WINAPI CreateFontIndirectW(const LOGFONTW* record);
/// Calls `take` with each family that the machine has, once, in the order of the names; all of them
/// with a null `family`, else the one of that name. It ends when `take` gives 0. The last answer of
/// `take`, or 1 when there was nothing to call it for; 0 for null and unknown contexts.
CE_API int WINAPI EnumFontFamiliesW(HDC dc, LPCWSTR family, FONTENUMPROCW take, LPARAM parameter);
/// Draws hard-edged text into a memory context of a DIB section, in the context's font and text
/// colour, and gives the height of what was drawn; 0 when it cannot. `count` -1 is up to the zero.
/// CR, LF and the pair begin a line. DT_WORDBREAK breaks behind spaces and between signs of Chinese
/// and Japanese; a word longer than the rectangle reaches out of it and is clipped. DT_CALCRECT
/// draws nothing and sets the rectangle's right (where lines break: to the longest one) and bottom.
/// Signs are taken as they stand, '&' too. User-interface thread.
CE_API int WINAPI DrawTextW(HDC dc, LPCWSTR text, int count, RECT* rectangle, UINT format);
/// The colour of text from now on, black at first; the one before, or CLR_INVALID.
CE_API COLORREF WINAPI SetTextColor(HDC dc, COLORREF color);
CE_API HDC WINAPI GetDC(HWND window);
CE_API int WINAPI ReleaseDC(HWND window, HDC dc);
CE_API HDC WINAPI CreateCompatibleDC(HDC dc);
CE_API BOOL WINAPI DeleteDC(HDC dc);
CE_API HGDIOBJ WINAPI SelectObject(HDC dc, HGDIOBJ object);
CE_API BOOL WINAPI DeleteObject(HGDIOBJ object);
CE_API int WINAPI GetObjectW(HANDLE object, int size, LPVOID record);
CE_API HGDIOBJ WINAPI GetStockObject(int index);
CE_API HBRUSH WINAPI CreateSolidBrush(COLORREF color);
CE_API HBITMAP WINAPI CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits,
                                       HANDLE section, DWORD offset);
CE_API BOOL WINAPI BitBlt(HDC target, int x, int y, int width, int height, HDC source, int sourceX,
                          int sourceY, DWORD operation);
CE_API int WINAPI FillRect(HDC dc, const RECT* rectangle, HBRUSH brush);
CE_API COLORREF WINAPI GetPixel(HDC dc, int x, int y);

#ifdef __cplusplus
}
#endif
