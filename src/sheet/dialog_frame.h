/* Modal dialogs. A dialog is a constant row of routines; one dialog procedure serves them all and does what every dialog
   does alike: labels, the session in the window, help, spin buttons, the logo, the ways out. */
#ifndef TQUI_SHEET_DIALOG_FRAME_H
#define TQUI_SHEET_DIALOG_FRAME_H

#include "sheet/session.h"

/* How a dialog ends. The system answers 0 or -1 for one that it could not show. */
constexpr INT_PTR DIALOG_OK = 1, DIALOG_CANCEL = 2;

/* Each routine may be null. */
struct DialogRoutines {
    int nSlot;                     /* of its edits; -1: none */
    PageRoutine pfnInit = nullptr; /* labels stand already; no command runs meanwhile */
    PageCommand pfnCommand = nullptr;
    PageRoutine pfnPaint = nullptr; /* WM_PAINT, from BeginPaint to EndPaint */
    MouseRoutine pfnMouse = nullptr;
    PageCommand pfnScroll = nullptr; /* WM_HSCROLL */
    /* a spin button has moved its edit control */
    void (*pfnSpun)(HWND hDialog, UiSession* pSession, int nSpin) = nullptr;
};

INT_PTR HandleDialogMessage(const DialogRoutines& routines, HWND hDialog, UINT uMessage, WPARAM wParam,
                            LPARAM lParam);
template <const DialogRoutines& routines>
INT_PTR CALLBACK DialogProc(HWND hDialog, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    return HandleDialogMessage(routines, hDialog, uMessage, wParam, lParam);
}

/* Runs a dialog of the language library, modal over hOwner, which may be null. Its routines find sArgument in the
   session's sDialogArg, which is as before when this returns. IDC_CANCEL, the cross and Escape end it with DIALOG_CANCEL.
   Result: what it was ended with; another value when it could not be shown. */
INT_PTR RunDialogProc(UiSession* pSession, HWND hOwner, int nTemplate, i16 sArgument, DLGPROC pfnDialog);
template <const DialogRoutines& routines>
INT_PTR RunDialog(UiSession* pSession, HWND hOwner, int nTemplate, i16 sArgument)
{
    return RunDialogProc(pSession, hOwner, nTemplate, sArgument, DialogProc<routines>);
}

/* Gives a dialog the string of a number as its title. */
void SetTitle(HWND hDialog, const UiSession* pSession, int nString);

#endif
