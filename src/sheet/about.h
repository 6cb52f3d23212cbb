/* The About box, and what the About page shows as well. */
#ifndef TQUI_SHEET_ABOUT_H
#define TQUI_SHEET_ABOUT_H

#include "sheet/session.h"

/* Fills the lines from IDC_ABOUT_LINE1 on: up to three texts of the model, then a text of the model, the version of
   the rendering half and another text, which are there only when that half has a version; places the window below
   its parent's upper edge. Without a model only the version is shown. */
void FillAbout(HWND hDialog, UiSession* pSession);

/* The About box, modal over hOwner. */
void ShowAbout(UiSession* pSession, HWND hOwner);

#endif
