/* The dialog for the colour format of an image model, its colour profile and its halftone screen. */
#ifndef TQUI_SHEET_COLOR_FILES_DIALOG_H
#define TQUI_SHEET_COLOR_FILES_DIALOG_H

#include "sheet/session.h"

/* Runs it. OK writes the record and the session's names of the two files; a list without a selection leaves its field
   alone. Any other end changes nothing. */
void EditColorFiles(HWND hOwner, UiSession* pSession);

#endif
