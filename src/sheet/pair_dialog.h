/* The dialog of one pair of fonts. */
#ifndef TQUI_SHEET_PAIR_DIALOG_H
#define TQUI_SHEET_PAIR_DIALOG_H

#include "sheet/fonts_choice.h"
#include "sheet/session.h"

constexpr i32 NEW_PAIR = -1; /* in place of a row of the table */

/* Shows the dialog, modal over hOwner. A new pair takes any of the system's families; of one that is edited the family stays.
   nRow     row of the table that is edited; NEW_PAIR for a new pair
   wcPair   IO  text of the row; for a new pair what comes in is not looked at
   Result: 1 when the user confirmed; else wcPair is as before. */
int EditPair(HWND hOwner, UiSession* pSession, i32 nRow, WCHAR (&wcPair)[PAIR_CHARS]);

#endif
