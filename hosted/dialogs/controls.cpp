/* The window procedures of buttons, static controls, edit controls and scroll bars. */
#include "hosted/dialogs/window_state.h"

#include <algorithm>
#include <cstring>

#include "hosted/user_input.h"

/* ---- buttons ---- */

static WPARAM HighestCheck(const Window* pWindow)
{
    switch (ButtonKind(pWindow)) {
    case BS_CHECKBOX:
    case BS_AUTOCHECKBOX:
    case BS_RADIOBUTTON:
    case BS_AUTORADIOBUTTON: return BST_CHECKED;
    case BS_3STATE:
    case BS_AUTO3STATE: return BST_INDETERMINATE;
    default: return BST_UNCHECKED;
    }
}

/* An automatic radio button takes the check from the other automatic ones of its group. */
static void UncheckGroup(HWND hButton)
{
    for (HWND hOther : GroupBehind(hButton)) {
        const Window* pOther = FindWindowState(hOther);
        if (pOther && pOther->kind == KIND_BUTTON && ButtonKind(pOther) == BS_AUTORADIOBUTTON) {
            Send(hOther, BM_SETCHECK, BST_UNCHECKED);
        }
    }
}

void ClickButtonState(HWND hButton)
{
    const Window* pWindow = FindWindowState(hButton);
    if (!pWindow) {
        return;
    }
    switch (ButtonKind(pWindow)) {
    case BS_AUTOCHECKBOX: Send(hButton, BM_SETCHECK, pWindow->uCheck ? BST_UNCHECKED : BST_CHECKED); break;
    case BS_AUTO3STATE: Send(hButton, BM_SETCHECK, (pWindow->uCheck + 1) % 3); break;
    case BS_AUTORADIOBUTTON:
        UncheckGroup(hButton);
        Send(hButton, BM_SETCHECK, BST_CHECKED);
        break;
    case BS_GROUPBOX: return;
    default: break;
    }
    NotifyParent(hButton, BN_CLICKED);
}

LRESULT CALLBACK ButtonProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    switch (uMessage) {
    case BM_GETCHECK: return static_cast<LRESULT>(pWindow->uCheck);
    case BM_SETCHECK:
        pWindow->uCheck = std::min(wParam, HighestCheck(pWindow));
        if (IsRadio(pWindow)) { /* the tab key stops at the checked one of a group */
            pWindow->dwStyle =
                pWindow->uCheck ? pWindow->dwStyle | WS_TABSTOP : pWindow->dwStyle & ~WS_TABSTOP;
        }
        Invalidate(pWindow, nullptr, false);
        return 0;
    case BM_SETSTYLE:
        pWindow->dwStyle = (pWindow->dwStyle & ~BS_TYPEMASK) | (static_cast<DWORD>(wParam) & BS_TYPEMASK);
        Invalidate(pWindow, nullptr, false);
        return 0;
    case BM_CLICK:
        MoveFocus(hWnd);
        ClickButtonState(hWnd);
        return 0;
    case WM_SETFOCUS: /* by keyboard or program; a click is through by then */
        if (IsRadio(pWindow) && !pWindow->uCheck && !pWindow->bTracking) {
            NotifyParent(hWnd, BN_CLICKED);
        }
        return 0;
    default: return DefaultWindowProc(hWnd, uMessage, wParam, lParam);
    }
}

/* ---- static controls ---- */

/* A picture control takes its picture's size, unless it is told to keep its own. */
static void FitToPicture(Window* pWindow)
{
    PictureSize size;
    if ((pWindow->dwStyle & (SS_CENTERIMAGE | SS_REALSIZECONTROL)) == 0 &&
        GetPicture(static_cast<HBITMAP>(pWindow->hPicture), &size, nullptr)) {
        pWindow->rect.right = pWindow->rect.left + size.nWidth;
        pWindow->rect.bottom = pWindow->rect.top + size.nHeight;
    }
}

static LRESULT SetPicture(Window* pWindow, DWORD dwKind, HANDLE hPicture)
{
    if ((pWindow->dwStyle & SS_TYPEMASK) != dwKind) {
        return 0;
    }
    const auto lOld = reinterpret_cast<LRESULT>(pWindow->hPicture);
    pWindow->hPicture = hPicture;
    if (dwKind == SS_BITMAP) {
        FitToPicture(pWindow);
    }
    Invalidate(pWindow, nullptr, true);
    return lOld;
}

LRESULT CALLBACK StaticProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    const DWORD dwKind = pWindow->dwStyle & SS_TYPEMASK;
    switch (uMessage) {
    case STM_SETICON: return SetPicture(pWindow, SS_ICON, reinterpret_cast<HANDLE>(wParam));
    case STM_GETICON: return dwKind == SS_ICON ? reinterpret_cast<LRESULT>(pWindow->hPicture) : 0;
    case STM_SETIMAGE:
        return wParam > IMAGE_CURSOR ? 0
                                     : SetPicture(pWindow, wParam == IMAGE_BITMAP ? SS_BITMAP : SS_ICON,
                                                  reinterpret_cast<HANDLE>(lParam));
    case STM_GETIMAGE:
        return dwKind == (wParam == IMAGE_BITMAP ? SS_BITMAP : SS_ICON)
                   ? reinterpret_cast<LRESULT>(pWindow->hPicture)
                   : 0;
    default: return DefaultWindowProc(hWnd, uMessage, wParam, lParam);
    }
}

/* ---- edit controls ---- */

/* Replaces the selection, as typing does: within the limit. Tells the parent. */
static void ReplaceSelection(Window* pWindow, std::u16string_view wcText)
{
    const size_t nStart = std::min(pWindow->nSelStart, pWindow->wcText.size());
    const size_t nEnd = std::clamp(pWindow->nSelEnd, nStart, pWindow->wcText.size());
    const size_t nLeft = pWindow->wcText.size() - (nEnd - nStart);
    const size_t nRoom = pWindow->nLimit > nLeft ? pWindow->nLimit - nLeft : 0;
    const bool bCut = wcText.size() > nRoom;
    wcText = wcText.substr(0, nRoom);
    if (bCut) {
        NotifyParent(pWindow->hWnd, EN_MAXTEXT);
        if (pWindow->bGone || (wcText.empty() && nStart == nEnd)) {
            return;
        }
    }
    pWindow->wcText.replace(nStart, nEnd - nStart, wcText);
    pWindow->nSelStart = pWindow->nSelEnd = nStart + wcText.size();
    pWindow->bModified = true;
    Invalidate(pWindow, nullptr, false);
    NotifyParent(pWindow->hWnd, EN_UPDATE);
    if (!pWindow->bGone) {
        NotifyParent(pWindow->hWnd, EN_CHANGE);
    }
}

static void TypeCharacter(Window* pWindow, WCHAR wcChar)
{
    if (pWindow->dwStyle & ES_READONLY) {
        return;
    }
    const bool bSelected = pWindow->nSelStart != pWindow->nSelEnd;
    if (wcChar == VK_BACK) {
        if (!bSelected && pWindow->nSelStart > 0) {
            pWindow->nSelStart--;
        } else if (!bSelected) {
            return;
        }
        ReplaceSelection(pWindow, u"");
    } else if (wcChar >= u' ') {
        ReplaceSelection(pWindow, std::u16string_view(&wcChar, 1));
    }
}

static void EditKey(Window* pWindow, WPARAM uKey)
{
    const size_t nEnd = pWindow->wcText.size();
    size_t nTo = pWindow->nSelEnd;
    switch (uKey) {
    case VK_LEFT:
    case VK_UP: nTo = nTo ? nTo - 1 : 0; break;
    case VK_RIGHT:
    case VK_DOWN: nTo = std::min(nTo + 1, nEnd); break;
    case VK_HOME: nTo = 0; break;
    case VK_END: nTo = nEnd; break;
    case VK_DELETE:
        if (!(pWindow->dwStyle & ES_READONLY) && (pWindow->nSelStart != pWindow->nSelEnd || nTo < nEnd)) {
            pWindow->nSelEnd = pWindow->nSelStart == pWindow->nSelEnd ? nTo + 1 : pWindow->nSelEnd;
            ReplaceSelection(pWindow, u"");
        }
        return;
    default: return;
    }
    pWindow->nSelStart = pWindow->nSelEnd = nTo;
}

static LRESULT SetEditText(Window* pWindow, LPCWSTR wcText)
{
    pWindow->wcText = wcText ? wcText : u""; /* the limit is for typing */
    pWindow->nSelStart = pWindow->nSelEnd = 0;
    pWindow->bModified = false;
    Invalidate(pWindow, nullptr, true);
    if (!(pWindow->dwStyle & ES_MULTILINE)) {
        NotifyParent(pWindow->hWnd, EN_UPDATE);
        if (!pWindow->bGone) {
            NotifyParent(pWindow->hWnd, EN_CHANGE);
        }
    }
    return 1;
}

LRESULT CALLBACK EditProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    switch (uMessage) {
    case WM_SETTEXT: return SetEditText(pWindow, reinterpret_cast<LPCWSTR>(lParam));
    case WM_CHAR: TypeCharacter(pWindow, static_cast<WCHAR>(wParam)); return 1;
    case WM_KEYDOWN: EditKey(pWindow, wParam); return 0;
    case WM_SETFOCUS: NotifyParent(hWnd, EN_SETFOCUS); return 0;
    case WM_KILLFOCUS: NotifyParent(hWnd, EN_KILLFOCUS); return 0;
    case EM_LIMITTEXT: pWindow->nLimit = wParam ? std::min<WPARAM>(wParam, 0x7FFFFFFE) : 0x7FFFFFFE; return 0;
    case EM_GETLIMITTEXT: return static_cast<LRESULT>(pWindow->nLimit);
    case EM_GETMODIFY: return pWindow->bModified;
    case EM_SETMODIFY: pWindow->bModified = wParam != 0; return 0;
    case EM_SETREADONLY:
        pWindow->dwStyle = wParam ? pWindow->dwStyle | ES_READONLY : pWindow->dwStyle & ~ES_READONLY;
        return 1;
    case EM_GETSEL: return static_cast<LRESULT>(MAKELONG(pWindow->nSelStart, pWindow->nSelEnd));
    case EM_SETSEL: {
        const size_t cch = pWindow->wcText.size();
        const auto nFrom = static_cast<i32>(wParam), nTo = static_cast<i32>(lParam);
        if (nFrom == -1) {
            pWindow->nSelStart = pWindow->nSelEnd;
        } else {
            const size_t nOne = std::min(static_cast<size_t>(std::max(nFrom, 0)), cch);
            const size_t nOther = nTo < 0 ? cch : std::min(static_cast<size_t>(nTo), cch);
            pWindow->nSelStart = std::min(nOne, nOther);
            pWindow->nSelEnd = std::max(nOne, nOther);
        }
        return 1;
    }
    case EM_REPLACESEL:
        if (const auto wcText = reinterpret_cast<LPCWSTR>(lParam)) {
            ReplaceSelection(pWindow, wcText);
        }
        return 0;
    default: return DefaultWindowProc(hWnd, uMessage, wParam, lParam);
    }
}

/* ---- scroll bars ---- */

/* A page in view leaves fewer positions than the range has. */
static void LimitScroll(Window* pWindow)
{
    pWindow->nMax = std::max(pWindow->nMax, pWindow->nMin);
    const i64 lRange = i64{pWindow->nMax} - pWindow->nMin + 1;
    pWindow->nPage = static_cast<UINT>(std::min<i64>(pWindow->nPage, lRange));
    const i64 lLast = pWindow->nMax - std::max<i64>(i64{pWindow->nPage} - 1, 0);
    pWindow->nPos =
        static_cast<int>(std::clamp<i64>(pWindow->nPos, pWindow->nMin, std::max<i64>(lLast, pWindow->nMin)));
}

/* Result: the position before. */
static int StoreScroll(Window* pWindow, const SCROLLINFO& info)
{
    const int nBefore = pWindow->nPos;
    if (info.fMask & SIF_RANGE) {
        pWindow->nMin = info.nMin;
        pWindow->nMax = info.nMax;
    }
    if (info.fMask & SIF_PAGE) {
        pWindow->nPage = info.nPage;
    }
    if (info.fMask & SIF_POS) {
        pWindow->nPos = info.nPos;
    }
    LimitScroll(pWindow);
    Invalidate(pWindow, nullptr, false);
    return nBefore;
}

static BOOL ReadScroll(const Window* pWindow, SCROLLINFO* pInfo)
{
    if (pInfo->cbSize != sizeof *pInfo && pInfo->cbSize != sizeof *pInfo - sizeof pInfo->nTrackPos) {
        return 0;
    }
    if (pInfo->fMask & SIF_RANGE) {
        pInfo->nMin = pWindow->nMin;
        pInfo->nMax = pWindow->nMax;
    }
    if (pInfo->fMask & SIF_PAGE) {
        pInfo->nPage = pWindow->nPage;
    }
    if (pInfo->fMask & SIF_POS) {
        pInfo->nPos = pWindow->nPos;
    }
    if ((pInfo->fMask & SIF_TRACKPOS) && pInfo->cbSize == sizeof *pInfo) {
        pInfo->nTrackPos = pWindow->bTracking ? pWindow->nTrack : pWindow->nPos;
    }
    return (pInfo->fMask & SIF_ALL) != 0;
}

LRESULT CALLBACK ScrollBarProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    SCROLLINFO info{};
    switch (uMessage) {
    case SBM_SETPOS:
        info.fMask = SIF_POS;
        info.nPos = static_cast<int>(wParam);
        return StoreScroll(pWindow, info);
    case SBM_GETPOS: return pWindow->nPos;
    case SBM_SETRANGE:
    case SBM_SETRANGEREDRAW:
        info.fMask = SIF_RANGE;
        info.nMin = static_cast<int>(wParam);
        info.nMax = static_cast<int>(lParam);
        return StoreScroll(pWindow, info);
    case SBM_GETRANGE:
        *reinterpret_cast<int*>(wParam) = pWindow->nMin;
        *reinterpret_cast<int*>(lParam) = pWindow->nMax;
        return 1;
    case SBM_SETSCROLLINFO:
        StoreScroll(pWindow, *reinterpret_cast<const SCROLLINFO*>(lParam));
        return pWindow->nPos; /* the position now */
    case SBM_GETSCROLLINFO: return ReadScroll(pWindow, reinterpret_cast<SCROLLINFO*>(lParam));
    default: return DefaultWindowProc(hWnd, uMessage, wParam, lParam);
    }
}

int WINAPI SetScrollInfo(HWND hWnd, int nBar, LPCSCROLLINFO pInfo, BOOL)
{
    FAILS(SetScrollInfo);
    if (nBar != SB_CTL || !pInfo || pInfo->cbSize < sizeof *pInfo - sizeof pInfo->nTrackPos) {
        return 0;
    }
    return static_cast<int>(Send(hWnd, SBM_SETSCROLLINFO, 1, reinterpret_cast<LPARAM>(pInfo)));
}

BOOL WINAPI GetScrollInfo(HWND hWnd, int nBar, LPSCROLLINFO pInfo)
{
    FAILS(GetScrollInfo);
    if (nBar != SB_CTL || !pInfo) {
        return 0;
    }
    const BOOL bDone = Send(hWnd, SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(pInfo)) != 0;
    if (bDone && Lies(CALL_GetScrollInfo, LIE_HUGE)) {
        pInfo->nPos = pInfo->nTrackPos = 0x7FFFFFFF;
    }
    return bDone;
}
