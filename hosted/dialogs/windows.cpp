/* Windows as records: making, destroying, sending, geometry, focus, what is to be painted. */
#include "hosted/dialogs/window_state.h"

#include <algorithm>
#include <map>
#include <memory>

#include "hosted/drawing/drawing_state.h"
#include "hosted/user_input.h"

namespace {

constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;

std::map<HWND, std::unique_ptr<Window>> allWindows;
std::vector<std::unique_ptr<Window>> goneWindows;
std::uintptr_t nLastWindow = 0;
int nKeeping = 0;
HWND hFocusWindow = nullptr;

RECT Intersect(const RECT& one, const RECT& other)
{
    return {std::max(one.left, other.left), std::max(one.top, other.top), std::min(one.right, other.right),
            std::min(one.bottom, other.bottom)};
}

bool IsEmptyRect(const RECT& rect)
{
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

/* Parents hear of the end before their children do. */
void SendDestroy(HWND hWnd)
{
    Send(hWnd, WM_DESTROY);
    const Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return;
    }
    for (HWND hChild : std::vector<HWND>(pWindow->children)) {
        SendDestroy(hChild);
    }
}

void DropTree(HWND hWnd)
{
    if (const Window* pWindow = FindWindowState(hWnd)) {
        for (HWND hChild : std::vector<HWND>(pWindow->children)) {
            DropTree(hChild);
        }
    }
    Send(hWnd, WM_NCDESTROY);
    const auto found = allWindows.find(hWnd);
    if (found == allWindows.end()) {
        return;
    }
    Window* pWindow = found->second.get();
    if (const auto parent = allWindows.find(pWindow->hParent); parent != allWindows.end()) {
        std::erase(parent->second->children, hWnd);
        if (parent->second->hFocus == hWnd) {
            parent->second->hFocus = nullptr;
        }
    }
    if (hFocusWindow == hWnd) {
        hFocusWindow = nullptr;
    }
    DropWindowSurface(hWnd);
    pWindow->bGone = true;
    goneWindows.push_back(std::move(found->second));
    allWindows.erase(found);
    liveCounts.nWindows--;
}

} // namespace

KeepRecords::KeepRecords()
{
    nKeeping++;
}

KeepRecords::~KeepRecords()
{
    if (--nKeeping == 0) {
        goneWindows.clear();
    }
}

Window* FindWindowState(HWND hWnd)
{
    const auto found = allWindows.find(hWnd);
    if (found == allWindows.end()) {
        SetHostedError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    return found->second.get();
}

Window* MakeWindow(WindowKind kind, Window* pParent, const RECT& rect, DWORD dwStyle, DWORD dwExStyle,
                   LONG_PTR lId, WNDPROC pfnProc)
{
    const auto hWnd = reinterpret_cast<HWND>(0x20000 + ++nLastWindow * 2);
    auto window = std::make_unique<Window>();
    window->hWnd = hWnd;
    window->kind = kind;
    window->hParent = pParent ? pParent->hWnd : nullptr;
    window->rect = rect;
    window->dwStyle = dwStyle;
    window->dwExStyle = dwExStyle;
    window->lId = lId;
    window->pfnProc = pfnProc;
    if (pParent && (dwStyle & WS_CHILD)) {
        pParent->children.push_back(hWnd);
    }
    liveCounts.nWindows++;
    return (allWindows[hWnd] = std::move(window)).get();
}

LRESULT Send(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    const Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    const KeepRecords keep;
    return pWindow->pfnProc(hWnd, uMessage, wParam, lParam);
}

void DestroyTree(HWND hWnd)
{
    if (!FindWindowState(hWnd)) {
        return;
    }
    const KeepRecords keep; /* until all have heard of it */
    SendDestroy(hWnd);
    /* Dialogs of their own go with their owner. */
    std::vector<HWND> owned;
    for (const auto& [hOther, pOther] : allWindows) {
        if (pOther->hParent == hWnd && !(pOther->dwStyle & WS_CHILD)) {
            owned.push_back(hOther);
        }
    }
    for (HWND hOther : owned) {
        DestroyTree(hOther);
    }
    DropTree(hWnd);
}

void ResetWindows()
{
    allWindows.clear();
    goneWindows.clear();
    hFocusWindow = nullptr;
    liveCounts.nWindows = 0;
    ResetObjects();
}

void NotifyParent(HWND hControl, WORD wCode)
{
    if (const Window* pWindow = FindWindowState(hControl)) {
        Send(pWindow->hParent, WM_COMMAND, MAKEWPARAM(pWindow->lId, wCode),
             reinterpret_cast<LPARAM>(hControl));
    }
}

LRESULT DefaultWindowProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    switch (uMessage) {
    case WM_SETTEXT: {
        const auto wcText = reinterpret_cast<LPCWSTR>(lParam);
        pWindow->wcText = wcText ? wcText : u"";
        Invalidate(pWindow, nullptr, true);
        return 1;
    }
    case WM_GETTEXTLENGTH: return static_cast<LRESULT>(pWindow->wcText.size());
    case WM_GETTEXT: {
        if (!wParam || !lParam) {
            return 0;
        }
        const size_t cch = std::min<size_t>(pWindow->wcText.size(), wParam - 1);
        const auto wcOut = reinterpret_cast<LPWSTR>(lParam);
        std::copy_n(pWindow->wcText.data(), cch, wcOut);
        wcOut[cch] = 0;
        return static_cast<LRESULT>(cch);
    }
    case WM_RBUTTONUP: {
        const POINT origin = ClientOrigin(pWindow);
        const int x = origin.x + static_cast<i16>(LOWORD(lParam)),
                  y = origin.y + static_cast<i16>(HIWORD(lParam));
        return Send(hWnd, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(hWnd), MAKELPARAM(x, y));
    }
    case WM_HELP: /* a control hands both on, so that the dialog answers for it */
    case WM_CONTEXTMENU:
        return pWindow->dwStyle & WS_CHILD ? Send(pWindow->hParent, uMessage, wParam, lParam) : 0;
    case WM_PAINT: pWindow->bInvalid = false; return 0;
    case WM_ERASEBKGND: EraseContext(reinterpret_cast<HDC>(wParam)); return 1;
    default: return 0;
    }
}

POINT ClientOrigin(const Window* pWindow)
{
    POINT origin{0, 0};
    for (const Window* pAt = pWindow; pAt;
         pAt = pAt->dwStyle & WS_CHILD ? FindWindowState(pAt->hParent) : nullptr) {
        const bool bCaption = (pAt->dwStyle & WS_CAPTION) == WS_CAPTION;
        origin.x += pAt->rect.left + (bCaption ? FRAME_SIDE : 0);
        origin.y += pAt->rect.top + (bCaption ? FRAME_CAPTION : 0);
    }
    return origin;
}

RECT ScreenRect(const Window* pWindow)
{
    POINT origin{0, 0};
    if (pWindow->dwStyle & WS_CHILD) {
        if (const Window* pParent = FindWindowState(pWindow->hParent)) {
            origin = ClientOrigin(pParent);
        }
    }
    const RECT& rect = pWindow->rect;
    return {rect.left + origin.x, rect.top + origin.y, rect.right + origin.x, rect.bottom + origin.y};
}

RECT ClientRect(const Window* pWindow)
{
    LONG lWidth = pWindow->rect.right - pWindow->rect.left,
         lHeight = pWindow->rect.bottom - pWindow->rect.top;
    if ((pWindow->dwStyle & WS_CAPTION) == WS_CAPTION) {
        lWidth -= 2 * FRAME_SIDE;
        lHeight -= FRAME_CAPTION + FRAME_SIDE;
    }
    return {0, 0, std::max<LONG>(lWidth, 0), std::max<LONG>(lHeight, 0)};
}

void Invalidate(Window* pWindow, const RECT* pRect, bool bErase)
{
    const RECT client = ClientRect(pWindow);
    const RECT rect = pRect ? Intersect(*pRect, client) : client;
    if (IsEmptyRect(rect) || !IsShown(pWindow)) {
        return; /* what is not on the screen becomes invalid when it is shown */
    }
    if (!pWindow->bInvalid) {
        pWindow->invalid = rect;
        pWindow->bInvalid = true;
        pWindow->bErase = bErase;
        return;
    }
    RECT& all = pWindow->invalid;
    all = {std::min(all.left, rect.left), std::min(all.top, rect.top), std::max(all.right, rect.right),
           std::max(all.bottom, rect.bottom)};
    pWindow->bErase = pWindow->bErase || bErase;
}

void PaintIfInvalid(HWND hWnd)
{
    const Window* pWindow = FindWindowState(hWnd);
    if (pWindow && pWindow->bInvalid && IsShown(pWindow)) {
        Send(hWnd, WM_PAINT);
        if (Window* pAfter = FindWindowState(hWnd)) {
            pAfter->bInvalid = false; /* or a procedure that does not paint would be asked for ever */
        }
    }
}

bool IsShown(const Window* pWindow)
{
    for (const Window* pAt = pWindow; pAt; pAt = FindWindowState(pAt->hParent)) {
        if (!(pAt->dwStyle & WS_VISIBLE)) {
            return false;
        }
        if (!(pAt->dwStyle & WS_CHILD)) {
            return true;
        }
    }
    return false;
}

bool IsUsable(const Window* pWindow)
{
    for (const Window* pAt = pWindow; pAt; pAt = FindWindowState(pAt->hParent)) {
        if (pAt->dwStyle & WS_DISABLED) {
            return false;
        }
        if (!(pAt->dwStyle & WS_CHILD)) {
            break;
        }
    }
    return IsShown(pWindow);
}

HWND TopWindow(HWND hWnd)
{
    const Window* pWindow = FindWindowState(hWnd);
    while (pWindow && (pWindow->dwStyle & WS_CHILD)) {
        pWindow = FindWindowState(pWindow->hParent);
    }
    return pWindow ? pWindow->hWnd : nullptr;
}

HWND FocusWindow()
{
    return hFocusWindow;
}

HWND MoveFocus(HWND hWnd)
{
    const KeepRecords keep;
    const HWND hBefore = hFocusWindow;
    if (hWnd == hBefore) {
        return hBefore;
    }
    for (const Window* pAt = hWnd ? FindWindowState(hWnd) : nullptr; pAt;
         pAt = pAt->dwStyle & WS_CHILD ? FindWindowState(pAt->hParent) : nullptr) {
        if (pAt->dwStyle & WS_DISABLED) {
            return nullptr;
        }
        if (pAt->kind == KIND_DIALOG && pAt->hWnd != hWnd) {
            FindWindowState(pAt->hWnd)->hFocus = hWnd;
        }
    }
    hFocusWindow = hWnd; /* the one that loses it sees it gone already */
    if (hBefore) {
        Send(hBefore, WM_KILLFOCUS, reinterpret_cast<WPARAM>(hWnd));
    }
    if (hWnd && hFocusWindow == hWnd) {
        Send(hWnd, WM_SETFOCUS, reinterpret_cast<WPARAM>(hBefore));
    }
    return hBefore;
}

static bool LiesIn(HWND hWnd, const Window* pAbove)
{
    for (const Window* pAt = hWnd ? FindWindowState(hWnd) : nullptr; pAt;
         pAt = pAt->dwStyle & WS_CHILD ? FindWindowState(pAt->hParent) : nullptr) {
        if (pAt == pAbove) {
            return true;
        }
    }
    return false;
}

void EnableState(Window* pWindow, bool bEnable)
{
    const KeepRecords keep;
    const bool bEnabled = !(pWindow->dwStyle & WS_DISABLED);
    if (bEnabled == bEnable) {
        return;
    }
    pWindow->dwStyle ^= WS_DISABLED;
    if (!bEnable && LiesIn(hFocusWindow, pWindow)) {
        MoveFocus(nullptr);
    }
    if (!pWindow->bGone) {
        Invalidate(pWindow, nullptr, false);
        Send(pWindow->hWnd, WM_ENABLE, bEnable);
    }
}

void ShowState(Window* pWindow, bool bShow)
{
    const KeepRecords keep;
    if (bShow == ((pWindow->dwStyle & WS_VISIBLE) != 0)) {
        return;
    }
    const HWND hWnd = pWindow->hWnd;
    Send(hWnd, WM_SHOWWINDOW, bShow);
    if (pWindow->bGone) {
        return;
    }
    if (!bShow) {
        if (pWindow->dwStyle & WS_CHILD) { /* its place on the parent is to be painted */
            if (Window* pParent = FindWindowState(pWindow->hParent)) {
                Invalidate(pParent, &pWindow->rect, true);
            }
        }
        pWindow->dwStyle &= ~WS_VISIBLE;
        pWindow->bInvalid = false;
        if (LiesIn(hFocusWindow, pWindow)) {
            MoveFocus(pWindow->dwStyle & WS_CHILD ? pWindow->hParent : nullptr);
        }
        return;
    }
    pWindow->dwStyle |= WS_VISIBLE;
    Invalidate(pWindow, nullptr, true);
    for (HWND hChild : std::vector<HWND>(pWindow->children)) {
        if (Window* pChild = FindWindowState(hChild)) {
            Invalidate(pChild, nullptr, true);
        }
    }
}

bool GetInvalidRect(HWND hWnd, RECT* pRect)
{
    const Window* pWindow = FindWindowState(hWnd);
    if (!pWindow || !pWindow->bInvalid) {
        return false;
    }
    *pRect = pWindow->invalid;
    return true;
}

void PaintWindows(HWND hWnd)
{
    PaintIfInvalid(hWnd);
    if (const Window* pWindow = FindWindowState(hWnd)) {
        for (HWND hChild : std::vector<HWND>(pWindow->children)) {
            PaintWindows(hChild);
        }
    }
}
