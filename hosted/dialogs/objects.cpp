/* What windows show and tell beyond themselves: cursors, icons, message boxes,
   messages to everybody, the foreground. */
#include "hosted/dialogs/window_state.h"

#include "hosted/user_input.h"

namespace {

struct Shown {
    std::vector<ShownMessage> messages;
    std::vector<BroadcastMessage> broadcasts;
    int nAnswer = 0;
    HWND hForeground = nullptr;
    HCURSOR hCursor = nullptr;
};

Shown& shown()
{
    static Shown instance;
    return instance;
}

/* The system's own cursors and icons are shared: one handle for each, never given back. */
HANDLE SystemPicture(LPCWSTR wcName)
{
    return reinterpret_cast<HANDLE>(0x1000000 + reinterpret_cast<std::uintptr_t>(wcName));
}

constexpr std::uintptr_t FIRST_SYSTEM_ID = 32512, LAST_SYSTEM_ICON = 32518, LAST_SYSTEM_CURSOR = 32651;

bool IsSystemName(HINSTANCE hInstance, LPCWSTR wcName, std::uintptr_t nLast)
{
    const auto nId = reinterpret_cast<std::uintptr_t>(wcName);
    if (!hInstance && nId >= FIRST_SYSTEM_ID && nId <= nLast) {
        return true;
    }
    Refuse(ERROR_RESOURCE_NAME_NOT_FOUND);
    return false;
}

} // namespace

HCURSOR WINAPI LoadCursorW(HINSTANCE hInstance, LPCWSTR wcName)
{
    FAILS(LoadCursorW);
    return IsSystemName(hInstance, wcName, LAST_SYSTEM_CURSOR) ? static_cast<HCURSOR>(SystemPicture(wcName))
                                                               : nullptr;
}

HICON WINAPI LoadIconW(HINSTANCE hInstance, LPCWSTR wcName)
{
    FAILS(LoadIconW);
    return IsSystemName(hInstance, wcName, LAST_SYSTEM_ICON) ? static_cast<HICON>(SystemPicture(wcName))
                                                             : nullptr;
}

HCURSOR WINAPI GetCursor(void)
{
    FAILS(GetCursor);
    return shown().hCursor;
}

HCURSOR WINAPI SetCursor(HCURSOR hCursor)
{
    FAILS(SetCursor);
    const HCURSOR hOld = shown().hCursor;
    shown().hCursor = hCursor;
    return hOld;
}

BOOL WINAPI SetForegroundWindow(HWND hWnd)
{
    FAILS(SetForegroundWindow);
    if (!FindWindowState(hWnd)) {
        return 0;
    }
    shown().hForeground = hWnd;
    return 1;
}

HWND ForegroundWindow()
{
    return shown().hForeground;
}

int WINAPI MessageBoxW(HWND hOwner, LPCWSTR wcText, LPCWSTR wcCaption, UINT uType)
{
    FAILS(MessageBoxW);
    if (hOwner && !FindWindowState(hOwner)) {
        return 0;
    }
    shown().messages.push_back({wcText ? wcText : u"", wcCaption ? wcCaption : u"", uType});
    const UINT uButtons = uType & MB_TYPEMASK;
    const int nFirst = uButtons == MB_YESNO || uButtons == MB_YESNOCANCEL ? IDYES : IDOK;
    return shown().nAnswer ? shown().nAnswer : nFirst;
}

const std::vector<ShownMessage>& ShownMessages()
{
    return shown().messages;
}

void AnswerMessages(int nAnswer)
{
    shown().nAnswer = nAnswer;
}

LRESULT WINAPI SendMessageTimeoutW(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam, UINT, UINT,
                                   PDWORD_PTR pResult)
{
    FAILS(SendMessageTimeoutW);
    DWORD_PTR nResult = 0;
    if (hWnd == HWND_BROADCAST) {
        const auto wcText = reinterpret_cast<LPCWSTR>(lParam);
        const bool bText = uMessage == WM_DEVMODECHANGE && wcText;
        shown().broadcasts.push_back({uMessage, wParam, bText ? WideText(wcText) : WideText()});
    } else if (!FindWindowState(hWnd)) {
        return 0;
    } else {
        nResult = static_cast<DWORD_PTR>(Send(hWnd, uMessage, wParam, lParam));
    }
    if (pResult) {
        *pResult = nResult;
    }
    return 1;
}

const std::vector<BroadcastMessage>& Broadcasts()
{
    return shown().broadcasts;
}

void ResetObjects()
{
    shown() = Shown();
    shown().hCursor = static_cast<HCURSOR>(SystemPicture(IDC_ARROW));
    ResetDialogs();
    ResetInput();
    ResetCommonDialogs();
}
