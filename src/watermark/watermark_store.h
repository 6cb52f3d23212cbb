/* The user's list of watermarks: where it is kept, how a record finds its row again, and the files that were
   built for rows. A list is an array of rows with a spare one behind them, a default row of type ENTRY_FREE that
   ends it; the editors fill the spare row when a watermark is added. */
#ifndef TQUI_WATERMARK_WATERMARK_STORE_H
#define TQUI_WATERMARK_WATERMARK_STORE_H

#include "description/printer_call.h"
#include "settings/driver_devmode.h"
#include "watermark/watermark_entry.h"

/* Rows that a list may have: its count lives in 16 bits with a sign. */
constexpr i32 LONGEST_WATERMARK_LIST = 32767;

/* The list in the user's settings file of the printer.
   outRows   O   new array, the caller's, a spare row behind the rows; null only when memory fails
   Result: row count, 0 also without a settings file. */
i32 GetSavedWatermarks(PrinterCall& call, OwnedBlock<WatermarkEntry>* outRows);

/* Replaces that list by nCount rows, the spare one not counted. Without a settings file's path nothing happens;
   what could not be written leaves the file as it was. */
void SetSavedWatermarks(PrinterCall& call, const WatermarkEntry* pRows, i32 nCount);

/* Deletes the built files that the row names, as it names them, and zeroes both names, also when a file could
   not be deleted. For the user's own sheets only: an event that acts for others may not trust a row's paths.
   On kind 4 a row has no built files, its file name is a plain name: nothing happens. */
void DeleteWatermarkFiles(WatermarkEntry* pRow, u16 usLanguage);

/* Makes the list anew without its rows of type ENTRY_FREE; a spare row that was filled becomes a row.
   pRows    IO  the list
   nCount   I   its rows, without the spare one
   Result: the new count. -1 when memory is short or the list would be longer than LONGEST_WATERMARK_LIST: the
   old list and count stay and the spare row is a default one again; a row that was to go is the caller's to
   bring back. */
i32 CompactWatermarks(OwnedBlock<WatermarkEntry>* pRows, i32 nCount);

/* The row that the record's watermark came from: a text watermark by its nine values, a file by image, scale
   and placement, any other by the name of its built file. Result: index of the first that agrees, else -1. */
i32 MatchWatermark(const WatermarkEntry* pRows, i32 nCount, const PrivateDevmode* pPrivate);

#endif
