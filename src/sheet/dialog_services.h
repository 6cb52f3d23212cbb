/* What pages and dialogs share below the level of a page. A control that is not there answers as the system's
   calls do: 0 or no row. */
#ifndef TQUI_SHEET_DIALOG_SERVICES_H
#define TQUI_SHEET_DIALOG_SERVICES_H

#include "sheet/selection.h"
#include "sheet/session.h"

/* Row of a table that a combo box is filled from; usString 0 ends it. */
struct ComboTableRow {
    u32 ulMask; /* ALL_ROWS: always */
    u16 usString;
    u16 usReserved;
    u32 ulValue;
};
constexpr u32 ALL_ROWS = 0xFFFFFFFF;

/* Item data of the selected row; -1 (no row) without a selection, 0 when the control is not there. *pbChosen,
   which may be null, is 1 only for a selected row: without one a record's field is left alone. */
i32 GetComboValue(HWND hDialog, int nControl, int* pbChosen);
i32 GetListValue(HWND hDialog, int nControl, int* pbChosen);

Selection ReadCombo(HWND hDialog, int nControl);

/* Selects the first row with that item data; without one row 0, and gives -1. */
i32 SelectComboValue(HWND hDialog, int nControl, i32 lValue);
i32 SelectListValue(HWND hDialog, int nControl, i32 lValue);

/* Empties the combo box and adds the rows whose mask shares a bit with the filter; texts from the library. */
void FillComboFromTable(HWND hDialog, const UiSession* pSession, int nControl, const ComboTableRow* pTable,
                        u32 ulFilter);

/* Text of a string of the language library; "" when there is none. cch characters of room. */
void LoadUiText(const UiSession* pSession, int nString, WCHAR* wcOut, int cch);

/* Gives a control the string of a number as its text; a missing string leaves what the template says. */
void SetLabel(HWND hDialog, const UiSession* pSession, int nControl, int nString);

/* The pass over a dialog's controls at its start: each that has a string of its own number gets it. */
void LabelControls(HWND hDialog, const UiSession* pSession);

/* Lists of controls, which a 0 ends. Controls that a dialog does not have are passed over. To offer controls is to show
   and to enable them; those that are not offered are hidden and disabled. */
void ShowControls(HWND hDialog, const int* pnControls, int bShow);
void EnableControls(HWND hDialog, const int* pnControls, int bEnable);
void OfferControls(HWND hDialog, const int* pnControls, int bOffer);
void EnableControl(HWND hDialog, int nControl, int bEnable);

/* A check box or radio button. */
int IsChecked(HWND hDialog, int nControl);
void SetChecked(HWND hDialog, int nControl, int bCheck);

/* Checks one radio button of a group, which a 0 ends, and clears the others. */
void CheckRadio(HWND hDialog, const int* pnRadios, int nRadio);

/* Makes a push button the one that Enter presses; nOther is the one that did until now, or may have. */
void MakeDefaultButton(HWND hDialog, int nButton, int nOther);

/* 1 when a point of the dialog's client area, as mouse messages carry it, lies over a control; its right and bottom edge
   belong to it. */
int IsOverControl(HWND hDialog, int nControl, LPARAM lPoint);

/* Has the hand cursor over what can be clicked, and the one before when the mouse has left it. */
void ShowHandCursor(UiSession* pSession, int bOver);

/* The control's rectangle in client co-ordinates of its dialog; 0 when there is no such control. */
int ControlRect(HWND hDialog, int nControl, RECT* pRect);

/* Has the control's rectangle painted anew by the dialog, at once. */
void RepaintControl(HWND hDialog, int nControl);

/* Places a dialog relative to its parent, in pixels; CENTRE_X and CENTRE_Y centre it. DIALOG_TOP is where notices and the
   About box begin below the parent's upper edge. */
constexpr int CENTRE_X = -1, CENTRE_Y = 65535, DIALOG_TOP = 25;
void CentreDialog(HWND hDialog, int nX, int nY);

#endif
