/* The calls that concern single windows: messages, data, state, geometry, painting. */
#include "hosted/dialogs/window_state.h"

#include <algorithm>
#include <cstring>

#include "hosted/drawing/drawing_state.h"
#include "hosted/user_input.h"

LRESULT WINAPI SendMessageW(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    FAILS(SendMessageW);
    return Send(hWnd, uMessage, wParam, lParam);
}

LRESULT WINAPI CallWindowProcW(WNDPROC pfnProc, HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    FAILS(CallWindowProcW);
    return pfnProc ? pfnProc(hWnd, uMessage, wParam, lParam) : 0;
}

/* Where a number of GetWindowLongPtrW lies; null for one that the window has not. */
static LONG_PTR* LongOf(Window* pWindow, int nIndex)
{
    if (nIndex == GWLP_USERDATA) {
        return &pWindow->lUserData;
    }
    if (nIndex == GWLP_ID) {
        return &pWindow->lId;
    }
    if (pWindow->kind != KIND_DIALOG) {
        return nullptr;
    }
    return nIndex == DWLP_MSGRESULT ? &pWindow->lMsgResult
           : nIndex == DWLP_USER    ? &pWindow->lDialogUser
                                    : nullptr;
}

/* Reads, and with pNew writes. */
static LONG_PTR AccessLong(HWND hWnd, int nIndex, const LONG_PTR* pNew)
{
    constexpr DWORD ERROR_INVALID_INDEX = 1413;
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    if (LONG_PTR* pLong = LongOf(pWindow, nIndex)) {
        const LONG_PTR lOld = *pLong;
        *pLong = pNew ? *pNew : lOld;
        return lOld;
    }
    if (nIndex == GWL_STYLE || nIndex == GWL_EXSTYLE) {
        DWORD& dwStyle = nIndex == GWL_STYLE ? pWindow->dwStyle : pWindow->dwExStyle;
        const DWORD dwOld = dwStyle;
        dwStyle = pNew ? static_cast<DWORD>(*pNew) : dwOld;
        return static_cast<i32>(dwOld);
    }
    if (nIndex == GWLP_WNDPROC) {
        const auto lOld = reinterpret_cast<LONG_PTR>(pWindow->pfnProc);
        if (pNew && *pNew) {
            pWindow->pfnProc = reinterpret_cast<WNDPROC>(*pNew);
        }
        return lOld;
    }
    if (nIndex == GWLP_HINSTANCE) {
        return reinterpret_cast<LONG_PTR>(pWindow->hInstance);
    }
    if (nIndex == DWLP_DLGPROC && pWindow->kind == KIND_DIALOG) {
        const auto lOld = reinterpret_cast<LONG_PTR>(pWindow->pfnDialog);
        if (pNew) {
            pWindow->pfnDialog = reinterpret_cast<DLGPROC>(*pNew);
        }
        return lOld;
    }
    SetHostedError(ERROR_INVALID_INDEX);
    return 0;
}

LONG_PTR WINAPI GetWindowLongPtrW(HWND hWnd, int nIndex)
{
    FAILS(GetWindowLongPtrW);
    return AccessLong(hWnd, nIndex, nullptr);
}

LONG_PTR WINAPI SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR lNew)
{
    FAILS(SetWindowLongPtrW);
    return AccessLong(hWnd, nIndex, &lNew);
}

int WINAPI GetDlgCtrlID(HWND hWnd)
{
    FAILS(GetDlgCtrlID);
    const Window* pWindow = FindWindowState(hWnd);
    return pWindow ? static_cast<int>(pWindow->lId) : 0;
}

HWND WINAPI GetParent(HWND hWnd)
{
    FAILS(GetParent);
    const Window* pWindow = FindWindowState(hWnd);
    return pWindow ? pWindow->hParent : nullptr;
}

BOOL WINAPI IsWindow(HWND hWnd)
{
    return FindWindowState(hWnd) != nullptr;
}

BOOL WINAPI DestroyWindow(HWND hWnd)
{
    if (!FindWindowState(hWnd)) {
        return 0;
    }
    DestroyTree(hWnd);
    return 1;
}

/* All below the window, each before its own children. False: the callback wants no more. */
static bool EnumTree(HWND hWnd, WNDENUMPROC pfnEach, LPARAM lParam)
{
    const Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return true;
    }
    for (HWND hChild : std::vector<HWND>(pWindow->children)) {
        if (FindWindowState(hChild) && (!pfnEach(hChild, lParam) || !EnumTree(hChild, pfnEach, lParam))) {
            return false;
        }
    }
    return true;
}

BOOL WINAPI EnumChildWindows(HWND hWnd, WNDENUMPROC pfnEach, LPARAM lParam)
{
    FAILS(EnumChildWindows);
    return FindWindowState(hWnd) && pfnEach && EnumTree(hWnd, pfnEach, lParam);
}

HWND WINAPI GetDesktopWindow(void)
{
    FAILS(GetDesktopWindow);
    return DESKTOP_WINDOW; /* none of the machine's windows, but a handle like any other */
}

BOOL WINAPI SetWindowTextW(HWND hWnd, LPCWSTR wcText)
{
    FAILS(SetWindowTextW);
    return FindWindowState(hWnd) && Send(hWnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(wcText)) != 0;
}

int WINAPI GetWindowTextW(HWND hWnd, LPWSTR wcText, int cchText)
{
    if (!wcText || cchText <= 0) {
        return 0;
    }
    *wcText = 0;
    return static_cast<int>(
        Send(hWnd, WM_GETTEXT, static_cast<WPARAM>(cchText), reinterpret_cast<LPARAM>(wcText)));
}

/* ---- state ---- */

BOOL WINAPI EnableWindow(HWND hWnd, BOOL bEnable)
{
    FAILS(EnableWindow);
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    const bool bWasDisabled = (pWindow->dwStyle & WS_DISABLED) != 0;
    EnableState(pWindow, bEnable != 0);
    return bWasDisabled;
}

BOOL WINAPI IsWindowEnabled(HWND hWnd)
{
    FAILS(IsWindowEnabled);
    const Window* pWindow = FindWindowState(hWnd);
    return pWindow && !(pWindow->dwStyle & WS_DISABLED);
}

BOOL WINAPI ShowWindow(HWND hWnd, int nShow)
{
    FAILS(ShowWindow);
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    const bool bWasVisible = (pWindow->dwStyle & WS_VISIBLE) != 0;
    ShowState(pWindow, nShow != SW_HIDE);
    return bWasVisible;
}

BOOL WINAPI IsWindowVisible(HWND hWnd)
{
    FAILS(IsWindowVisible);
    const Window* pWindow = FindWindowState(hWnd);
    return pWindow && IsShown(pWindow);
}

HWND WINAPI GetFocus(void)
{
    FAILS(GetFocus);
    return FocusWindow();
}

HWND WINAPI SetFocus(HWND hWnd)
{
    FAILS(SetFocus);
    return hWnd && !FindWindowState(hWnd) ? nullptr : MoveFocus(hWnd);
}

/* ---- geometry ---- */

BOOL WINAPI GetWindowRect(HWND hWnd, LPRECT pRect)
{
    FAILS(GetWindowRect);
    const Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    *pRect = ScreenRect(pWindow);
    if (Lies(CALL_GetWindowRect, LIE_HUGE)) {
        *pRect = {-0x7FFFFFFF, -0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF};
    }
    return 1;
}

BOOL WINAPI GetClientRect(HWND hWnd, LPRECT pRect)
{
    FAILS(GetClientRect);
    const Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    *pRect = ClientRect(pWindow);
    if (Lies(CALL_GetClientRect, LIE_HUGE)) {
        *pRect = {0, 0, 0x7FFFFFFF, 0x7FFFFFFF};
    }
    return 1;
}

/* False for a window that does not exist; null is the screen. */
static bool OriginOf(HWND hWnd, POINT* pOrigin)
{
    *pOrigin = {0, 0};
    if (!hWnd) {
        return true;
    }
    const Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return false;
    }
    *pOrigin = ClientOrigin(pWindow);
    return true;
}

int WINAPI MapWindowPoints(HWND hFrom, HWND hTo, LPPOINT pPoints, UINT nPoints)
{
    FAILS(MapWindowPoints);
    POINT from, to;
    if (!OriginOf(hFrom, &from) || !OriginOf(hTo, &to)) {
        return 0;
    }
    const LONG lX = from.x - to.x, lY = from.y - to.y;
    for (UINT i = 0; i < nPoints; i++) { /* wrapping, as a false rectangle may lie anywhere */
        pPoints[i].x = static_cast<LONG>(static_cast<u32>(pPoints[i].x) + static_cast<u32>(lX));
        pPoints[i].y = static_cast<LONG>(static_cast<u32>(pPoints[i].y) + static_cast<u32>(lY));
    }
    return static_cast<int>(MAKELONG(lX, lY));
}

static void PlaceWindow(Window* pWindow, const RECT& rect)
{
    RECT newRect = rect;
    if (pWindow->kind == KIND_COMBO) { /* closed, a combo box is as high as its line */
        newRect.bottom = newRect.top + COMBO_HEIGHT;
    }
    if (Window* pParent = pWindow->dwStyle & WS_CHILD ? FindWindowState(pWindow->hParent) : nullptr) {
        Invalidate(pParent, &pWindow->rect, true);
    }
    pWindow->rect = newRect;
    Invalidate(pWindow, nullptr, true);
}

BOOL WINAPI MoveWindow(HWND hWnd, int nX, int nY, int nWidth, int nHeight, BOOL)
{
    FAILS(MoveWindow);
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    PlaceWindow(pWindow, {nX, nY, nX + std::clamp(nWidth, 0, 0x7FFF), nY + std::clamp(nHeight, 0, 0x7FFF)});
    return 1;
}

BOOL WINAPI GetWindowPlacement(HWND hWnd, WINDOWPLACEMENT* pPlacement)
{
    FAILS(GetWindowPlacement);
    const Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    std::memset(pPlacement, 0, sizeof *pPlacement);
    pPlacement->length = sizeof *pPlacement;
    pPlacement->showCmd = pWindow->dwStyle & WS_VISIBLE ? UINT{SW_SHOWNORMAL} : UINT{SW_HIDE};
    pPlacement->ptMinPosition = pPlacement->ptMaxPosition = {-1, -1};
    pPlacement->rcNormalPosition = pWindow->rect;
    if (Lies(CALL_GetWindowPlacement, LIE_HUGE)) {
        pPlacement->rcNormalPosition = {-0x7FFFFFFF, -0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF};
    }
    return 1;
}

BOOL WINAPI SetWindowPlacement(HWND hWnd, const WINDOWPLACEMENT* pPlacement)
{
    FAILS(SetWindowPlacement);
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    if (pPlacement->length != sizeof *pPlacement) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    PlaceWindow(pWindow, pPlacement->rcNormalPosition);
    ShowState(pWindow, pPlacement->showCmd != UINT{SW_HIDE});
    return 1;
}

/* ---- painting ---- */

BOOL WINAPI InvalidateRect(HWND hWnd, const RECT* pRect, BOOL bErase)
{
    FAILS(InvalidateRect);
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    Invalidate(pWindow, pRect, bErase != 0);
    return 1;
}

BOOL WINAPI UpdateWindow(HWND hWnd)
{
    FAILS(UpdateWindow);
    if (!FindWindowState(hWnd)) {
        return 0;
    }
    PaintWindows(hWnd); /* those in it, too */
    return 1;
}

HDC WINAPI BeginPaint(HWND hWnd, LPPAINTSTRUCT pPaint)
{
    FAILS(BeginPaint);
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow || pWindow->bPainting) {
        return nullptr;
    }
    std::memset(pPaint, 0, sizeof *pPaint);
    pPaint->rcPaint = pWindow->bInvalid ? pWindow->invalid : RECT{};
    pPaint->hdc = AddPaintContext(hWnd, pPaint->rcPaint);
    pWindow->bInvalid = false;
    pWindow->bPainting = true;
    liveCounts.nGdiObjects++;
    if (pWindow->bErase) {
        pWindow->bErase = false;
        pPaint->fErase = Send(hWnd, WM_ERASEBKGND, reinterpret_cast<WPARAM>(pPaint->hdc)) == 0;
    }
    return pPaint->hdc;
}

BOOL WINAPI EndPaint(HWND hWnd, const PAINTSTRUCT* pPaint)
{
    const int bFails = CallFails(CALL_EndPaint); /* a release that fails still releases */
    if (pPaint) {
        DropPaintContext(pPaint->hdc);
    }
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow || !pWindow->bPainting) {
        return 0;
    }
    pWindow->bPainting = false;
    liveCounts.nGdiObjects--;
    return !bFails;
}
