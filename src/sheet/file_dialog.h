/* The system's dialog in which the user looks for a file. */
#ifndef TQUI_SHEET_FILE_DIALOG_H
#define TQUI_SHEET_FILE_DIALOG_H

#include "sheet/session.h"

/* wcName is shown for wcPatterns, "*.BMP;*.TIF", above the row for all files; each has up to TEXT_CHARS - 1 characters. */
struct FileQuestion {
    const WCHAR* wcName;
    const WCHAR* wcPatterns;
    const WCHAR* tcFolder;    /* where the dialog starts */
    const WCHAR* wcExtension; /* of a name that is typed without one */
    int cch;                  /* room for the path with its NUL, at most PATH_CHARS */
};

/* Asks the user for a file. The library of the dialog is loaded for the first question and stays for the sheet; the
   current folder stays as it is.
   tcPath   O  full path, PATH_CHARS of room; empty without a file
   Result: 1 with a path; 0 when the user cancels or the dialog cannot be shown. */
int AskFile(HWND hOwner, UiSession* pSession, const FileQuestion& question, WCHAR* tcPath);

#endif
