/* Numeric edit controls: measures and whole numbers in them, their spin buttons, and the keys that step them. */
#ifndef TQUI_SHEET_EDIT_KEYS_H
#define TQUI_SHEET_EDIT_KEYS_H

#include "base/measure.h"
#include "sheet/session.h"

/* Measures in edit controls; see measure.h. */
i32 ReadMeasure(HWND hDialog, const UiSession* pSession, int nControl, int bMetric);
void ShowMeasure(HWND hDialog, const UiSession* pSession, int nControl, i32 lValue, int bMetric,
                 RoundingMode mode);

/* A whole number in an edit control, with its sign. */
i32 ReadNumber(HWND hDialog, int nControl);

/* One movement (nCode: SPIN_UP, SPIN_DOWN; others only bring the value within its limits) of a spin button on a measure
   or on a whole number. */
void StepMeasureEdit(HWND hDialog, const UiSession* pSession, int nCode, int nControl, i32 lMin, i32 lMax,
                     int bMetric);
void SpinEdit(HWND hDialog, int nCode, int nControl, i32 lMin, i32 lMax);

/* WM_VSCROLL of any page or dialog: finds the spin button's edit control and range and moves it. Result: the edit
   control, 0 when the scroll bar is none of ours. */
int HandleSpin(HWND hDialog, const UiSession* pSession, WPARAM wParam, LPARAM lParam, int bMetric);

/* Lets the arrow and paging keys step a numeric edit control, by its id; a second time does nothing. The session must
   outlive the control, and so must pbMetric, the unit of measures, of which one dialog is open at a time. The control's
   GWLP_USERDATA is taken, and it gets its own procedure back at its end. */
void SubclassNumberEdit(HWND hDialog, UiSession* pSession, int nControl);
void SubclassMeasureEdit(HWND hDialog, UiSession* pSession, int nControl, const u32* pbMetric);

#endif
