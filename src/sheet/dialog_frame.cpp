/* What every modal dialog does with its messages. */
#include "sheet/dialog_frame.h"

#include <utility>

#include "description/control_ids.h"
#include "sheet/dialog_services.h"
#include "sheet/edit_keys.h"
#include "sheet/help.h"
#include "sheet/page_windows.h"
#include "sheet/web_link.h"

namespace {

INT_PTR InitDialog(const DialogRoutines& routines, HWND hDialog, UiSession* pSession)
{
    SetWindowLongPtrW(hDialog, DWLP_USER, reinterpret_cast<LONG_PTR>(pSession));
    LabelControls(hDialog, pSession);
    if (routines.pfnInit) {
        u32 bFilling = std::exchange(pSession->bFilling, 1u);
        routines.pfnInit(hDialog, pSession);
        pSession->bFilling = bFilling;
    }
    return 1;
}

/* Escape and the cross are IDCANCEL, whose number is no control's. */
INT_PTR DialogCommanded(const DialogRoutines& routines, HWND hDialog, UiSession* pSession, WPARAM wParam,
                        LPARAM lParam)
{
    int nControl = LOWORD(wParam);
    if (nControl == IDCANCEL || (nControl == IDC_CANCEL && HIWORD(wParam) == BN_CLICKED)) {
        EndDialog(hDialog, DIALOG_CANCEL);
    } else if (nControl == IDC_LOGO) {
        const XpiModel* pModel = pSession->pXpi.get();
        if (HIWORD(wParam) == STN_CLICKED && pModel && pModel->sWebLinkCmdId) {
            OpenWebPage(pSession);
        }
    } else if (routines.pfnCommand && !pSession->bFilling) {
        routines.pfnCommand(hDialog, pSession, wParam, lParam);
    }
    return 1;
}

void DialogSpun(const DialogRoutines& routines, HWND hDialog, UiSession* pSession, WPARAM wParam,
                LPARAM lParam)
{
    HWND hSpin = reinterpret_cast<HWND>(lParam);
    if (HandleSpin(hDialog, pSession, wParam, lParam) && routines.pfnSpun) {
        routines.pfnSpun(hDialog, pSession, GetDlgCtrlID(hSpin));
    }
}

} // namespace

INT_PTR HandleDialogMessage(const DialogRoutines& routines, HWND hDialog, UINT uMessage, WPARAM wParam,
                            LPARAM lParam)
{
    if (uMessage == WM_INITDIALOG) {
        return InitDialog(routines, hDialog, reinterpret_cast<UiSession*>(lParam));
    }
    UiSession* pSession = SessionOf(hDialog);
    if (!pSession) {
        return 0;
    }
    switch (uMessage) {
    case WM_COMMAND: return DialogCommanded(routines, hDialog, pSession, wParam, lParam);
    case WM_DESTROY:
        PageDestroyed(hDialog, routines.nSlot);
        SetWindowLongPtrW(hDialog, DWLP_USER, 0);
        return 0;
    case WM_HELP:
    case WM_CONTEXTMENU: return ShowContextHelp(hDialog, pSession, uMessage, wParam, lParam);
    case WM_VSCROLL: DialogSpun(routines, hDialog, pSession, wParam, lParam); return 0;
    case WM_HSCROLL:
        if (routines.pfnScroll) {
            routines.pfnScroll(hDialog, pSession, wParam, lParam);
        }
        return 0;
    case WM_PAINT:
        if (!routines.pfnPaint) {
            return 0;
        }
        routines.pfnPaint(hDialog, pSession);
        return 1;
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_RBUTTONDBLCLK:
        if (routines.pfnMouse) {
            routines.pfnMouse(hDialog, pSession, uMessage, lParam);
        }
        return 0;
    default: return 0;
    }
}

INT_PTR RunDialogProc(UiSession* pSession, HWND hOwner, int nTemplate, i16 sArgument, DLGPROC pfnDialog)
{
    HINSTANCE hLibrary = static_cast<HINSTANCE>(pSession->hLanguageDll.get());
    if (!hLibrary) {
        return 0; /* the program that we are loaded into may have a dialog of that number */
    }
    i16 sBefore = std::exchange(pSession->sDialogArg, sArgument);
    u32 bFilling =
        std::exchange(pSession->bFilling, 0u); /* that of the window below does not concern this one */
    INT_PTR nEnd = DialogBoxParamW(hLibrary, MAKEINTRESOURCEW(nTemplate), hOwner, pfnDialog,
                                   reinterpret_cast<LPARAM>(pSession));
    pSession->bFilling = bFilling;
    pSession->sDialogArg = sBefore;
    return nEnd;
}

void SetTitle(HWND hDialog, const UiSession* pSession, int nString)
{
    WCHAR wcTitle[TEXT_CHARS];
    LoadUiText(pSession, nString, wcTitle, TEXT_CHARS);
    SetWindowTextW(hDialog, wcTitle);
}
