// The device's common controls as far as the program uses them. Included after <windows.h>.
#pragma once

#include "device/Base.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct tagINITCOMMONCONTROLSEX
{
    DWORD dwSize;
    DWORD dwICC;
} INITCOMMONCONTROLSEX;

#define ICC_LISTVIEW_CLASSES 1u
#define ICC_TREEVIEW_CLASSES 2u
// Both notify by WM_NOTIFY, whose lParam is the address of a record that begins with this.
typedef struct tagNMHDR
{
    HWND hwndFrom;
    UINT_PTR idFrom;
    UINT code;
} NMHDR;

#define NM_CLICK (0u - 2u)
#define NM_DBLCLK (0u - 3u)

// Image lists: pictures of one size, for the items of lists and trees.
typedef struct _IMAGELIST* HIMAGELIST;

#define ILC_COLOR 0u
#define ILC_MASK 1u

/// An empty list of pictures of `width` by `height`; null for a size that is not positive. Flags,
/// `initial` and `grow` do not matter.
CE_API HIMAGELIST WINAPI ImageList_Create(int width, int height, UINT flags, int initial, int grow);
/// FALSE for null and a list that is gone.
CE_API BOOL WINAPI ImageList_Destroy(HIMAGELIST list);
CE_API int WINAPI ImageList_GetImageCount(HIMAGELIST list);
/// Replaces picture `index`, or appends one for -1. Gives the index, -1 on failure. The icon stays
/// the caller's.
CE_API int WINAPI ImageList_ReplaceIcon(HIMAGELIST list, int index, HICON icon);

#define PROGRESS_CLASSW TEXT("msctls_progress32")
#define PBM_SETRANGE 0x0401
#define PBM_SETPOS 0x0402
#define PBM_GETPOS 0x0408

CE_API BOOL WINAPI InitCommonControlsEx(const INITCOMMONCONTROLSEX* record);

// The trackbar: a thumb between a lowest and a highest position, 0 and 100 at first. It tells its
// parent of the person's moves alone, by WM_HSCROLL (WM_VSCROLL where it is upright) with one of the
// TB_ codes in the low word, the position in the high word of the two THUMB codes, and its handle.
#define TRACKBAR_CLASSW TEXT("msctls_trackbar32")
#define TBS_AUTOTICKS 1u
#define TBS_VERT 2u
#define TBS_NOTICKS 0x10u
#define TBM_GETPOS 0x0400
#define TBM_GETRANGEMIN 0x0401
#define TBM_GETRANGEMAX 0x0402
#define TBM_SETPOS 0x0405
#define TBM_SETRANGE 0x0406
#define TBM_SETRANGEMIN 0x0407
#define TBM_SETRANGEMAX 0x0408
#define TBM_SETPAGESIZE 0x0415
#define TBM_GETPAGESIZE 0x0416
#define TBM_SETLINESIZE 0x0417
#define TBM_GETLINESIZE 0x0418
#define TB_LINEUP 0
#define TB_LINEDOWN 1
#define TB_PAGEUP 2
#define TB_PAGEDOWN 3
#define TB_THUMBPOSITION 4
#define TB_THUMBTRACK 5
#define TB_TOP 6
#define TB_BOTTOM 7
#define TB_ENDTRACK 8

// The tree.
#define WC_TREEVIEWW TEXT("SysTreeView32")

#define TVS_HASBUTTONS 1u
#define TVS_HASLINES 2u
#define TVS_LINESATROOT 4u
#define TVS_SHOWSELALWAYS 0x20u

typedef struct _TREEITEM* HTREEITEM;

#define TVI_ROOT ((HTREEITEM)(ULONG_PTR)(-0x10000))
#define TVI_FIRST ((HTREEITEM)(ULONG_PTR)(-0x0FFFF))
#define TVI_LAST ((HTREEITEM)(ULONG_PTR)(-0x0FFFE))

#define TVIF_TEXT 1u
#define TVIF_IMAGE 2u
#define TVIF_PARAM 4u
#define TVIF_STATE 8u
#define TVIF_HANDLE 0x10u
#define TVIF_SELECTEDIMAGE 0x20u
#define TVIF_CHILDREN 0x40u

#define TVIS_SELECTED 2u
#define TVIS_EXPANDED 0x20u

typedef struct tagTVITEMW
{
    UINT mask;
    HTREEITEM hItem;
    UINT state;
    UINT stateMask;
    LPWSTR pszText;
    int cchTextMax;
    int iImage;
    int iSelectedImage;
    int cChildren;
    LPARAM lParam;
} TVITEMW;

typedef struct tagTVINSERTSTRUCTW
{
    HTREEITEM hParent;
    HTREEITEM hInsertAfter;
    TVITEMW item;
} TVINSERTSTRUCTW;

typedef struct tagNMTREEVIEWW
{
    NMHDR hdr;
    UINT action;
    TVITEMW itemOld;
    TVITEMW itemNew;
    POINT ptDrag;
} NMTREEVIEWW;

#define TVE_COLLAPSE 1
#define TVE_EXPAND 2
#define TVE_TOGGLE 3

#define TVGN_ROOT 0
#define TVGN_NEXT 1
#define TVGN_PREVIOUS 2
#define TVGN_PARENT 3
#define TVGN_CHILD 4
#define TVGN_CARET 9

#define TVSIL_NORMAL 0

#define TVM_DELETEITEM 0x1101
#define TVM_EXPAND 0x1102
#define TVM_GETCOUNT 0x1105
#define TVM_GETIMAGELIST 0x1108
#define TVM_SETIMAGELIST 0x1109
#define TVM_GETNEXTITEM 0x110A
#define TVM_SELECTITEM 0x110B
#define TVM_ENSUREVISIBLE 0x1114
#define TVM_INSERTITEMW 0x1132
#define TVM_GETITEMW 0x113E
#define TVM_SETITEMW 0x113F

#define TVN_SELCHANGEDW (0u - 451u)

// The list.
#define WC_LISTVIEWW TEXT("SysListView32")

#define LVS_ICON 0u
#define LVS_REPORT 1u
#define LVS_SMALLICON 2u
#define LVS_LIST 3u
#define LVS_TYPEMASK 3u
#define LVS_SINGLESEL 4u
#define LVS_SHOWSELALWAYS 8u
#define LVS_NOSORTHEADER 0x8000u

#define LVCF_FMT 1u
#define LVCF_WIDTH 2u
#define LVCF_TEXT 4u
#define LVCF_SUBITEM 8u
#define LVCFMT_LEFT 0
#define LVCFMT_RIGHT 1
#define LVCFMT_CENTER 2

typedef struct tagLVCOLUMNW
{
    UINT mask;
    int fmt;
    int cx;
    LPWSTR pszText;
    int cchTextMax;
    int iSubItem;
    int iImage;
    int iOrder;
} LVCOLUMNW;

#define LVIF_TEXT 1u
#define LVIF_IMAGE 2u
#define LVIF_PARAM 4u
#define LVIF_STATE 8u
#define LVIS_FOCUSED 1u
#define LVIS_SELECTED 2u

typedef struct tagLVITEMW
{
    UINT mask;
    int iItem;
    int iSubItem;
    UINT state;
    UINT stateMask;
    LPWSTR pszText;
    int cchTextMax;
    int iImage;
    LPARAM lParam;
    int iIndent;
} LVITEMW;

#define LVFI_PARAM 1u

typedef struct tagLVFINDINFOW
{
    UINT flags;
    LPCWSTR psz;
    LPARAM lParam;
    POINT pt;
    UINT vkDirection;
} LVFINDINFOW;

typedef struct tagNMLISTVIEW
{
    NMHDR hdr;
    int iItem;
    int iSubItem;
    UINT uNewState;
    UINT uOldState;
    UINT uChanged;
    POINT ptAction;
    LPARAM lParam;
} NMLISTVIEW;

// What NM_CLICK and NM_DBLCLK of a list come with.
typedef struct tagNMITEMACTIVATE
{
    NMHDR hdr;
    int iItem;
    int iSubItem;
    UINT uNewState;
    UINT uOldState;
    UINT uChanged;
    POINT ptAction;
    LPARAM lParam;
    UINT uKeyFlags;
} NMITEMACTIVATE;

#define LVKF_ALT 1u
#define LVKF_CONTROL 2u
#define LVKF_SHIFT 4u

typedef int(CALLBACK* PFNLVCOMPARE)(LPARAM first, LPARAM second, LPARAM sort);

#define LVNI_ALL 0u
#define LVNI_FOCUSED 1u
#define LVNI_SELECTED 2u

#define LVIR_BOUNDS 0
#define LVIR_ICON 1
#define LVIR_LABEL 2

#define LVSIL_NORMAL 0
#define LVSIL_SMALL 1

#define LVM_SETIMAGELIST 0x1003
#define LVM_GETITEMCOUNT 0x1004
#define LVM_DELETEITEM 0x1008
#define LVM_DELETEALLITEMS 0x1009
#define LVM_GETNEXTITEM 0x100C
#define LVM_GETITEMRECT 0x100E
#define LVM_ENSUREVISIBLE 0x1013
#define LVM_GETCOLUMNWIDTH 0x101D
#define LVM_SETITEMSTATE 0x102B
#define LVM_GETITEMSTATE 0x102C
#define LVM_SORTITEMS 0x1030
#define LVM_GETSELECTEDCOUNT 0x1032
#define LVM_GETITEMW 0x104B
#define LVM_SETITEMW 0x104C
#define LVM_INSERTITEMW 0x104D
#define LVM_FINDITEMW 0x1053
#define LVM_INSERTCOLUMNW 0x1061
#define LVM_GETITEMTEXTW 0x1073
#define LVM_SETITEMTEXTW 0x1074

#define LVN_ITEMCHANGED (0u - 101u)
#define LVN_COLUMNCLICK (0u - 108u)

#ifdef __cplusplus
}
#endif
