/* The routines of a page, and what is kept of the pages that have a window. */
#ifndef TQUI_SHEET_PAGE_WINDOWS_H
#define TQUI_SHEET_PAGE_WINDOWS_H

#include "preview/preview_choice.h"
#include "sheet/session.h"

/* Each routine may be null. What a page does with its commands stands in the page table. */
struct PageRoutines {
    PageSlot slot;
    int nHelpKey;
    PageRoutine pfnInit = nullptr; /* fills the controls from the record; also reloads them */
    /* 1 when the controls differ from the record */
    int (*pfnDiffers)(HWND hPage, UiSession* pSession) = nullptr;
    /* writes the record from the controls; 0: refused, the sheet stays */
    int (*pfnApply)(HWND hPage, UiSession* pSession) = nullptr;
    PageRoutine pfnApplyAlways = nullptr; /* at each apply, first, with or without edits */
    PageRoutine pfnApplied = nullptr;     /* behind the commit of an apply with edits, refused or not */
    PageRoutine pfnPaint = nullptr;       /* WM_PAINT, from BeginPaint to EndPaint */
    PageCommand pfnScroll = nullptr;      /* WM_HSCROLL; spin buttons need no routine */
    MouseRoutine pfnMouse = nullptr;      /* besides the hot areas */
    /* puts what the controls show over what the record says, as far as they say something */
    void (*pfnPreview)(HWND hPage, const UiSession* pSession, PreviewChoice* pChoice) = nullptr;
};

/* Fills the controls of a page; meanwhile neither its commands nor its check run. */
void FillPage(const PageRoutines& routines, HWND hPage, UiSession* pSession);

/* Fills a page that has a window once more, as after a preset; the focus stays where it is. */
void ReloadPage(UiSession* pSession, int nSlot);

/* Shows the logo, which all pages share. */
void ShowLogo(HWND hPage, UiSession* pSession);

/* Last step of a page's or dialog's window. nSlot -1: nothing. */
void PageDestroyed(HWND hDialog, int nSlot);

#endif
