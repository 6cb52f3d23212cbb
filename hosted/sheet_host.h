/* The host of property sheets, for tests: asks a driver's entry for its pages, shows them, and does what the
   user does with the sheet. Notifications reach the pages in the order in which the system's host sends them;
   a page's window is made when it is shown first, and a page that never was gets none. */
#ifndef TQUI_HOSTED_SHEET_HOST_H
#define TQUI_HOSTED_SHEET_HOST_H

#include "hosted/user_input.h"
#include "platform/sheet.h"

using SheetEntry = LONG(WINAPI*)(PROPSHEETUI_INFO* pInfo, LPARAM lParam);

struct SheetStart {
    SheetEntry pfnEntry;
    LPARAM lParamInit; /* as the host hands it on, in the information and as second argument */
    int nRefusedPage;  /* the n-th page added is refused; 0: none is */
};

struct Sheet;

/* Asks the entry for its pages (PROPSHEETUI_REASON_INIT) and, when it gives a positive result and a Result
   that is not 0, and has added a page, shows the first. Never null; EndSheet frees it. */
Sheet* OpenSheet(const SheetStart& start);
/* The entry with any reason; INIT and DESTROY are sent by OpenSheet and EndSheet. */
LONG AskSheetEntry(Sheet* pSheet, WORD wReason);
/* Takes the windows down, when there still are any, and sends PROPSHEETUI_REASON_DESTROY. Result: CPSUI_OK when
   the entry has set that, else CPSUI_CANCEL. */
LONG_PTR EndSheet(Sheet* pSheet);

LONG SheetStartResult(const Sheet* pSheet);             /* what the entry gave for INIT */
const PROPSHEETUI_INFO& SheetInfo(const Sheet* pSheet); /* as it stands after the last call of the entry */
bool IsSheetOpen(const Sheet* pSheet);                  /* its windows are there */
HWND SheetWindow(const Sheet* pSheet);                  /* null when it has none */

struct SheetResult {
    HANDLE hPage;
    LONG_PTR lResult;
};
const std::vector<SheetResult>& SheetResults(const Sheet* pSheet); /* CPSFUNC_SET_RESULT, in order */

size_t SheetPageCount(const Sheet* pSheet); /* pages that were not refused */
int SheetAddCalls(const Sheet* pSheet);     /* CPSFUNC_ADD_PROPSHEETPAGEW, refused ones as well */
HANDLE SheetPageHandle(const Sheet* pSheet, size_t nPage);
HWND SheetPageWindow(const Sheet* pSheet, size_t nPage); /* null while it has not been shown */
WideText SheetPageTitle(const Sheet* pSheet, size_t nPage);
int ActiveSheetPage(const Sheet* pSheet); /* -1: none */

/* ---- the user ---- */
bool ShowSheetPage(Sheet* pSheet, size_t nPage); /* false: the active page did not let go, or there is none */
bool CanApplySheet(const Sheet* pSheet);         /* the Apply button, which PSM_CHANGED enables */
/* Result of these three: true when it was done; false when a page refused (PSNRET_INVALID shows that page). Apply
   does nothing while its button is disabled. A sheet that was left by OK or Cancel has no windows. */
bool PressSheetApply(Sheet* pSheet);
bool PressSheetOk(Sheet* pSheet);
bool PressSheetCancel(Sheet* pSheet);

#endif
