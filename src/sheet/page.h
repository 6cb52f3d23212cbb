/* The pages of a sheet. A page is a constant row of routines; one dialog procedure serves them all and does what
   every page does alike. */
#ifndef TQUI_SHEET_PAGE_H
#define TQUI_SHEET_PAGE_H

#include "sheet/session.h"

struct PageRoutines {
    PageSlot slot;
    void (*pfnInit)(HWND hPage,
                    UiSession* pSession); /* fills the controls from the record; also reloads them */
    PageCommand pfnCommand;               /* WM_COMMAND that is not common to all pages */
    int (*pfnDiffers)(HWND hPage, UiSession* pSession); /* 1 when the controls differ from the record */
    int (*pfnApply)(HWND hPage,
                    UiSession* pSession); /* writes the record from the controls; 0: refused, stay */
    void (*pfnPaint)(HWND hPage, UiSession* pSession);
    int nHelpKey;
};
/* Each routine but pfnInit may be null. */

/* Row of the page table. A template of 0: not in that kind of sheet. */
struct PageTableRow {
    i16 sSlot;
    u16 sTitle; /* string of the tab; 0 ends the table */
    u16 sDocTemplate, sDevTemplate;
    DLGPROC pfnDialogProc;
    PageCommand pfnCommand;
};
extern const PageTableRow aPageTable[];

/* The dialog procedure of a page with these routines. */
INT_PTR HandlePageMessage(const PageRoutines& routines, HWND hPage, UINT uMessage, WPARAM wParam,
                          LPARAM lParam);

/* Adds the pages to the host. 1; 0 when the host refused one, those added before stay. */
int BuildSheetPages(UiSession* pSession, PROPSHEETUI_INFO* pInfo);

/* First step of every page's start: the session goes into the window, labels, logo. */
void InitPageCommon(HWND hPage, const PROPSHEETPAGEW* pPage, int nSlot);

/* Last step of a page's or dialog's window. nSlot -1: nothing. */
void PageDestroyed(HWND hDialog, int nSlot);

/* WM_COMMAND of every page: web page, About, presets, and what is the page's own. */
void DispatchPageCommand(HWND hPage, WPARAM wParam, LPARAM lParam, int nSlot);

/* What a check found is told to the host: any difference marks the page, none takes the mark away unless a preset
   or a refused commit keeps the sheet changed. */
void TrackChange(HWND hPage, UiSession* pSession, int nSlot, int bDiffers);

/* Last step of a page's apply: the last page with edits tests the conflicts and gives the settings to the host. */
void CommitPage(UiSession* pSession, int nSlot);

#endif
