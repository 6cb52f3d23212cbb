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

/* Has the user choose a file, among those of a pattern or among all. The current folder stays as it is.
   nText       string of the library that names the files of the pattern
   wcPattern   "*.BMP;*.TIF", up to 63 characters
   tcPath   O  PATH_CHARS of room; empty without a file
   Result: 1 with a full path; 0 when the user cancels or the dialog cannot be shown. */
int PickFile(UiSession* pSession, HWND hOwner, int nText, const WCHAR* wcPattern, WCHAR* tcPath);

#endif
