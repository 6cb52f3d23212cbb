/* Shared by the stand-ins of the windows: what a window is here, and the steps that several of them take.
   A window is a record in a map and never a picture; its handle is a number that is not given twice. A record
   that is destroyed while a message is under way stays until the outermost message is through, marked bGone,
   so that a control may look at itself after it has told its parent something. */
#ifndef TQUI_HOSTED_DIALOGS_WINDOW_STATE_H
#define TQUI_HOSTED_DIALOGS_WINDOW_STATE_H

#include <vector>

#include "hosted/dialog_template.h"
#include "hosted/standin.h"

enum WindowKind {
    KIND_FRAME,
    KIND_DIALOG,
    KIND_BUTTON,
    KIND_EDIT,
    KIND_STATIC,
    KIND_LIST,
    KIND_SCROLL,
    KIND_COMBO
};

struct ListRow {
    WideText wcText;
    LPARAM lData = 0;
};

struct Window {
    HWND hWnd = nullptr;
    WindowKind kind = KIND_FRAME;
    HWND hParent = nullptr; /* parent of a child, owner of a dialog of its own */
    std::vector<HWND> children;
    DWORD dwStyle = 0, dwExStyle = 0;
    LONG_PTR lId = 0, lUserData = 0;
    HINSTANCE hInstance = nullptr;
    WNDPROC pfnProc = nullptr;
    RECT rect{}; /* in the parent's client area; on the screen for a dialog of its own */
    WideText wcText;
    bool bGone = false;

    RECT invalid{}; /* client area; what is to be painted */
    bool bInvalid = false, bErase = false, bPainting = false;

    /* Dialogs. */
    DLGPROC pfnDialog = nullptr;
    LONG_PTR lMsgResult = 0, lDialogUser = 0, lDefaultId = 0;
    HWND hFocus = nullptr; /* the control that had the focus when it left the dialog */
    bool bEnded = false;
    INT_PTR nResult = 0;

    /* Buttons and pictures. */
    WPARAM uCheck = 0;
    HANDLE hPicture = nullptr;

    /* Edit controls: characters from 0, limit for typing. */
    size_t nSelStart = 0, nSelEnd = 0;
    size_t nLimit = 30000;
    bool bModified = false;

    /* Lists and combo boxes. */
    std::vector<ListRow> rows;
    int nSel = -1, nTop = 0, nExtent = 0;
    std::vector<int> tabStops;

    /* Scroll bars. */
    int nMin = 0, nMax = 0, nPos = 0, nTrack = 0;
    UINT nPage = 0;
    bool bTracking = false;
};

/* The pixels of 4 x 8 dialog units: "MS Shell Dlg" of 8 points on a display of 96 dots an inch. */
constexpr int BASE_UNIT_X = 6;
constexpr int BASE_UNIT_Y = 13;
constexpr int LIST_ROW_HEIGHT = 13;
constexpr int COMBO_HEIGHT = 21;
constexpr int FRAME_SIDE = 3;     /* of a dialog with a caption: left, right and below */
constexpr int FRAME_CAPTION = 26; /* above */

/* ---- windows.cpp ---- */
/* While one of these lives, no record of a destroyed window is freed. Whoever looks at a record behind a
   message that it has sent holds one. */
struct KeepRecords {
    KeepRecords();
    ~KeepRecords();
    KeepRecords(const KeepRecords&) = delete;
    KeepRecords& operator=(const KeepRecords&) = delete;
};
Window* FindWindowState(HWND hWnd); /* null with ERROR_INVALID_WINDOW_HANDLE when there is none */
Window* MakeWindow(WindowKind kind, Window* pParent, const RECT& rect, DWORD dwStyle, DWORD dwExStyle,
                   LONG_PTR lId, WNDPROC pfnProc);
LRESULT Send(HWND hWnd, UINT uMessage, WPARAM wParam = 0, LPARAM lParam = 0);
void DestroyTree(HWND hWnd); /* WM_DESTROY from the window down, WM_NCDESTROY from below up */
/* What every window does with a message that nobody has treated: text, help, painting. */
LRESULT DefaultWindowProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam);
void NotifyParent(HWND hControl, WORD wCode); /* WM_COMMAND */
POINT ClientOrigin(const Window* pWindow);    /* on the screen */
RECT ScreenRect(const Window* pWindow);
RECT ClientRect(const Window* pWindow); /* with left and top 0 */
void Invalidate(Window* pWindow, const RECT* pRect, bool bErase);
bool IsShown(const Window* pWindow);  /* with all above it */
bool IsUsable(const Window* pWindow); /* shown and, with all above it, not disabled */
HWND TopWindow(HWND hWnd);            /* the window of its own in which it lies */
HWND FocusWindow();
HWND MoveFocus(HWND hWnd); /* result: where it was */
void EnableState(Window* pWindow, bool bEnable);
void ShowState(Window* pWindow, bool bShow);
/* Sends down WM_PAINT if there is something to be painted. */
void PaintIfInvalid(HWND hWnd);

/* ---- controls.cpp, lists.cpp: the windows procedures of the classes ---- */
LRESULT CALLBACK ButtonProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK StaticProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK EditProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK ScrollBarProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK ListBoxProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK ComboBoxProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam);
/* A click as the user makes it, on a button: state and BN_CLICKED. */
void ClickButtonState(HWND hButton);
/* Kinds of push button are 0 and 1, of radio button 4 and 9. */
inline DWORD ButtonKind(const Window* pWindow)
{
    return pWindow->dwStyle & BS_TYPEMASK;
}
inline bool IsRadio(const Window* pWindow)
{
    return pWindow->kind == KIND_BUTTON &&
           (ButtonKind(pWindow) == BS_RADIOBUTTON || ButtonKind(pWindow) == BS_AUTORADIOBUTTON);
}

/* ---- dialogs.cpp ---- */
enum DialogMode {
    MODE_MODELESS,
    MODE_MODAL,
    MODE_PAGE /* of a sheet: a child without frame, whatever its template says; the sheet shows it */
};
/* Makes the dialog and its controls and sends WM_INITDIALOG. bytes: of a template. Result: null when the bytes
   are no template or a class is not known, or when the window is gone again. */
HWND MakeDialog(HINSTANCE hInstance, std::span<const u8> bytes, HWND hParent, DLGPROC pfnDialog,
                LPARAM lParam, DialogMode mode);
/* The control that a step from hFrom leads to; hFrom itself when there is no other. */
HWND NextTabStop(HWND hDialog, HWND hFrom, bool bBack);
/* The others of the control's group that can be reached, from the one behind it round to the one before it. A
   group goes from a control with WS_GROUP to the one before the next. */
std::vector<HWND> GroupBehind(HWND hControl);
void FocusFirst(HWND hDialog);
LRESULT CALLBACK DialogWindowProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam);

void ResetDialogs();

/* ---- objects.cpp, input.cpp, common_dialogs.cpp ---- */
void ResetObjects();
void ResetInput();
void ResetCommonDialogs();

#endif
