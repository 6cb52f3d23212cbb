/* The dialog for the options of a colour mode: a section for each class of objects. Options of the user's own can be
   chosen; those of other modes are shown as the mode presets them. */
#ifndef TQUI_SHEET_COLOR_OPTIONS_DIALOG_H
#define TQUI_SHEET_COLOR_OPTIONS_DIALOG_H

#include "sheet/session.h"

/* Runs it for a row of the colour modes. What is chosen goes into the record at once; unless the user ends it with OK,
   all choices are as before. */
void EditColorOptions(HWND hOwner, UiSession* pSession, i32 nMode);

#endif
