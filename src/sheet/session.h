/* What all pages of one open sheet share. The edited record is a single buffer: pages read it when they start and
   write it when they are applied; until then the controls hold the user's edits, so that any page can be cancelled
   without clean-up. The session keeps a copy of the record as it stood at the last commit.

   All of this lives on the thread of the property sheet; nothing is locked. */
#ifndef TQUI_SHEET_SESSION_H
#define TQUI_SHEET_SESSION_H

#include "description/driver_files.h"
#include "description/language_dll.h"
#include "description/paper_row.h"
#include "entry/font_families.h"
#include "platform/sheet.h"
#include "platform/window.h"
#include "preview/preview_tools.h"
#include "settings/driver_devmode.h"
#include "watermark/watermark_entry.h"

/* Places of pages and of the dialogs that use the same bookkeeping. */
enum PageSlot : int {
    SLOT_LAYOUT = 0,
    SLOT_PAPER = 1,
    SLOT_CUSTOM_PAPERS = 2,  /* a dialog: no page, no window of its own here */
    SLOT_QUALITY_DIALOG = 4, /* the modal dialogs of the Quality page */
    SLOT_QUALITY = 6,
    SLOT_WATERMARKS = 7,
    SLOT_FONTS = 9,
    SLOT_ABOUT = 12,
    SLOT_COUNT = 13
};

/* Pictures of the duplex binding: long edge, short edge, none. */
constexpr int DUPLEX_PICTURES = 3;

struct UiSession;
struct PageRoutines; /* see page_windows.h */
using PageRoutine = void (*)(HWND hPage, UiSession* pSession);
using MouseRoutine = void (*)(HWND hPage, UiSession* pSession, UINT uMessage, LPARAM lPoint);
using PageCommand = void (*)(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM lParam);

struct UiSession {
    WCHAR wcPrinterName[PATH_CHARS]; /* as the host gave it */
    WCHAR wcUserFolder[PATH_CHARS];  /* see GetUserFolder */
    u32 bSheetBuilt;                 /* 1 from the moment the sheet is being built */
    u32 bDeviceSheet;                /* 1: the printer's own sheet, not a document's */
    u32 bReadOnly;                   /* the user may not write printer data */
    LanguageChoice rLanguage;        /* language ids, help file, decimal separator of at most 3 characters */
    OwnedModule hLanguageDll;        /* null: dialogs and texts are not to be had */
    OwnedModule hCommonDialogs;      /* comdlg32.dll, from the first of its dialogs to the end of the sheet */
    DriverDevmode* pRecord;          /* in edit; the caller's */
    OwnedBlock<DriverDevmode> pOwnRecord; /* a device sheet's working copy, which pRecord then is */
    DeviceInfo rDeviceInfo;
    XpiFile rXpiFile;
    OwnedModel pXpi;
    HANDLE hComPropSheet;
    PFNCOMPROPSHEET pfnComPropSheet;
    i16 sCustomPaperCount;
    u16 sWatermarkCount;
    i16 sDeletedWatermarkCount;
    u32 ulFontSubsBytes;
    i16 sDialogArg;    /* of the modal dialog that is being opened: a row or the id of a notice */
    i16 sNoticeText;   /* text of the description for NOTICE_CONFLICT; 0: the library's own */
    void* pDialogData; /* handed to a modal dialog; its opener's */
    OwnedBlock<PaperSizeRow> pCustomPapers; /* and the spare row */
    OwnedBlock<WatermarkEntry> pWatermarks, pDeletedWatermarks;
    FontFamilyList rFontFamilies;
    u32 bFontFamilies;                /* the list could be built */
    HPROPSHEETPAGE hPage[SLOT_COUNT]; /* from the host; 0: not in this sheet */
    HWND hPageWnd[SLOT_COUNT];        /* 0 while the page has no window */
    u32 bPageDirty[SLOT_COUNT];       /* edits that are not in the record */
    u32 bSettingsLoaded;              /* a preset went into the record since the last commit */
    u32 bStickyChange;                /* a factory preset or a refused commit: the sheet counts as changed */
    u32 bFilling;                     /* the driver sets controls itself: no command and no check runs */
    PageCommand pfnPageCommand[SLOT_COUNT];
    const PageRoutines* apRoutines[SLOT_COUNT]; /* of the pages that have been shown */
    WCHAR wcPageTitle[SLOT_COUNT][TEXT_CHARS];
    DriverDevmode rSnapshot;             /* the record at the start and at each commit */
    OwnedBlock<WCHAR> pFontSubsSnapshot; /* rows of the Fonts page as they are stored, each with its NUL */
    i16 sFontSubsSnapshotCount;          /* -1: not known, and so nothing is stored */
    OwnedBlock<u8> pFontSubs;            /* the pairs of the printer value, ulFontSubsBytes and two NULs */
    u16 sWatermarkSnapshotCount;
    u32 ulWatermarkNext; /* COLORREF that is under edit in the editor of text watermarks */
    HCURSOR hCursorHand, hCursorSaved;
    HICON hIconInfo;
    WCHAR wcScreenFile[PATH_CHARS], wcProfileFile[PATH_CHARS];
    WCHAR wcScreenFileSnapshot[PATH_CHARS], wcProfileFileSnapshot[PATH_CHARS];
    WCHAR wcRenderLib[PATH_CHARS];
    char cOverlayLib[PATH_CHARS]; /* in the system's ANSI code page */
    u32 bPaperHasTarget;          /* the current paper is scaled to another */
    u32 bPreviewMetric;           /* unit of the preview's size line */
    u16 usPreviewPaper;           /* paper code that the size line showed last; 0: none yet */
    PreviewTools rPreview;
    PreviewDevice rPreviewDevice;
    u32 ulColorModeMask;             /* kinds of all colour modes */
    OwnedBlock<PaperSizeRow> pForms; /* the spooler's user forms */
    u16 sFormCount;
    WNDPROC pfnEditProc;                      /* that the numeric edit controls had before */
    HANDLE hPrinter;                          /* the host's */
    HBITMAP hLogoBitmap;                      /* shown by all pages */
    HBITMAP ahDuplexPicture[DUPLEX_PICTURES]; /* of the Layout page, as far as they were shown */
    u32 bOnServer;                            /* the printer lives on another computer */
};

/* Builds the session of an open printer and reads what the pages show.
   call      the printer; its open description goes over to the session, so this is the last that reads it by the call
   pModel    loaded by the call; the session's from here on
   pRecord   IO  a record that both checks accepted, which stays the caller's and outlives the session; an overlay
             folder that it names and that cannot be had is replaced by the user's
   Result: the session, which DestroyUiSession ends; null when memory fails, and without a model or a language library,
   since no page could be shown then. Lists that cannot be read are empty; watermarks and saved papers always have
   their spare row. */
UiSession* CreateUiSession(PrinterCall& call, OwnedModel pModel, DriverDevmode* pRecord);

/* Ends a session, also one that is half built; null does nothing. Its pages' windows are gone before. */
void DestroyUiSession(UiSession* pSession);

/* Deletes the pictures of the duplex binding; no control shows one of them any more. */
void DeleteDuplexPictures(UiSession* pSession);

/* The session of a page's or dialog's window, which its start puts there; null before it was initialised and behind
   its end. */
inline UiSession* SessionOf(HWND hDialog)
{
    return reinterpret_cast<UiSession*>(GetWindowLongPtrW(hDialog, DWLP_USER));
}

#endif
