/* What the two dialogs behind the Quality page share. */
#ifndef TQUI_SHEET_QUALITY_DIALOGS_H
#define TQUI_SHEET_QUALITY_DIALOGS_H

#include "sheet/dialog_services.h"

/* Places a dialog over its page, some way below the sheet's upper edge: higher where the user may not store settings of
   the printer. */
inline void PlaceQualityDialog(HWND hDialog, const UiSession* pSession)
{
    constexpr int TOP = 80, TOP_READ_ONLY = 60; /* pixels */
    CentreDialog(hDialog, CENTRE_X, pSession->bReadOnly ? TOP_READ_ONLY : TOP);
}

#endif
