/* The property sheet host: what it asks the driver, what the driver may ask it, the messages between a page
   and its sheet. */
#ifndef TQUI_PLATFORM_SHEET_H
#define TQUI_PLATFORM_SHEET_H

#include "platform/window.h"

#ifdef _WIN32

#include <commctrl.h>
#include <prsht.h>

#include <compstui.h>

#else

using HPROPSHEETPAGE = struct PROPSHEETPAGE__*;

/* One page, as the driver adds it. Its copy is the lParam of the page's WM_INITDIALOG. */
struct PROPSHEETPAGEW {
    DWORD dwSize;  /* of this structure */
    DWORD dwFlags; /* PSP_* */
    HINSTANCE hInstance;
    union {
        LPCWSTR pszTemplate;   /* name or number in hInstance */
        const void* pResource; /* with PSP_DLGINDIRECT */
    };
    union {
        HICON hIcon;
        LPCWSTR pszIcon;
    };
    LPCWSTR pszTitle; /* with PSP_USETITLE */
    DLGPROC pfnDlgProc;
    LPARAM lParam;
    void* pfnCallback;
    UINT* pcRefParent;
    LPCWSTR pszHeaderTitle, pszHeaderSubTitle;
    HANDLE hActCtx;
};
constexpr DWORD PSP_DLGINDIRECT = 1;
constexpr DWORD PSP_USETITLE = 8;

/* lParam of WM_NOTIFY from the sheet. */
struct PSHNOTIFY {
    NMHDR hdr; /* code: PSN_* */
    LPARAM lParam;
};

constexpr UINT PSN_SETACTIVE = static_cast<UINT>(-200);
constexpr UINT PSN_KILLACTIVE = static_cast<UINT>(-201);
constexpr UINT PSN_APPLY = static_cast<UINT>(-202);
constexpr UINT PSN_RESET = static_cast<UINT>(-203);
constexpr UINT PSN_HELP = static_cast<UINT>(-205);
constexpr UINT PSN_QUERYCANCEL = static_cast<UINT>(-209);
constexpr LONG_PTR PSNRET_NOERROR = 0;
constexpr LONG_PTR PSNRET_INVALID = 1;
constexpr LONG_PTR PSNRET_INVALID_NOCHANGEPAGE = 2;
constexpr UINT PSM_CHANGED = WM_USER + 104;
constexpr UINT PSM_UNCHANGED = WM_USER + 109;

using PFNCOMPROPSHEET = LONG_PTR(CALLBACK*)(HANDLE hComPropSheet, UINT uFunction, LPARAM, LPARAM);
constexpr UINT CPSFUNC_ADD_PROPSHEETPAGEW = 1; /* PROPSHEETPAGEW*, 0: handle of the page, or 0 */
constexpr UINT CPSFUNC_SET_RESULT = 9;         /* page handle, CPSUI_*: 1 */
constexpr LONG_PTR CPSUI_CANCEL = 0;
constexpr LONG_PTR CPSUI_OK = 1;

struct PROPSHEETUI_INFO {
    WORD cbSize, Version, Flags;
    WORD Reason; /* PROPSHEETUI_REASON_* */
    HANDLE hComPropSheet;
    PFNCOMPROPSHEET pfnComPropSheet;
    LPARAM lParamInit;
    ULONG_PTR UserData; /* the driver's own, kept from its start to its end */
    ULONG_PTR Result;
};
using PPROPSHEETUI_INFO = PROPSHEETUI_INFO*;
constexpr WORD PROPSHEETUI_INFO_VERSION = 0x100;
constexpr WORD PROPSHEETUI_REASON_INIT = 0;
constexpr WORD PROPSHEETUI_REASON_GET_INFO_HEADER = 1;
constexpr WORD PROPSHEETUI_REASON_DESTROY = 2;
constexpr WORD PROPSHEETUI_REASON_SET_RESULT = 3;
constexpr WORD PROPSHEETUI_REASON_GET_ICON = 4;

#endif

static_assert(sizeof(PROPSHEETUI_INFO) == 48);
static_assert(sizeof(PROPSHEETPAGEW) == 96);

#endif
