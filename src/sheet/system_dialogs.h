/* The system's own dialogs for a file and for a colour. Their library is loaded from the system's folder when the first
   of them is shown, and stays for the sheet. */
#ifndef TQUI_SHEET_SYSTEM_DIALOGS_H
#define TQUI_SHEET_SYSTEM_DIALOGS_H

#include "platform/drawing.h"
#include "sheet/session.h"

/* Has the user choose a colour.
   pColor   IO  where the dialog starts; the colour that was chosen
   Result: 1; 0 with *pColor as it was when the user cancels or the dialog cannot be shown. */
int PickColor(UiSession* pSession, HWND hOwner, COLORREF* pColor);

/* wcName is shown for wcPatterns, "*.BMP;*.TIF", above the row for all files; each has up to TEXT_CHARS - 1 characters. */
struct FileQuestion {
    const WCHAR* wcName;
    const WCHAR* wcPatterns;
    const WCHAR* tcFolder;    /* where the dialog starts */
    const WCHAR* wcExtension; /* of a name that is typed without one */
    int cch;                  /* room for the path with its NUL, at most PATH_CHARS */
};

/* Asks the user for a file. The current folder stays as it is.
   tcPath   O  full path, PATH_CHARS of room; empty without a file
   Result: 1 with a path; 0 when the user cancels or the dialog cannot be shown. */
int AskFile(HWND hOwner, UiSession* pSession, const FileQuestion& question, WCHAR* tcPath);

#endif
