/* Windows, dialogs and their controls, pictures that controls show, cursors, message boxes. */
#ifndef TQUI_PLATFORM_WINDOW_H
#define TQUI_PLATFORM_WINDOW_H

#include "platform/basic.h"
#include "platform/window_messages.h"

#ifndef _WIN32

#include "platform/calls.h"

using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using PDWORD_PTR = DWORD_PTR*;
using LRESULT = std::intptr_t;
using LPRECT = RECT*;
using LPPOINT = POINT*;
using HDC = struct HDC__*;
using HGDIOBJ = void*;
using HBITMAP = struct HBITMAP__*;
using HICON = struct HICON__*;
using HCURSOR = HICON;

using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using DLGPROC = INT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using WNDENUMPROC = BOOL(CALLBACK*)(HWND, LPARAM);

struct PAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
    BOOL fRestore, fIncUpdate;
    BYTE rgbReserved[32];
};
using LPPAINTSTRUCT = PAINTSTRUCT*;
static_assert(sizeof(PAINTSTRUCT) == 72);

struct WINDOWPLACEMENT {
    UINT length; /* of this structure; the caller sets it */
    UINT flags, showCmd;
    POINT ptMinPosition, ptMaxPosition;
    RECT rcNormalPosition; /* on the screen, or in the parent's client co-ordinates for a child */
};
static_assert(sizeof(WINDOWPLACEMENT) == 44);

struct SCROLLINFO {
    UINT cbSize; /* of this structure; the caller sets it */
    UINT fMask;  /* SIF_* */
    int nMin, nMax;
    UINT nPage;
    int nPos, nTrackPos;
};
using LPSCROLLINFO = SCROLLINFO*;
using LPCSCROLLINFO = const SCROLLINFO*;
static_assert(sizeof(SCROLLINFO) == 28);

struct NMHDR {
    HWND hwndFrom;
    UINT_PTR idFrom;
    UINT code;
};
static_assert(sizeof(NMHDR) == 24);

/* lParam of WM_HELP. */
struct HELPINFO {
    UINT cbSize;
    int iContextType; /* HELPINFO_WINDOW */
    int iCtrlId;
    HANDLE hItemHandle; /* window of the control */
    DWORD_PTR dwContextId;
    POINT MousePos; /* on the screen */
};
static_assert(sizeof(HELPINFO) == 40);

/* Numbers in the place of texts, and a message parameter's halves. */
#define MAKEINTRESOURCEW(nId)   (reinterpret_cast<LPCWSTR>(static_cast<std::uintptr_t>(static_cast<WORD>(nId))))
#define IS_INTRESOURCE(wcName)  ((reinterpret_cast<std::uintptr_t>(wcName) >> 16) == 0)
#define LOWORD(n)               (static_cast<WORD>(static_cast<DWORD_PTR>(n) & 0xFFFF))
#define HIWORD(n)               (static_cast<WORD>(static_cast<DWORD_PTR>(n) >> 16 & 0xFFFF))
#define MAKEWPARAM(nLow, nHigh) (static_cast<WPARAM>(MAKELONG(nLow, nHigh)))
#define MAKELPARAM(nLow, nHigh) (static_cast<LPARAM>(MAKELONG(nLow, nHigh)))
#define MAKELONG(nLow, nHigh) \
    (static_cast<DWORD>(static_cast<WORD>(nLow)) | static_cast<DWORD>(static_cast<WORD>(nHigh)) << 16)

#define IDC_ARROW       MAKEINTRESOURCEW(32512)
#define IDC_WAIT        MAKEINTRESOURCEW(32514)
#define IDC_SIZEWE      MAKEINTRESOURCEW(32644)
#define IDC_HAND        MAKEINTRESOURCEW(32649)
#define IDI_HAND        MAKEINTRESOURCEW(32513)
#define IDI_EXCLAMATION MAKEINTRESOURCEW(32515)
#define IDI_ASTERISK    MAKEINTRESOURCEW(32516)

WINDOW_CALLS(DECLARE_CALL)

#endif
#endif
