/* The Layout page: how the pages of a document lie on the sheets. */
#ifndef TQUI_SHEET_LAYOUT_PAGE_H
#define TQUI_SHEET_LAYOUT_PAGE_H

#include "sheet/page_windows.h"

extern const PageRoutines layoutPage;

/* What the page does with its commands. */
void LayoutCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM lParam);

#endif
