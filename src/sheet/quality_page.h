/* The Quality page: colours and their correction; on image models also resolution, screening, black text and tone. */
#ifndef TQUI_SHEET_QUALITY_PAGE_H
#define TQUI_SHEET_QUALITY_PAGE_H

#include "sheet/page_windows.h"

extern const PageRoutines qualityPage;

/* What the page does with its commands. */
void QualityCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM lParam);

#endif
