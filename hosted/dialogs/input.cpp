/* Mouse and keyboard of the tests' user. Where the system would queue a message, it is sent at once. */
#include "hosted/dialogs/window_state.h"

#include "hosted/user_input.h"

namespace {

POINT cursorPoint{};

/* The control when a user can reach it, else null. */
Window* Reach(HWND hDialog, int nId)
{
    const Window* pDialog = FindWindowState(hDialog);
    for (HWND hItem : pDialog ? pDialog->children : std::vector<HWND>()) {
        Window* pItem = FindWindowState(hItem);
        if (pItem->lId == nId) {
            return IsUsable(pItem) ? pItem : nullptr;
        }
    }
    return nullptr;
}

/* The focus goes to a control at the press of the button, before its click. bTracking keeps a radio button
   from taking the focus for a click of its own. */
void FocusByMouse(Window* pWindow)
{
    pWindow->bTracking = true;
    MoveFocus(pWindow->hWnd);
    pWindow->bTracking = false;
}

bool LetsMouseThrough(const Window* pWindow)
{
    if (pWindow->kind == KIND_STATIC) {
        return !(pWindow->dwStyle & SS_NOTIFY);
    }
    return pWindow->kind == KIND_BUTTON && ButtonKind(pWindow) == BS_GROUPBOX;
}

bool Holds(const RECT& rect, POINT point)
{
    return point.x >= rect.left && point.x < rect.right && point.y >= rect.top && point.y < rect.bottom;
}

/* The lowest window that takes the mouse at a point of the screen. The first control lies uppermost. */
Window* WindowUnder(Window* pWindow, POINT point)
{
    for (HWND hChild : pWindow->children) {
        Window* pChild = FindWindowState(hChild);
        if ((pChild->dwStyle & (WS_VISIBLE | WS_DISABLED)) == WS_VISIBLE &&
            Holds(ScreenRect(pChild), point) && !LetsMouseThrough(pChild)) {
            return WindowUnder(pChild, point);
        }
    }
    return pWindow;
}

void SendMouse(HWND hWnd, UINT uMessage, int x, int y)
{
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow || !IsUsable(pWindow)) {
        return;
    }
    const POINT origin = ClientOrigin(pWindow);
    cursorPoint = {origin.x + x, origin.y + y};
    const Window* pUnder = WindowUnder(pWindow, cursorPoint);
    const POINT client = ClientOrigin(pUnder);
    Send(pUnder->hWnd, uMessage, 0, MAKELPARAM(cursorPoint.x - client.x, cursorPoint.y - client.y));
}

/* A click on a static control that notifies, or a list's row. */
bool TellList(HWND hList, WORD wCode)
{
    const Window* pWindow = FindWindowState(hList);
    if (!pWindow) {
        return true; /* it went with an earlier code */
    }
    if (pWindow->kind == KIND_COMBO || (pWindow->dwStyle & LBS_NOTIFY)) {
        NotifyParent(hList, wCode);
    }
    return true;
}

/* The dialog that the keys of a window belong to. */
HWND DialogOf(HWND hWnd)
{
    const Window* pWindow = FindWindowState(hWnd);
    return pWindow && pWindow->kind != KIND_DIALOG ? pWindow->hParent : hWnd;
}

/* A page has neither OK nor Cancel: both keys are its sheet's. Null for any other dialog. */
HWND SheetOf(HWND hDialog)
{
    const Window* pDialog = FindWindowState(hDialog);
    const Window* pParent =
        pDialog && pDialog->dwStyle & WS_CHILD ? FindWindowState(pDialog->hParent) : nullptr;
    return pParent && pParent->kind == KIND_FRAME ? pParent->hWnd : nullptr;
}

void PressReturn(HWND hDialog, const Window* pFocus)
{
    LONG_PTR lId = IDOK;
    const bool bButton = pFocus->kind == KIND_BUTTON && ButtonKind(pFocus) <= BS_DEFPUSHBUTTON;
    if (const HWND hSheet = SheetOf(hDialog); hSheet && !bButton) {
        Send(hSheet, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED));
        return;
    }
    if (bButton) {
        lId = pFocus->lId;
    } else if (const LRESULT lDefault = Send(hDialog, DM_GETDEFID); HIWORD(lDefault) == DC_HASDEFID) {
        lId = LOWORD(lDefault);
    }
    const Window* pDialog = FindWindowState(hDialog);
    for (HWND hItem : pDialog ? pDialog->children : std::vector<HWND>()) {
        if (const Window* pItem = FindWindowState(hItem); pItem->lId == lId) {
            if (!(pItem->dwStyle & WS_DISABLED)) {
                Send(hDialog, WM_COMMAND, MAKEWPARAM(lId, BN_CLICKED), reinterpret_cast<LPARAM>(hItem));
            }
            return;
        }
    }
    Send(hDialog, WM_COMMAND, MAKEWPARAM(lId, BN_CLICKED));
}

bool IsArrow(WPARAM uKey)
{
    return uKey >= VK_LEFT && uKey <= VK_DOWN;
}

void SendHelp(Window* pWindow)
{
    HELPINFO info{};
    info.cbSize = sizeof info;
    info.iContextType = HELPINFO_WINDOW;
    info.iCtrlId = static_cast<int>(pWindow->lId);
    info.hItemHandle = pWindow->hWnd;
    info.MousePos = cursorPoint;
    Send(pWindow->hWnd, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
}

} // namespace

bool ClickControl(HWND hDialog, int nId)
{
    const KeepRecords keep;
    Window* pWindow = Reach(hDialog, nId);
    if (!pWindow) {
        return false;
    }
    if (pWindow->kind == KIND_BUTTON && ButtonKind(pWindow) != BS_GROUPBOX) {
        const HWND hButton = pWindow->hWnd;
        FocusByMouse(pWindow);
        ClickButtonState(hButton);
        return true;
    }
    if (pWindow->kind == KIND_STATIC && (pWindow->dwStyle & SS_NOTIFY)) {
        NotifyParent(pWindow->hWnd, STN_CLICKED);
        return true;
    }
    if (pWindow->kind == KIND_STATIC || pWindow->kind == KIND_BUTTON) {
        return false;
    }
    FocusByMouse(pWindow);
    return true;
}

bool PickRow(HWND hDialog, int nId, int nRow)
{
    const KeepRecords keep;
    Window* pWindow = Reach(hDialog, nId);
    if (!pWindow || (pWindow->kind != KIND_LIST && pWindow->kind != KIND_COMBO) || nRow < 0 ||
        nRow >= static_cast<int>(pWindow->rows.size())) {
        return false;
    }
    const HWND hList = pWindow->hWnd;
    FocusByMouse(pWindow);
    if (pWindow->bGone) {
        return true;
    }
    if (pWindow->kind == KIND_LIST) { /* tells again when the selected row is clicked */
        Send(hList, LB_SETCURSEL, static_cast<WPARAM>(nRow));
        return TellList(hList, LBN_SELCHANGE);
    }
    TellList(hList, CBN_DROPDOWN);
    if (!pWindow->bGone) {
        Send(hList, CB_SETCURSEL, static_cast<WPARAM>(nRow));
    }
    TellList(hList, CBN_CLOSEUP);
    TellList(hList, CBN_SELENDOK);
    return TellList(hList, CBN_SELCHANGE);
}

bool DoubleClickRow(HWND hDialog, int nId, int nRow)
{
    const KeepRecords keep;
    const Window* pWindow = Reach(hDialog, nId);
    if (!pWindow || pWindow->kind != KIND_LIST || !PickRow(hDialog, nId, nRow)) {
        return false;
    }
    const Window* pAfter = Reach(hDialog, nId);
    return !pAfter || TellList(pAfter->hWnd, LBN_DBLCLK);
}

bool SpinControl(HWND hDialog, int nId, int nCode, int nPos)
{
    const KeepRecords keep;
    Window* pWindow = Reach(hDialog, nId);
    if (!pWindow || pWindow->kind != KIND_SCROLL) {
        return false;
    }
    const HWND hBar = pWindow->hWnd, hParent = pWindow->hParent;
    const UINT uMessage = pWindow->dwStyle & SBS_VERT ? WM_VSCROLL : WM_HSCROLL;
    const auto tell = [&](int nWhat, int nWhere) {
        Send(hParent, uMessage, MAKEWPARAM(nWhat, nWhere), reinterpret_cast<LPARAM>(hBar));
    };
    if (pWindow->dwStyle & WS_TABSTOP) {
        MoveFocus(hBar);
    }
    if (nCode == SB_THUMBTRACK || nCode == SB_THUMBPOSITION) {
        pWindow->bTracking = true;
        pWindow->nTrack = nPos;
        if (nCode == SB_THUMBTRACK) {
            tell(SB_THUMBTRACK, nPos);
        }
        tell(SB_THUMBPOSITION, nPos);
        pWindow->bTracking = false;
    } else {
        tell(nCode, 0);
    }
    tell(SB_ENDSCROLL, 0);
    return true;
}

bool TypeText(HWND hDialog, int nId, std::u16string_view wcText, bool bReplace)
{
    const KeepRecords keep;
    Window* pWindow = Reach(hDialog, nId);
    if (!pWindow || pWindow->kind != KIND_EDIT || (pWindow->dwStyle & ES_READONLY)) {
        return false;
    }
    const HWND hEdit = pWindow->hWnd;
    FocusByMouse(pWindow);
    if (FocusWindow() != hEdit) {
        return false; /* the dialog sent the focus elsewhere */
    }
    const LRESULT cch = Send(hEdit, WM_GETTEXTLENGTH);
    Send(hEdit, EM_SETSEL, bReplace ? 0 : static_cast<WPARAM>(cch), cch);
    if (bReplace && wcText.empty() && cch > 0) {
        Send(hEdit, WM_CHAR, VK_BACK);
    }
    for (const char16_t wcChar : wcText) {
        Send(hEdit, WM_CHAR, wcChar);
    }
    return true;
}

bool TurnReading(HWND hDialog, int nId, bool bRightToLeft)
{
    const KeepRecords keep;
    Window* pWindow = Reach(hDialog, nId);
    if (!pWindow || pWindow->kind != KIND_EDIT) {
        return false;
    }
    FocusByMouse(pWindow);
    pWindow->dwExStyle = (pWindow->dwExStyle & ~WS_EX_RTLREADING) | (bRightToLeft ? WS_EX_RTLREADING : 0);
    NotifyParent(pWindow->hWnd, bRightToLeft ? EN_ALIGN_RTL_EC : EN_ALIGN_LTR_EC);
    return true;
}

void SendKey(WPARAM uKey, bool bShift)
{
    const KeepRecords keep;
    Window* pFocus = FindWindowState(FocusWindow());
    if (!pFocus || !IsUsable(pFocus)) {
        return;
    }
    const HWND hFocus = pFocus->hWnd, hDialog = DialogOf(hFocus);
    const bool bButton = pFocus->kind == KIND_BUTTON;
    if (uKey == VK_TAB) {
        MoveFocus(NextTabStop(hDialog, hFocus, bShift));
    } else if (uKey == VK_F1) {
        SendHelp(pFocus);
    } else if (uKey == VK_RETURN) {
        PressReturn(hDialog, pFocus);
    } else if (uKey == VK_ESCAPE) {
        const HWND hSheet = SheetOf(hDialog);
        Send(hSheet ? hSheet : hDialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED));
    } else if (bButton && IsArrow(uKey)) {
        const std::vector<HWND> group = GroupBehind(hFocus);
        const bool bBack = uKey == VK_LEFT || uKey == VK_UP;
        Window* pNext = group.empty() ? nullptr : FindWindowState(bBack ? group.back() : group.front());
        if (pNext && pNext->kind == KIND_BUTTON && ButtonKind(pNext) == BS_AUTORADIOBUTTON) {
            FocusByMouse(pNext);
            ClickButtonState(pNext->hWnd);
        } else if (pNext) {
            MoveFocus(pNext->hWnd);
        }
    } else if (bButton && uKey == VK_SPACE) {
        ClickButtonState(hFocus);
    } else {
        Send(hFocus, WM_KEYDOWN, uKey, 1);
        if (uKey == VK_BACK && FindWindowState(hFocus)) {
            Send(hFocus, WM_CHAR, VK_BACK, 1);
        }
    }
}

void MoveMouse(HWND hWnd, int x, int y)
{
    SendMouse(hWnd, WM_MOUSEMOVE, x, y);
}

void PressMouse(HWND hWnd, int x, int y)
{
    SendMouse(hWnd, WM_LBUTTONDOWN, x, y);
}

void ReleaseMouse(HWND hWnd, int x, int y)
{
    SendMouse(hWnd, WM_LBUTTONUP, x, y);
}

void RightClick(HWND hWnd, int x, int y, bool bTwice)
{
    SendMouse(hWnd, WM_RBUTTONDOWN, x, y);
    SendMouse(hWnd, WM_RBUTTONUP, x, y); /* which asks for the context menu, unless somebody else takes it */
    if (bTwice) {
        SendMouse(hWnd, WM_RBUTTONDBLCLK, x, y);
        SendMouse(hWnd, WM_RBUTTONUP, x, y);
    }
}

void CloseWindowByUser(HWND hDialog)
{
    const Window* pDialog = FindWindowState(hDialog);
    if (pDialog && IsUsable(pDialog)) {
        Send(hDialog, WM_CLOSE);
    }
}

BOOL WINAPI GetCursorPos(LPPOINT pPoint)
{
    FAILS(GetCursorPos);
    *pPoint = cursorPoint;
    return 1;
}

void ResetInput()
{
    cursorPoint = {};
}
