/* The printer value "PaperSizes": for the rendering half, which reads no description, the papers that no standard code
   names. The model's papers above code 256 stand in front, the saved papers behind them. */
#ifndef TQUI_ENTRY_PAPER_SIZES_H
#define TQUI_ENTRY_PAPER_SIZES_H

#include "description/paper_row.h"
#include "description/printer_call.h"

/* A row of the value. */
struct StoredPaperSize {
    u16 usCode, usWidth, usLength; /* tenths of a millimetre */
};
static_assert(sizeof(StoredPaperSize) == 6);

/* Adds a row for each saved paper behind those that the value has. A value that cannot be read stays as it is. Nothing
   tells of the outcome. */
void AppendPaperSizes(PrinterCall& call, const PaperSizeRow* pRows, i32 nRows);

/* The same with the saved papers in place of those that the value has: of its rows only the leading ones below the codes
   of saved papers are kept, at most nModelPapers. A value that would have no row is deleted. */
void ReplacePaperSizes(PrinterCall& call, i32 nModelPapers, const PaperSizeRow* pRows, i32 nRows);

#endif
