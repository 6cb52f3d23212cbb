/* Printable margins of papers. */
#ifndef TQUI_DESCRIPTION_MARGINS_H
#define TQUI_DESCRIPTION_MARGINS_H

#include "description/paper_row.h"
#include "description/printer_call.h"

/* Printable margins. Paper code 0 or below asks for the margins of the rotated paper; codes 119 to 447 stand
   for the default paper.
   usOrientation   1 portrait, 2 landscape, a mask against the rows' modes
   lDpi            dots per inch of the result; with 25400 thousandths of a millimetre, the unit of forms
   Without a model, a table or a usable resolution in the row both are lDpi / 4. Results are brought to 16
   bits. */
struct Margins {
    i32 lX, lY;
};
Margins GetPrintableMargins(PrinterCall& call, const XpiModel* pModel, i16 sCode, u16 usOrientation,
                            i32 lDpi);

/* The same for a saved paper whose row is at hand: the lists are not asked for its code. */
Margins GetSavedPaperMargins(PrinterCall& call, const XpiModel* pModel, const PaperSizeRow* pRow, i16 sCode,
                             u16 usOrientation, i32 lDpi);

#endif
