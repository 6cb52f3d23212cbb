/* The Fonts page: whether the printer's own fonts are used, and which of them stand for fonts of the system. */
#ifndef TQUI_SHEET_FONTS_PAGE_H
#define TQUI_SHEET_FONTS_PAGE_H

#include "sheet/page_windows.h"

extern const PageRoutines fontsPage;

/* What the page does with its commands. */
void FontsCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM lParam);

#endif
