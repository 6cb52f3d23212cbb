/* A user of dialogs on both builds: hosted the machine's own, on Windows one who sends what mouse and keyboard
   would. The names are those of hosted/windows.h. */
#ifndef TQUI_TESTS_DIALOG_USER_H
#define TQUI_TESTS_DIALOG_USER_H

#include <string>

#include "platform/sheet.h"
#include "support/dialog_builder.h"

using WindowClassName = std::string;

#ifdef _WIN32

inline HINSTANCE GetProgram()
{
    return GetModuleHandleW(nullptr);
}

inline LPCDLGTEMPLATEW FormData(const DialogBuilder& form)
{
    return static_cast<LPCDLGTEMPLATEW>(form.Data());
}

inline WindowClassName ClassOf(HWND hWnd)
{
    WCHAR wcName[32] = {};
    return hWnd && GetClassNameW(hWnd, wcName, 32) ? Ascii(wcName) : "";
}

/* Everything that is waiting. */
inline void RunMessages()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

/* A press that runs a loop of its own ends with the release that is waiting. */
inline void ClickAt(HWND hWnd, int nX, int nY)
{
    PostMessageW(hWnd, WM_LBUTTONUP, 0, MAKELPARAM(nX, nY));
    SendMessageW(hWnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(nX, nY));
    RunMessages();
}

/* A disabled window is not hit. */
inline void ClickControl(HWND hDialog, int nId)
{
    const HWND hItem = GetDlgItem(hDialog, nId);
    if (IsWindowEnabled(hItem)) {
        ClickAt(hItem, 3, 3);
    }
}

inline void SpinControl(HWND hDialog, int nId, int nCode)
{
    const HWND hItem = GetDlgItem(hDialog, nId);
    RECT rect;
    GetClientRect(hItem, &rect);
    ClickAt(hItem, nCode == SB_LINEUP ? 2 : rect.right - 2, nCode == SB_LINEUP ? 2 : rect.bottom - 2);
}

inline void SendKey(WPARAM uKey)
{
    MSG message = {};
    message.hwnd = GetFocus();
    message.message = WM_KEYDOWN;
    message.wParam = uKey;
    message.lParam = 1;
    HWND hDialog = message.hwnd;
    while (hDialog && (GetWindowLongW(hDialog, GWL_STYLE) & WS_CHILD)) {
        hDialog = GetParent(hDialog);
    }
    if (!IsDialogMessageW(hDialog, &message)) {
        DispatchMessageW(&message);
    }
    RunMessages();
}

inline void FinishPainting(HWND hDialog)
{
    RunMessages();
    ValidateRect(hDialog, nullptr);
}

#else

#include "hosted/user_input.h"

inline HINSTANCE GetProgram()
{
    return nullptr;
}

inline const void* FormData(const DialogBuilder& form)
{
    return form.Data();
}

inline WindowClassName ClassOf(HWND hWnd)
{
    return Ascii(HostedClassName(hWnd));
}

inline void FinishPainting(HWND hDialog)
{
    PaintWindows(hDialog);
}

#endif
#endif
