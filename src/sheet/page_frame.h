/* The pages of a sheet. A page is a constant row of routines; one dialog procedure serves them all and does what
   every page does alike. */
#ifndef TQUI_SHEET_PAGE_FRAME_H
#define TQUI_SHEET_PAGE_FRAME_H

#include "sheet/page_windows.h"

/* Row of the page table. A template of 0: not in that kind of sheet. */
struct PageTableRow {
    i16 sSlot;
    u16 sTitle; /* string of the tab; 0 ends the table */
    u16 sDocTemplate, sDevTemplate;
    DLGPROC pfnDialogProc;
    PageCommand pfnCommand;
};

/* The dialog procedure of a page with these routines. */
INT_PTR HandlePageMessage(const PageRoutines& routines, HWND hPage, UINT uMessage, WPARAM wParam,
                          LPARAM lParam);
template <const PageRoutines& routines>
INT_PTR CALLBACK PageProc(HWND hPage, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    return HandlePageMessage(routines, hPage, uMessage, wParam, lParam);
}

/* Adds the table's pages to the host, or the lone page when none of them belongs into this sheet; UserData holds the
   session then. 1, also as the host's Result; 0 when the host refused one, those added before stay. */
int BuildSheetPages(UiSession* pSession, PROPSHEETUI_INFO* pInfo, const PageTableRow* pTable,
                    const PageTableRow& lonePage);

/* First step of every page's start: the session goes into the window, labels, logo. */
void InitPageCommon(HWND hPage, const PROPSHEETPAGEW* pPage, int nSlot);

/* WM_COMMAND of every page: web page, About, presets, and what is the page's own. Result: 1 when it was that. Nothing
   runs while the driver sets controls itself. */
int DispatchPageCommand(HWND hPage, WPARAM wParam, LPARAM lParam, int nSlot);

/* What a check found is told to the host: any difference marks the page, none takes the mark away unless a preset
   or a refused commit keeps the sheet changed. */
void TrackChange(HWND hPage, UiSession* pSession, int nSlot, int bDiffers);

#endif
