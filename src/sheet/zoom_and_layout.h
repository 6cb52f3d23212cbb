/* Zoom and layout, which exclude each other across the Paper and the Layout page. A page that is not open has its
   values in the record. */
#ifndef TQUI_SHEET_ZOOM_AND_LAYOUT_H
#define TQUI_SHEET_ZOOM_AND_LAYOUT_H

#include "sheet/session.h"

/* Enables or disables the layout's controls of the Layout page, or the zoom's of the Paper page. Nothing happens while
   the first of them is as wanted already. */
void EnableLayoutGroup(UiSession* pSession, int bEnable);
void EnableScalingGroup(UiSession* pSession, int bEnable);

/* 1 for one page on each sheet, which alone may be zoomed. */
int ScalingAllowed(const UiSession* pSession);

/* 1 without a zoom. */
int IsZoom100(const UiSession* pSession);

/* 1 for more than one page on a sheet. */
int NupActive(const UiSession* pSession);

#endif
