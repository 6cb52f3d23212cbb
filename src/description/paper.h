/* Paper codes: one 16-bit number for any paper.

     1 to 118     a row of the model's paper table
     119 to 255   none
     256          user-sized: the size is in the settings record
     257 to 447   a row of the model's paper table, shown and stored, but GetPaperSize answers with the
                  default paper
     448 and up   the saved papers, then the spooler's user forms; valid for the moment only, since a paper
                  saved or a form added renumbers what follows */
#ifndef TQUI_DESCRIPTION_PAPER_H
#define TQUI_DESCRIPTION_PAPER_H

#include "description/driver_files.h"
#include "description/paper_row.h"

constexpr i32 FIRST_UNKNOWN_CODE = 119; /* up to LAST_UNKNOWN_CODE the default paper stands in */
constexpr i32 LAST_UNKNOWN_CODE = 447;
constexpr i32 FIRST_SAVED_CODE = 448;
constexpr i32 USER_SIZED_PAPER = 256; /* from here on sizes decide, not codes: margins, conflicts, forms */

/* The saved papers: from the user's settings file when that file exists, else from the driver's .INI file.
   outRows   O   new array of result + 1 rows, the caller's (the spare row filled when pModel is given); null
                 when memory fails
   Result: row count. */
i32 GetSavedPapers(PrinterCall& call, const XpiModel* pModel, OwnedBlock<PaperSizeRow>* outRows);

/* Replaces the saved papers in the user's settings file by nCount rows, the spare one not counted. Without such
   a file's path nothing happens. Result: 1 when the file holds them now, else 0: what could not be written leaves
   the file as it was. */
int SetSavedPapers(PrinterCall& call, const PaperSizeRow* pRows, i32 nCount);

/* The spooler's user forms in its order; built-in forms and those of printers are left out.
   Result: row count with *outRows a new array, the caller's; 0 and null when there is none or memory fails. */
i32 GetSpoolerForms(PrinterCall& call, OwnedBlock<PaperSizeRow>* outRows);

/* Size of a paper code in tenths of a millimetre. A code that cannot be resolved is the default paper: this
   never fails. Result: 1 (or the model's number) for a metric paper, 0 for others. pModel may be null. */
i32 GetPaperSize(PrinterCall& call, const XpiModel* pModel, i16 sCode, i16* psWidth, i16* psLength);

/* The paper that a document is scaled to when this one is chosen; 0 or below for none. */
i16 GetCompanionPaper(const XpiModel* pModel, i16 sCode);

/* Rows of the model's paper table up to its end; 0 without a model or a table. */
i32 CountPaperRows(const XpiModel* pModel);

/* Row of the model's paper table with this code, or null. */
const PaperRow* FindPaperRow(const XpiModel* pModel, i16 sCode);

/* Smallest and largest width and length over the paper table and the custom range, each side by itself, in
   tenths of a millimetre. Without both custom maxima the walk starts at 0x7FFFFFFF and at 0, and that is what
   a model without papers answers. */
struct PaperExtents {
    i32 lMinWidth, lMinLength, lMaxWidth, lMaxLength;
};
PaperExtents GetPaperExtents(const XpiModel* pModel);

#endif
