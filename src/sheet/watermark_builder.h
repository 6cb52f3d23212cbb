/* Builds watermarks from a page or dialog: the wait cursor is up meanwhile and the windows go on painting. No message is
   taken from the queue, so nothing of a page can be called but its painting. */
#ifndef TQUI_SHEET_WATERMARK_BUILDER_H
#define TQUI_SHEET_WATERMARK_BUILDER_H

#include "sheet/session.h"

/* Builds the files of a row of pWatermarks. The row's old files are not touched: they are deleted before.
   hPage   I   the page's window, which may be null
   nRow    I   0 to sWatermarkCount, the spare row included; any other gives 0
   Result: what the builder said, 0 for good; 0 also when it could not be started, when no file name was free and without
   memory. The row's names, resolution, sizes and, for text, bWMStale are set; without a started builder the sizes are 0,
   and both are 0xFFFFFFFF when the builder did not answer in 10 seconds. On kind 4 nothing happens. */
int BuildWatermark(UiSession* pSession, HWND hPage, i32 nRow);

/* Has the builder try a row that is in no list: monochrome only, and the file is deleted at once. *pRow stays as it is.
   Result: as above; 1 says that the text is too complex for an outline. */
int TryWatermark(UiSession* pSession, HWND hDialog, const WatermarkEntry* pRow);

#endif
