/* The windows of the hosted machine as the tests see them: what the user does with mouse and keyboard, what
   is run while a modal dialog is up, what was shown, played or sent to everybody. There is no message loop
   and no timer: each step happens, with all that follows from it, before the function returns.

   A step on a control that a user could not reach (hidden, disabled, or its window is) does nothing and
   answers false. */
#ifndef TQUI_HOSTED_USER_INPUT_H
#define TQUI_HOSTED_USER_INPUT_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "hosted/machine.h"
#include "platform/common_dialogs.h"
#include "platform/window.h"

/* ---- what the system offers besides, for tests alone ---- */

/* Makes a dialog that is not modal, from a template in memory (extended form). pTemplate must hold a whole
   template; only its bytes are read. Result: null when it is none. DestroyWindow ends it. */
HWND WINAPI CreateDialogIndirectParamW(HINSTANCE hInstance, const void* pTemplate, HWND hParent,
                                       DLGPROC pfnDialog, LPARAM lParam);
INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE hInstance, const void* pTemplate, HWND hParent,
                                       DLGPROC pfnDialog, LPARAM lParam);
BOOL WINAPI DestroyWindow(HWND hWnd);
BOOL WINAPI IsWindow(HWND hWnd);
BOOL WINAPI MapDialogRect(HWND hDialog, RECT* pRect);
int WINAPI GetWindowTextW(HWND hWnd, LPWSTR wcText, int cchText);
WideText
HostedClassName(HWND hWnd); /* "Button", "Edit", "Static", "ListBox", "ScrollBar", "ComboBox"; else empty */

/* ---- modal dialogs and message boxes ---- */

/* A step that the user takes in a modal dialog; hDialog is the one that is up. Steps are taken in the order in
   which they were queued, by whichever modal dialog is up then: one that opens another dialog leaves the next
   step to that. A dialog that is up when no step is left is told IDCANCEL and, if it stays, closed by force. */
void QueueModalStep(std::function<void(HWND hDialog)> step);
size_t ModalStepsLeft();
int ForcedCloses();  /* dialogs that IDCANCEL did not end, since the machine's start */
int DialogsOpened(); /* modal ones, since the machine's start */

struct ShownMessage {
    WideText wcText, wcCaption;
    UINT uType;
};
const std::vector<ShownMessage>& ShownMessages();
void AnswerMessages(
    int nAnswer); /* what MessageBoxW gives from now on; 0: OK, or Yes where that is offered */

struct BroadcastMessage {
    UINT uMessage;
    WPARAM wParam;
    WideText wcText; /* of lParam, for the messages that carry one */
};
const std::vector<BroadcastMessage>& Broadcasts();
HWND ForegroundWindow(); /* what SetForegroundWindow brought there last */

/* ---- the system's dialogs for a file and for a colour: each is answered as soon as it is asked ---- */
struct AskedFile {
    HWND hOwner;
    WideText wcFilter; /* with the NULs between its parts, without those behind the last */
    WideText wcFile, wcFolder, wcExtension;
    DWORD nRoom, dwFlags; /* characters of room for the path */
};
const std::vector<AskedFile>& AskedFiles();
void AnswerFileDialog(std::u16string_view tcPath); /* from now on; empty: Cancel, as on a new machine */
struct AskedColor {
    HWND hOwner;
    COLORREF color; /* that the dialog starts with */
    std::vector<COLORREF> custom;
    DWORD dwFlags;
};
const std::vector<AskedColor>& AskedColors();
void AnswerColorDialog(COLORREF color); /* from now on; CLR_INVALID: Cancel, as on a new machine */

/* ---- mouse and keyboard ---- */
bool ClickControl(HWND hDialog, int nId); /* buttons act; statics tell when they notify */
bool PickRow(HWND hDialog, int nId,
             int nRow); /* of a list or combo box; what is picked already tells nothing */
bool DoubleClickRow(HWND hDialog, int nId, int nRow);
/* One movement of a scroll bar (SB_*), closed by SB_ENDSCROLL. nPos: for SB_THUMBTRACK, which is followed by
   SB_THUMBPOSITION, and SB_THUMBPOSITION. */
bool SpinControl(HWND hDialog, int nId, int nCode, int nPos = 0);
/* Types at the end of the edit control's text, after bReplace in the place of all of it. */
bool TypeText(HWND hDialog, int nId, std::u16string_view wcText, bool bReplace = true);
/* Gives an edit control the other direction of reading, as its user does with the keys Ctrl and Shift. */
bool TurnReading(HWND hDialog, int nId, bool bRightToLeft);
/* A key to the window with the focus, with what dialogs make of it: tab, return, escape, arrows in a group of
   radio buttons, F1. */
void SendKey(WPARAM uKey, bool bShift = false);
/* Mouse messages to what lies under a point of hWnd's client area. Static controls that do not notify, group
   boxes and disabled controls let them through to the window below. */
void MoveMouse(HWND hWnd, int x, int y);
void PressMouse(HWND hWnd, int x, int y);
void ReleaseMouse(HWND hWnd, int x, int y);
/* The right button, once or twice; each release asks for the context menu. */
void RightClick(HWND hWnd, int x, int y, bool bTwice = false);
void CloseWindowByUser(HWND hDialog); /* the cross in its caption */

/* ---- what is to be painted ---- */
bool GetInvalidRect(HWND hWnd, RECT* pRect); /* client area; false: nothing */
void PaintWindows(HWND hWnd);                /* WM_PAINT to it and all in it that have something to paint */

/* ---- pictures ---- */
struct PictureSize {
    int nWidth, nHeight;
    UINT uFlags; /* as LoadImageW was asked */
};
bool GetPicture(HBITMAP hBitmap, PictureSize* pSize,
                Bytes* pDib); /* pDib may be null: header, colours, rows */

#endif
