/* The system's dialogs for a file and for a colour. */
#ifndef TQUI_PLATFORM_COMMON_DIALOGS_H
#define TQUI_PLATFORM_COMMON_DIALOGS_H

#include "platform/drawing.h"
#include "platform/window.h"

#ifdef _WIN32

#include <commdlg.h>

#else

#include "platform/calls.h"

struct OPENFILENAMEW {
    DWORD lStructSize; /* of this structure; the caller sets it */
    HWND hwndOwner;
    HINSTANCE hInstance;
    LPCWSTR lpstrFilter; /* pairs of text and pattern, a second NUL behind the last */
    LPWSTR lpstrCustomFilter;
    DWORD nMaxCustFilter, nFilterIndex;
    LPWSTR lpstrFile; /* in: the name that is shown; out: full path */
    DWORD nMaxFile;   /* characters of room */
    LPWSTR lpstrFileTitle;
    DWORD nMaxFileTitle;
    LPCWSTR lpstrInitialDir, lpstrTitle;
    DWORD Flags; /* OFN_* */
    WORD nFileOffset, nFileExtension;
    LPCWSTR lpstrDefExt;
    LPARAM lCustData;
    void* lpfnHook;
    LPCWSTR lpTemplateName;
    void* pvReserved;
    DWORD dwReserved, FlagsEx;
};
using LPOPENFILENAMEW = OPENFILENAMEW*;
static_assert(sizeof(OPENFILENAMEW) == 152);
constexpr DWORD OFN_NOCHANGEDIR = 8; /* the current folder stays */

struct CHOOSECOLORW {
    DWORD lStructSize; /* of this structure; the caller sets it */
    HWND hwndOwner;
    HWND hInstance;
    COLORREF rgbResult;     /* in and out */
    COLORREF* lpCustColors; /* 16, in and out */
    DWORD Flags;            /* CC_* */
    LPARAM lCustData;
    void* lpfnHook;
    LPCWSTR lpTemplateName;
};
using LPCHOOSECOLORW = CHOOSECOLORW*;
static_assert(sizeof(CHOOSECOLORW) == 72);
constexpr DWORD CC_RGBINIT = 1, CC_FULLOPEN = 2, CC_ANYCOLOR = 0x100;

COMMON_DIALOG_CALLS(DECLARE_CALL)

#endif
#endif
