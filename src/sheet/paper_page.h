/* The Paper page: the paper's way through the printer, copies and the zoom. */
#ifndef TQUI_SHEET_PAPER_PAGE_H
#define TQUI_SHEET_PAPER_PAGE_H

#include "sheet/page_windows.h"

extern const PageRoutines paperPage;

/* What the page does with its commands. */
void PaperCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM lParam);

#endif
