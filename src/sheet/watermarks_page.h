/* The page of the user's watermarks. */
#ifndef TQUI_SHEET_WATERMARKS_PAGE_H
#define TQUI_SHEET_WATERMARKS_PAGE_H

#include "sheet/page_windows.h"

extern const PageRoutines watermarksPage;

void WatermarksCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM lParam);

#endif
