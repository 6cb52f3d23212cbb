/* Numeric edit controls: measures and whole numbers in them, their spin buttons, and the keys that step them. */
#ifndef TQUI_SHEET_EDIT_KEYS_H
#define TQUI_SHEET_EDIT_KEYS_H

#include "base/measure.h"
#include "sheet/session.h"

/* The unit of all measures in edit controls is the record's. */
inline int IsMetric(const UiSession* pSession)
{
    return pSession->pRecord->rPrivate.bMetric != 0;
}

/* A measure in an edit control; see measure.h. */
i32 ReadMeasure(HWND hDialog, const UiSession* pSession, int nControl);
void ShowMeasure(HWND hDialog, const UiSession* pSession, int nControl, i32 lValue, RoundingMode mode);

/* Limits of a measure by its edit control; 0 for a control without, or without a model. */
int MeasureRangeOf(const UiSession* pSession, int nControl, NumberRange* pRange);

/* Shows a measure within the limits of its control, the limits themselves so that what is shown lies within. Without
   limits it is shown as it is. */
void ShowLimitedMeasure(HWND hDialog, const UiSession* pSession, int nControl, i32 lValue);

/* A whole number in an edit control, with its sign; a text that is none gives 0. *pbNumber, which may be null, tells. */
i32 ReadNumber(HWND hDialog, int nControl, int* pbNumber = nullptr);
void ShowNumber(HWND hDialog, int nControl, i32 lValue);

/* The number held within the limits of its edit control. ClampNumber also writes it back when it lay beyond, and
   selects it. */
i32 LimitNumber(int nControl, i32 lValue);
i32 ClampNumber(HWND hDialog, int nControl);

/* One movement (nCode: SPIN_UP, SPIN_DOWN; others only bring the value within its limits) of a spin button on a measure
   or on a whole number. */
void StepMeasureEdit(HWND hDialog, const UiSession* pSession, int nCode, int nControl, i32 lMin, i32 lMax);
void SpinEdit(HWND hDialog, int nCode, int nControl, i32 lMin, i32 lMax);

/* WM_VSCROLL of any page or dialog: finds the spin button's edit control and range and moves it. Result: the edit
   control, 0 when the scroll bar is none of ours. */
int HandleSpin(HWND hDialog, const UiSession* pSession, WPARAM wParam, LPARAM lParam);

/* Lets the arrow and paging keys step a numeric edit control, a whole number or a measure, by its id; a second time does
   nothing. The session must outlive the control. The control's GWLP_USERDATA is taken, and it gets its own procedure
   back at its end. */
void SubclassNumberEdit(HWND hDialog, UiSession* pSession, int nControl);

#endif
